// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/Languages/Rules.h"
#include "Highlighting/Languages/SharedRules.h"

namespace {

using enum Scope;
using enum RuleTraits;

// clang-format off

constexpr auto sqlSpans = std::to_array<RuleRow>({
    cBlockComment,
});

constexpr auto sqlTokens = std::to_array<RuleRow>({
    {comment, lines, uR"(--.*$)"},
    {string, none, uR"('(?:[^']|'')*')"},
    {attribute, none, uR"("(?:[^"]|"")*")"},
    {number, none, uR"(\b\d+(?:\.\d+)?\b)"},
    {keyword, words | anyCase, u"ADD|ALL|ALTER|AND|AS|ASC|BEGIN|BETWEEN|BY|CASE|CAST|CHECK|COLUMN|COMMIT|CONSTRAINT|CREATE|CROSS|DEFAULT|DELETE|DESC|DISTINCT|DROP|ELSE|END|EXCEPT|EXISTS|FOREIGN|FROM|FULL|GROUP|HAVING|IF|IN|INDEX|INNER|INSERT|INTERSECT|INTO|IS|JOIN|LEFT|LIKE|LIMIT|NOT|OFFSET|ON|OR|ORDER|OUTER|PRIMARY|REFERENCES|RETURNING|RIGHT|ROLLBACK|SELECT|SET|TABLE|THEN|TRANSACTION|TRIGGER|UNION|UNIQUE|UPDATE|USING|VALUES|VIEW|WHEN|WHERE|WITH"},
    {type, words | anyCase, u"BIGINT|BLOB|BOOLEAN|BYTEA|CHAR|DATE|DECIMAL|DOUBLE|FLOAT|INT|INTEGER|JSON|JSONB|NUMERIC|REAL|SERIAL|SMALLINT|TEXT|TIME|TIMESTAMP|UUID|VARCHAR"},
    {builtin, words | anyCase, u"NULL|TRUE|FALSE|COUNT|SUM|AVG|MIN|MAX|COALESCE|NULLIF|NOW|CURRENT_TIMESTAMP"},
});

constexpr auto diffTokens = std::to_array<RuleRow>({
    {preprocessor, lines, uR"(^(?:diff|index|new file|deleted file|old mode|new mode|similarity|rename) .*$)"},
    {attribute, lines, uR"(^@@.*@@.*$)"},
    {invalid, lines, uR"(^(?:---|-).*$)"},
    {string, lines, uR"(^(?:\+\+\+|\+).*$)"},
    {comment, lines, uR"(^\\ No newline.*$)"},
});

constexpr auto markdownSpans = std::to_array<RuleRow>({
    {string, none, uR"(```[\s\S]*?```)"},
    {string, none, uR"(~~~[\s\S]*?~~~)"},
    {comment, none, uR"(<!--[\s\S]*?-->)"},
});

constexpr auto markdownTokens = std::to_array<RuleRow>({
    {heading, lines, uR"(^#{1,6}[ \t].*$)"},
    {heading, lines, uR"(^[^\n]+\n(?:={3,}|-{3,})\s*$)"},
    {string, none, u"`[^`\n]+`"},
    {link, none, uR"(\[[^\]\n]*\]\([^)\n]*\))"},
    {link, none, uR"(!\[[^\]\n]*\]\([^)\n]*\))"},
    {link, none, uR"(<https?://[^>\s]+>)"},
    {link, none, uR"((?<![(<])\bhttps?://[^\s)>\]]+)"},
    {emphasis, none, uR"((?<!\*)\*\*(?!\*)[^\n]*?\*\*)"},
    {emphasis, none, uR"((?<![*\w])\*(?!\*)[^\n*]+?\*(?![*\w]))"},
    {emphasis, none, uR"(~~[^\n]+?~~)"},
    {punctuation, lines, uR"(^\s*(?:[-*+]|\d+\.)\s)"},
    {comment, lines, uR"(^\s*>.*$)"},
    {preprocessor, lines, uR"(^(?:-{3,}|\*{3,}|_{3,})\s*$)"},
});

// clang-format on

} // namespace

constinit const LanguageRules sqlRules = {sqlSpans, sqlTokens};
constinit const LanguageRules diffRules = {{}, diffTokens};
constinit const LanguageRules markdownRules = {markdownSpans, markdownTokens};
