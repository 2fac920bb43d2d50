// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "Highlighting/BracketSearch.h"
#include "Highlighting/LanguageRegistry.h"
#include "Highlighting/ScopedText.h"

#include <QJsonArray>

#include <array>

using namespace Qt::StringLiterals;

namespace {

QString firstLineOf(const Rope &text)
{
    return text.toString(TextRange{0, text.lineStart(1)}.clampedTo(std::min<qsizetype>(text.length(), 1000)));
}

/// Either what is to be said of the file that cannot be read, or what `answer` makes of it.
QJsonObject withText(const Arguments &arguments, const std::function<QJsonObject(ScopedText &text, const Language &language)> &answer)
{
    const QString &path = arguments.positionals[0];
    const auto contents = TextFile::read(path, std::nullopt);
    if (!contents) {
        return answerOf(contents.error());
    }
    const auto id = arguments.value(u"language");
    const Language language = id ? *LanguageRegistry::withID(*id) : LanguageRegistry::detect(path, firstLineOf(contents->text));
    ScopedText text(contents->text, language);
    return answer(text, language);
}

QJsonObject runHighlight(const Arguments &arguments)
{
    return withText(arguments, [&arguments](ScopedText &text, const Language &language) -> QJsonObject {
        const auto range = arguments.value(u"ensure");
        const TextRange whole{0, text.text().length()};
        text.highlighter().ensureHighlighted(range ? *toRange(*range) : whole);
        QJsonArray runs;
        text.highlighter().forEachScope(whole, [&](TextRange run, Scope scope) {
            if (scope != Scope::plain) {
                runs.append(QJsonArray{qint64(run.location), qint64(run.length), rawValue(scope).toString()});
            }
        });
        return {{u"language"_s, language.id()}, {u"runs"_s, runs}};
    });
}

QJsonObject runBrackets(const Arguments &arguments)
{
    return withText(arguments, [&arguments](ScopedText &text, const Language &language) -> QJsonObject {
        BracketSearch search(text.text(), language.bracketPairs(),
                             [&text](TextRange range, const auto &visit) { text.forEachScope(range, visit); }, {0, text.text().length()});
        const auto bracket = search.beside(toNumber(arguments.value(u"at").value_or(u"0"_s)));
        const auto partner = bracket ? search.partnerOf(*bracket) : std::nullopt;
        return {{u"partner"_s, partner ? QJsonValue(qint64(*partner)) : QJsonValue()}};
    });
}

QString hex(quint32 color)
{
    return u"#%1"_s.arg(color & 0xFFFFFF, 6, 16, QChar(u'0')).toUpper();
}

QJsonArray namesIn(const ScopeSet &set)
{
    QJsonArray names;
    for (const ScopeRow &row : scopes) {
        if (set.contains(row.scope)) {
            names.append(row.rawValue.toString());
        }
    }
    return names;
}

QJsonObject runTheme(const Arguments &arguments)
{
    const Theme &theme = Theme::resolved(arguments.positionals[0], arguments.has(u"dark") ? Appearance::dark : Appearance::light);
    QJsonObject colors;
    for (const ScopeRow &row : scopes) {
        if (const auto color = theme.color(row.scope)) {
            colors[row.rawValue.toString()] = hex(*color);
        }
    }
    QJsonObject answer{{u"name"_s, theme.name.toString()},
                       {u"isDark"_s, theme.isDark},
                       {u"colors"_s, colors},
                       {u"bold"_s, namesIn(theme.bold)},
                       {u"italic"_s, namesIn(theme.italic)}};
    for (const ThemeColorRow &row : themeColors) {
        answer[row.name.toString()] = hex(theme.*row.color);
    }
    return answer;
}

constexpr auto highlightOptions = std::to_array<OptionRow>({{u"language", u"ID", isLanguageID}, {u"ensure", u"LOCATION,LENGTH", isRange}});
constexpr auto bracketOptions = std::to_array<OptionRow>({{u"at", u"OFFSET", isNumber}, {u"language", u"ID", isLanguageID}});
constexpr auto themeOptions = std::to_array<OptionRow>({{u"dark"}});

constexpr auto rows = std::to_array<CommandRow>({
    {u"highlight", u"FILE", highlightOptions, u"the scope of every stretch of the text that has one", runHighlight},
    {u"brackets", u"FILE", bracketOptions, u"where the other bracket of the pair is", runBrackets},
    {u"theme", u"NAME", themeOptions, u"the theme that a preference of that name gives", runTheme},
});

} // namespace

std::span<const CommandRow> highlightCommands()
{
    return rows;
}
