// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/Language.h"

#include "Highlighting/Languages/LanguageRow.h"
#include "Highlighting/Rule.h"

#include <algorithm>
#include <mutex>

using namespace Qt::StringLiterals;

struct Language::Definition {
    explicit Definition(const LanguageRow &languageRow)
        : row(languageRow), id(row.id.toString()), name(row.name.toString()), extensions(entriesOf(row.extensions)),
          filenames(entriesOf(row.filenames)), shebangPatterns(entriesOf(row.shebangPatterns))
    {}

    static QStringList entriesOf(QStringView list) { return list.toString().split(u' ', Qt::SkipEmptyParts); }

    const LanguageRow &row;
    const QString id;
    const QString name;
    const QStringList extensions;
    const QStringList filenames;
    const QStringList shebangPatterns;

    mutable std::once_flag compiledShebangs;
    mutable std::vector<RegularExpression> shebangs;
    mutable std::once_flag compiledRules;
    mutable std::vector<SpanRule> spans;
    mutable std::vector<TokenRule> rules;
};

namespace {

void compileSpans(std::span<const RuleRow> rows, std::vector<SpanRule> &spans)
{
    for (const RuleRow &row : rows) {
        const RegularExpression::Options options = {.dotMatchesLineSeparators = true,
                                                    .anchorsMatchLines = hasTrait(row.traits, RuleTraits::lines)};
        if (auto regex = RegularExpression::compile(patternOf(row), options)) {
            spans.push_back({row.scope, std::move(*regex)});
        }
    }
}

WordList wordsOf(const RuleRow &row)
{
    if (!hasTrait(row.traits, RuleTraits::words)) {
        return {};
    }
    return {row.pattern, row.moreWords, hasTrait(row.traits, RuleTraits::anyCase) ? WordList::Case::any : WordList::Case::asWritten};
}

void compileTokens(std::span<const RuleRow> rows, std::vector<TokenRule> &rules)
{
    for (const RuleRow &row : rows) {
        if (auto regex = RegularExpression::compile(patternOf(row), {.anchorsMatchLines = hasTrait(row.traits, RuleTraits::lines)})) {
            rules.push_back({row.scope, std::move(*regex), hasTrait(row.traits, RuleTraits::group1) ? 1 : 0, wordsOf(row)});
        }
    }
}

} // namespace

QString patternOf(const RuleRow &row)
{
    QString pattern = row.pattern.toString();
    if (!hasTrait(row.traits, RuleTraits::words)) {
        return pattern;
    }
    if (!row.moreWords.isEmpty()) {
        pattern += u'|';
        pattern += row.moreWords;
    }
    return (hasTrait(row.traits, RuleTraits::anyCase) ? u"(?i)\\b(?:"_s : u"\\b(?:"_s) + pattern + u")\\b"_s;
}

Language::Language() : Language(plainText()) {}

Language::Language(const LanguageRow &row) : m_definition(std::make_shared<const Definition>(row)) {}

const Language &Language::plainText()
{
    static const Language language(builtInLanguages().back());
    return language;
}

const QString &Language::id() const
{
    return m_definition->id;
}

const QString &Language::name() const
{
    return m_definition->name;
}

const QStringList &Language::extensions() const
{
    return m_definition->extensions;
}

const QStringList &Language::filenames() const
{
    return m_definition->filenames;
}

const QStringList &Language::shebangPatterns() const
{
    return m_definition->shebangPatterns;
}

bool Language::matchesShebang(QStringView line) const
{
    const Definition &definition = *m_definition;
    std::call_once(definition.compiledShebangs, [&] {
        for (const QString &pattern : definition.shebangPatterns) {
            if (auto regex = RegularExpression::compile(pattern)) {
                definition.shebangs.push_back(std::move(*regex));
            }
        }
    });
    return std::ranges::any_of(definition.shebangs,
                               [line](const RegularExpression &regex) { return regex.clone().firstMatch(line).has_value(); });
}

std::optional<QStringView> Language::lineComment() const
{
    const QStringView mark = m_definition->row.lineComment;
    return mark.isEmpty() ? std::nullopt : std::optional(mark);
}

std::optional<DelimiterPair> Language::blockComment() const
{
    const DelimiterPair &marks = m_definition->row.blockComment;
    return marks.open.isEmpty() ? std::nullopt : std::optional(marks);
}

std::span<const DelimiterPair> Language::bracketPairs() const
{
    return m_definition->row.bracketPairs;
}

std::optional<int> Language::defaultIndentWidth() const
{
    const LanguageRow &row = m_definition->row;
    return row.indentation == IndentationStyle::asTheUserLikes ? std::nullopt : std::optional(row.indentWidth);
}

std::optional<bool> Language::defaultInsertSpaces() const
{
    const LanguageRow &row = m_definition->row;
    return row.indentation == IndentationStyle::asTheUserLikes ? std::nullopt : std::optional(row.indentation == IndentationStyle::spaces);
}

bool Language::needsTabs() const
{
    return m_definition->row.indentation == IndentationStyle::onlyTabs;
}

const Language::Definition &Language::compiled() const
{
    const Definition &definition = *m_definition;
    std::call_once(definition.compiledRules, [&] {
        if (definition.row.rules) {
            compileSpans(definition.row.rules->spans, definition.spans);
            compileTokens(definition.row.rules->tokens, definition.rules);
        }
    });
    return definition;
}

const std::vector<SpanRule> &Language::spans() const
{
    return compiled().spans;
}

const std::vector<TokenRule> &Language::rules() const
{
    return compiled().rules;
}
