// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/Languages/Rules.h"
#include "Highlighting/Languages/SharedRules.h"

namespace {

using enum Scope;
using enum RuleTraits;

// clang-format off

constexpr auto swiftSpans = std::to_array<RuleRow>({
    cBlockComment,
    {string, none, uR"(#?"""[\s\S]*?""")"},
});

constexpr auto swiftTokens = std::to_array<RuleRow>({
    slashLineComment,
    {string, none, uR"(#*"(?:[^"\\\n]|\\.)*"#*)"},
    {escape, none, uR"(\\\((?:[^()]|\([^()]*\))*\))"},
    {attribute, none, uR"(@[A-Za-z_][A-Za-z0-9_]*)"},
    {preprocessor, lines, uR"(^\s*#(?:if|elseif|else|endif|available|selector|warning|error|sourceLocation|colorLiteral|imageLiteral|fileLiteral)\b)"},
    standardNumber,
    {keyword, words, u"actor|associatedtype|async|await|borrowing|break|case|catch|class|consuming|continue|convenience|default|defer|"
                     u"deinit|didSet|distributed|do|dynamic|else|enum|extension|fallthrough|fileprivate|final|for|func|get|guard|if|"
                     u"import|in|indirect|infix|init|inout|internal|isolated|lazy|let|macro|mutating|nonisolated|nonmutating|open|"
                     u"operator|optional|override|package|postfix|precedencegroup|prefix|private|protocol|public|repeat|required|"
                     u"rethrows|return|sending|set|some|static|struct|subscript|switch|throw|throws|try|typealias|unowned|var|weak|"
                     u"where|while|willSet|yield"},
    {builtin, words, u"true|false|nil|self|Self|super|any|as|is"},
    call,
    capitalisedName,
});

constexpr auto goSpans = std::to_array<RuleRow>({
    cBlockComment,
    {string, none, uR"(`[^`]*`)"},
});

constexpr auto goTokens = std::to_array<RuleRow>({
    slashLineComment,
    doubleQuotedString,
    singleQuotedString,
    standardNumber,
    {keyword, words, u"break|case|chan|const|continue|default|defer|else|fallthrough|for|func|go|goto|if|import|interface|map|package|"
                     u"range|return|select|struct|switch|type|var"},
    {type, words, u"any|bool|byte|comparable|complex64|complex128|error|float32|float64|int|int8|int16|int32|int64|rune|string|uint|"
                  u"uint8|uint16|uint32|uint64|uintptr"},
    {builtin, words, u"true|false|nil|iota|append|cap|close|copy|delete|len|make|new|panic|print|println|recover"},
    call,
    capitalisedName,
});

constexpr auto rustSpans = std::to_array<RuleRow>({
    cBlockComment,
    {string, none, uR"(r#+"[\s\S]*?"#+)"},
});

constexpr auto rustTokens = std::to_array<RuleRow>({
    slashLineComment,
    doubleQuotedString,
    {string, none, uR"('(?:[^'\\]|\\.)')"},
    {attribute, none, uR"(#!?\[[^\]\n]*\])"},
    {variable, none, uR"('[a-z_]\w*\b)"},
    {number, none, uR"(\b(?:0[xX][0-9a-fA-F_]+|0[bB][01_]+|0[oO][0-7_]+|\d[\d_]*(?:\.[\d_]+)?(?:[eE][+-]?\d+)?)(?:[iuf](?:8|16|32|64|128|size))?\b)"},
    {keyword, words, u"as|async|await|break|const|continue|crate|dyn|else|enum|extern|fn|for|if|impl|in|let|loop|match|mod|move|mut|"
                     u"pub|ref|return|static|struct|super|trait|type|union|unsafe|use|where|while|yield"},
    {type, words, u"bool|char|f32|f64|i8|i16|i32|i64|i128|isize|str|u8|u16|u32|u64|u128|usize|String|Vec|Option|Result|Box|Rc|Arc|"
                  u"HashMap|HashSet"},
    {builtin, words, u"true|false|None|Some|Ok|Err|self|Self"},
    {function, group1, uR"(\b([a-z_]\w*)\s*[!(])"},
    capitalisedName,
});

// clang-format on

} // namespace

constinit const LanguageRules swiftRules = {swiftSpans, swiftTokens};
constinit const LanguageRules goRules = {goSpans, goTokens};
constinit const LanguageRules rustRules = {rustSpans, rustTokens};
