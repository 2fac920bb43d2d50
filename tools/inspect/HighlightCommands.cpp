// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "Highlighting/LanguageRegistry.h"
#include "Highlighting/SyntaxHighlighter.h"

#include <QJsonArray>

#include <array>

using namespace Qt::StringLiterals;

namespace {

/// The dark theme with another colour for each scope, so that no two of them look alike.
Theme themeOfScopes()
{
    Theme theme = Theme::dark();
    for (const ScopeRow &row : scopes) {
        theme.colors[size_t(row.scope)] = 0xFF000000 | quint32(row.scope);
    }
    return theme;
}

QString firstLineOf(const Rope &text)
{
    return text.toString(TextRange{0, text.lineStart(1)}.clampedTo(std::min<qsizetype>(text.length(), 1000)));
}

QJsonObject runHighlight(const Arguments &arguments)
{
    const QString &path = arguments.positionals[0];
    const auto contents = TextFile::read(path, std::nullopt);
    if (!contents) {
        return answerOf(contents.error());
    }
    const auto id = arguments.value(u"language");
    const Language language = id ? *LanguageRegistry::withID(*id) : LanguageRegistry::detect(path, firstLineOf(contents->text));

    TextStorage storage;
    storage.apply({{}, contents->text});
    ManualScheduler scheduler;
    NotificationCenter notifications;
    SyntaxHighlighter highlighter(storage, language, themeOfScopes(), scheduler, notifications);
    highlighter.rehighlightAll();
    const auto range = arguments.value(u"ensure");
    highlighter.ensureHighlighted(range ? *toRange(*range) : TextRange{0, storage.length()});

    QJsonArray runs;
    highlighter.forEachScope({0, storage.length()}, [&](TextRange run, Scope scope) {
        if (scope != Scope::plain) {
            runs.append(QJsonArray{qint64(run.location), qint64(run.length), rawValue(scope).toString()});
        }
    });
    return {{u"language"_s, language.id()}, {u"runs"_s, runs}};
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
constexpr auto themeOptions = std::to_array<OptionRow>({{u"dark"}});

constexpr auto rows = std::to_array<CommandRow>({
    {u"highlight", u"FILE", highlightOptions, u"the scope of every stretch of the text that has one", runHighlight},
    {u"theme", u"NAME", themeOptions, u"the theme that a preference of that name gives", runTheme},
});

} // namespace

std::span<const CommandRow> highlightCommands()
{
    return rows;
}
