// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/Languages/Rules.h"
#include "Highlighting/Languages/SharedRules.h"

namespace {

using enum Scope;
using enum RuleTraits;

// clang-format off

constexpr auto scriptSpans = std::to_array<RuleRow>({
    cBlockComment,
    {string, none, uR"(`(?:[^`\\]|\\.)*`)"},
});

constexpr RuleRow interpolation = {escape, none, uR"(\$\{(?:[^{}]|\{[^{}]*\})*\})"};

constexpr auto javascriptTokens = std::to_array<RuleRow>({
    slashLineComment,
    doubleQuotedString,
    singleQuotedString,
    standardNumber,
    {keyword, words, u"async|await|break|case|catch|class|const|continue|debugger|default|delete|do|else|export|extends|finally|for|"
                     u"from|function|get|if|import|in|instanceof|let|new|of|return|set|static|super|switch|this|throw|try|typeof|var|"
                     u"void|while|with|yield"},
    {builtin, words, u"true|false|null|undefined|NaN|Infinity|console|document|window|globalThis|process|require|module|exports"},
    call,
    capitalisedName,
    interpolation,
});

constexpr auto typescriptTokens = std::to_array<RuleRow>({
    slashLineComment,
    doubleQuotedString,
    singleQuotedString,
    interpolation,
    {attribute, none, uR"(@[A-Za-z_][A-Za-z0-9_]*)"},
    standardNumber,
    {keyword, words, u"async|await|break|case|catch|class|const|continue|debugger|default|delete|do|else|export|extends|finally|for|"
                     u"from|function|get|if|import|in|instanceof|let|new|of|return|set|static|super|switch|this|throw|try|typeof|var|"
                     u"void|while|with|yield|abstract|any|as|asserts|bigint|boolean|declare|enum|implements|infer|interface|is|keyof|"
                     u"namespace|never|number|object|private|protected|public|readonly|require|satisfies|string|symbol|type|unique|"
                     u"unknown"},
    {builtin, words, u"true|false|null|undefined|NaN|Infinity|console|document|window|globalThis|process"},
    call,
    capitalisedName,
});

constexpr auto jsonSpans = std::to_array<RuleRow>({
    cBlockComment,
});

constexpr auto jsonTokens = std::to_array<RuleRow>({
    slashLineComment,
    {attribute, none, uR"("(?:[^"\\\n]|\\.)*"(?=\s*:))"},
    doubleQuotedString,
    {number, none, uR"(-?\b\d+(?:\.\d+)?(?:[eE][+-]?\d+)?\b)"},
    {builtin, words, u"true|false|null"},
    {punctuation, none, uR"([{}\[\],:])"},
});

constexpr auto cssSpans = std::to_array<RuleRow>({
    cBlockComment,
});

constexpr auto cssTokens = std::to_array<RuleRow>({
    slashLineComment,
    doubleQuotedString,
    singleQuotedString,
    {preprocessor, none, uR"(@[a-zA-Z-]+)"},
    {variable, none, uR"((?:--|\$)[A-Za-z_][\w-]*)"},
    {number, none, uR"(-?\b\d+(?:\.\d+)?(?:px|em|rem|vh|vw|vmin|vmax|%|s|ms|deg|fr|ch|ex|pt|cm|mm|in)?\b)"},
    {number, none, uR"(#[0-9a-fA-F]{3,8}\b)"},
    {type, group1, uR"((?:^|[\s,>+~])((?:\.|#)[A-Za-z_][\w-]*))"},
    {keyword, lines | group1, uR"((?:^|[;{]|\*/)\s*([a-zA-Z-]+)\s*(?=:))"},
    call,
});

constexpr auto htmlSpans = std::to_array<RuleRow>({
    {comment, none, uR"(<!--[\s\S]*?-->)"},
    {preprocessor, none, uR"(<!\[CDATA\[[\s\S]*?\]\]>)"},
});

constexpr auto htmlTokens = std::to_array<RuleRow>({
    {preprocessor, none, uR"(<[!?][^>]*>)"},
    {keyword, group1, uR"(</?\s*([A-Za-z_][\w:.-]*))"},
    {attribute, group1, uR"(\s([A-Za-z_][\w:.-]*)\s*=)"},
    doubleQuotedString,
    singleQuotedString,
    {escape, none, uR"(&(?:#\d+|#[xX][0-9a-fA-F]+|[a-zA-Z][a-zA-Z0-9]*);)"},
    {punctuation, none, uR"(</?|/?>)"},
});

constexpr auto phpSpans = std::to_array<RuleRow>({
    cBlockComment,
    {string, none, uR"(<<<'?"?([A-Za-z_]\w*)'?"?\n[\s\S]*?\n\s*\1)"},
});

constexpr auto phpTokens = std::to_array<RuleRow>({
    {comment, lines, uR"((?://|#).*$)"},
    {preprocessor, none, uR"(<\?php|<\?=|\?>)"},
    doubleQuotedString,
    singleQuotedString,
    {variable, none, uR"(\$[A-Za-z_]\w*)"},
    standardNumber,
    {keyword, words, u"abstract|and|array|as|break|callable|case|catch|class|clone|const|continue|declare|default|do|echo|else|elseif|"
                     u"empty|enddeclare|endfor|endforeach|endif|endswitch|endwhile|enum|extends|final|finally|fn|for|foreach|"
                     u"function|global|goto|if|implements|include|include_once|instanceof|insteadof|interface|isset|list|match|"
                     u"namespace|new|or|print|private|protected|public|readonly|require|require_once|return|static|switch|throw|"
                     u"trait|try|unset|use|var|while|xor|yield"},
    {builtin, words, u"true|false|null|this|self|parent"},
    call,
    capitalisedName,
});

// clang-format on

} // namespace

constinit const LanguageRules javascriptRules = {scriptSpans, javascriptTokens};
constinit const LanguageRules typescriptRules = {scriptSpans, typescriptTokens};
constinit const LanguageRules jsonRules = {jsonSpans, jsonTokens};
constinit const LanguageRules cssRules = {cssSpans, cssTokens};
constinit const LanguageRules htmlRules = {htmlSpans, htmlTokens};
constinit const LanguageRules phpRules = {phpSpans, phpTokens};
