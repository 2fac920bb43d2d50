// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/Languages/Rules.h"
#include "Highlighting/Languages/SharedRules.h"

namespace {

using enum Scope;
using enum RuleTraits;

// clang-format off

constexpr auto pythonSpans = std::to_array<RuleRow>({
    {string, none, uR"([rRbBuUfF]{0,2}"""[\s\S]*?""")"},
    {string, none, uR"([rRbBuUfF]{0,2}'''[\s\S]*?''')"},
});

constexpr auto pythonTokens = std::to_array<RuleRow>({
    hashLineComment,
    {string, none, uR"([rRbBuUfF]{0,2}"(?:[^"\\\n]|\\.)*")"},
    {string, none, uR"([rRbBuUfF]{0,2}'(?:[^'\\\n]|\\.)*')"},
    {attribute, lines, uR"(^\s*@[A-Za-z_][\w.]*)"},
    {number, none, uR"(\b(?:0[xX][0-9a-fA-F_]+|0[bB][01_]+|0[oO][0-7_]+|\d[\d_]*(?:\.[\d_]*)?(?:[eE][+-]?\d+)?[jJ]?)\b)"},
    {keyword, words, u"and|as|assert|async|await|break|case|class|continue|def|del|elif|else|except|finally|for|from|global|if|import|"
                     u"in|is|lambda|match|nonlocal|not|or|pass|raise|return|try|while|with|yield"},
    {builtin, words, u"True|False|None|self|cls|abs|all|any|bool|bytes|dict|enumerate|filter|float|format|frozenset|getattr|hasattr|"
                     u"input|int|isinstance|issubclass|len|list|map|max|min|object|open|print|range|repr|reversed|round|set|setattr|"
                     u"sorted|str|sum|super|tuple|type|zip"},
    call,
    capitalisedName,
});

constexpr auto rubySpans = std::to_array<RuleRow>({
    {comment, lines, uR"(^=begin[\s\S]*?^=end)"},
    {string, none, uR"(<<[-~]?'?"?([A-Za-z_]\w*)'?"?\n[\s\S]*?\n\s*\1)"},
});

constexpr auto rubyTokens = std::to_array<RuleRow>({
    hashLineComment,
    doubleQuotedString,
    singleQuotedString,
    {escape, none, uR"(#\{(?:[^{}]|\{[^{}]*\})*\})"},
    {variable, none, uR"([@$]@?[A-Za-z_]\w*)"},
    {variable, none, uR"((?<![:\w]):[A-Za-z_]\w*[?!]?)"},
    standardNumber,
    // The words are patterns: "defined?" also finds "define", and leaves the question mark alone.
    {keyword, words, u"alias|and|begin|break|case|class|def|defined?|do|else|elsif|end|ensure|for|if|in|module|next|not|or|redo|"
                     u"rescue|retry|return|then|undef|unless|until|when|while|yield|attr_accessor|attr_reader|attr_writer|private|"
                     u"protected|public|require|require_relative|include|extend|raise|puts|lambda|proc"},
    {builtin, words, u"true|false|nil|self|super|__method__"},
    call,
    capitalisedName,
});

constexpr auto luaSpans = std::to_array<RuleRow>({
    {comment, none, uR"(--\[\[[\s\S]*?\]\])"},
    {string, none, uR"(\[\[[\s\S]*?\]\])"},
});

constexpr auto luaTokens = std::to_array<RuleRow>({
    {comment, lines, uR"(--.*$)"},
    doubleQuotedString,
    singleQuotedString,
    standardNumber,
    {keyword, words, u"and|break|do|else|elseif|end|for|function|goto|if|in|local|not|or|repeat|return|then|until|while"},
    {builtin, words, u"true|false|nil|self|print|pairs|ipairs|require|type|tostring|tonumber|setmetatable|getmetatable|pcall|error"},
    call,
});

constexpr auto shellSpans = std::to_array<RuleRow>({
    {string, none, uR"(<<[-]?\s*'?"?([A-Za-z_]\w*)'?"?\n[\s\S]*?\n\s*\1)"},
});

constexpr auto shellTokens = std::to_array<RuleRow>({
    {preprocessor, lines, uR"(\A#!.*$)"},
    {comment, lines, uR"((?<!\$)#.*$)"},
    doubleQuotedString,
    rawSingleQuotedString,
    {variable, none, uR"(\$(?:\{[^}\n]*\}|[A-Za-z_]\w*|[0-9@*#?$!-]))"},
    {number, none, uR"(\b\d+\b)"},
    {keyword, words, u"if|then|else|elif|fi|case|esac|for|select|while|until|do|done|in|function|time|coproc|return|break|continue|"
                     u"local|declare|typeset|readonly|export|unset|shift|eval|exec|source|trap|set|shopt|alias"},
    {builtin, words, u"echo|printf|read|cd|pwd|test|exit|true|false|command|type|hash|getopts|wait|jobs|kill|umask"},
    {operatorToken, none, uR"(\|\||&&|[|&;]|[<>]{1,2})"},
    {function, lines | group1, uR"(^\s*(?:function\s+)?([A-Za-z_]\w*)\s*\(\s*\))"},
});

// clang-format on

} // namespace

constinit const LanguageRules pythonRules = {pythonSpans, pythonTokens};
constinit const LanguageRules rubyRules = {rubySpans, rubyTokens};
constinit const LanguageRules luaRules = {luaSpans, luaTokens};
constinit const LanguageRules shellRules = {shellSpans, shellTokens};
