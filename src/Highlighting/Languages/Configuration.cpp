// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/Languages/Rules.h"
#include "Highlighting/Languages/SharedRules.h"

namespace {

using enum Scope;
using enum RuleTraits;

// clang-format off

constexpr auto makefileTokens = std::to_array<RuleRow>({
    hashLineComment,
    doubleQuotedString,
    rawSingleQuotedString,
    {variable, none, uR"(\$(?:\([^)\n]*\)|\{[^}\n]*\}|[A-Za-z_@<^?*+]\w*|.))"},
    {type, lines | group1, uR"(^([^\s:#=][^:#=]*?):(?!=))"},
    {keyword, lines, uR"(^\s*(?:-?include|ifeq|ifneq|ifdef|ifndef|else|endif|define|endef|export|unexport|override|vpath|\.PHONY|\.DEFAULT_GOAL|\.SUFFIXES)\b)"},
});

constexpr auto cmakeTokens = std::to_array<RuleRow>({
    hashLineComment,
    doubleQuotedString,
    {variable, none, uR"(\$\{[^}\n]*\})"},
    {keyword, words | anyCase, u"if|elseif|else|endif|foreach|endforeach|while|endwhile|function|endfunction|macro|endmacro|return|break|continue|include|set|unset|option|project|cmake_minimum_required"},
    call,
});

constexpr auto dockerfileTokens = std::to_array<RuleRow>({
    hashLineComment,
    doubleQuotedString,
    rawSingleQuotedString,
    {variable, none, uR"(\$(?:\{[^}\n]*\}|[A-Za-z_]\w*))"},
    {keyword, lines, uR"((?i)^\s*(?:FROM|RUN|CMD|LABEL|MAINTAINER|EXPOSE|ENV|ADD|COPY|ENTRYPOINT|VOLUME|USER|WORKDIR|ARG|ONBUILD|STOPSIGNAL|HEALTHCHECK|SHELL)\b)"},
    {builtin, none, uR"((?i)\bAS\b)"},
});

constexpr auto yamlTokens = std::to_array<RuleRow>({
    {comment, lines, uR"((?:^|\s)#.*$)"},
    {attribute, lines | group1, uR"(^\s*(?:-\s+)?([^\s:#][^:#\n]*?)\s*:(?=\s|$))"},
    doubleQuotedString,
    rawSingleQuotedString,
    {preprocessor, lines, uR"(^\s*(?:---|\.\.\.)\s*$)"},
    {variable, none, uR"([&*][A-Za-z_][\w-]*)"},
    {builtin, none, uR"((?<![\w-])(?:true|false|null|yes|no|on|off|~)(?![\w-]))"},
    {number, none, uR"((?<![\w-])-?\d+(?:\.\d+)?(?![\w-]))"},
    {punctuation, lines, uR"(^\s*-(?=\s))"},
});

constexpr auto tomlSpans = std::to_array<RuleRow>({
    {string, none, uR"("""[\s\S]*?""")"},
    {string, none, uR"('''[\s\S]*?''')"},
});

constexpr auto tomlTokens = std::to_array<RuleRow>({
    hashLineComment,
    {type, lines | group1, uR"(^\s*(\[\[?[^\]\n]*\]\]?))"},
    {attribute, lines | group1, uR"(^\s*([A-Za-z0-9_."-]+)\s*(?==))"},
    doubleQuotedString,
    rawSingleQuotedString,
    {builtin, words, u"true|false"},
    {number, none, uR"((?<![\w-])-?\d[\d_]*(?:\.\d+)?(?![\w-]))"},
});

constexpr auto iniTokens = std::to_array<RuleRow>({
    {comment, lines, uR"(^\s*[#;].*$)"},
    {type, lines | group1, uR"(^\s*(\[[^\]\n]*\]))"},
    // Finds what ^\s*([^=\n\[;#]+?)\s*(?==) does, which goes back over each blank from each other one.
    {attribute, lines | group1, uR"(^(?:\s*+(?!=)|\s*(?=\s++=))([^=\n\[;#](?:[^=\n\[;#]*[^=\s\[;#])?+)\s*+(?==))"},
    doubleQuotedString,
    {builtin, none, uR"((?i)(?<![\w-])(?:true|false|yes|no|on|off|none)(?![\w-]))"},
    {number, none, uR"((?<![\w-])-?\d+(?:\.\d+)?(?![\w-]))"},
});

// clang-format on

} // namespace

constinit const LanguageRules makefileRules = {{}, makefileTokens};
constinit const LanguageRules cmakeRules = {{}, cmakeTokens};
constinit const LanguageRules dockerfileRules = {{}, dockerfileTokens};
constinit const LanguageRules yamlRules = {{}, yamlTokens};
constinit const LanguageRules tomlRules = {tomlSpans, tomlTokens};
constinit const LanguageRules iniRules = {{}, iniTokens};
