// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/Languages/Rules.h"
#include "Highlighting/Languages/SharedRules.h"

namespace {

using enum Scope;
using enum RuleTraits;

// clang-format off

constexpr auto cFamilySpans = std::to_array<RuleRow>({
    cBlockComment,
});

/// The words are added to the keywords.
constexpr auto cFamilyTokens(QStringView extraKeywords)
{
    return std::to_array<RuleRow>({
        slashLineComment,
        {preprocessor, lines, uR"(^\s*#\s*[a-z_]+)"},
        doubleQuotedString,
        singleQuotedString,
        standardNumber,
        {keyword, words, u"alignas|alignof|asm|auto|bool|break|case|catch|char|class|const|constexpr|consteval|constinit|continue|"
                         u"decltype|default|delete|do|double|dynamic_cast|else|enum|explicit|export|extern|final|float|for|friend|"
                         u"goto|if|inline|int|long|mutable|namespace|new|noexcept|operator|override|private|protected|public|"
                         u"register|reinterpret_cast|restrict|return|short|signed|sizeof|static|static_assert|static_cast|struct|"
                         u"switch|template|this|thread_local|throw|try|typedef|typeid|typename|union|unsigned|using|virtual|void|"
                         u"volatile|wchar_t|while", extraKeywords},
        {builtin, words, u"true|false|nullptr|NULL|nil|YES|NO"},
        {type, none, uR"(\b(?:[a-z_][A-Za-z0-9_]*_t|u?int(?:8|16|32|64)_t|size_t|ssize_t)\b)"},
        call,
        capitalisedName,
    });
}

constexpr auto cTokens = cFamilyTokens({});

// The words behind an @ that are keywords of C too, and the text of an @"…", are coloured by the rules of C: those go first.
constexpr auto objectiveCTokens = joined(
    cFamilyTokens(u"in|out|inout|bycopy|byref|oneway|self|super"),
    std::to_array<RuleRow>({
        {preprocessor, none, uR"(@(?:interface|implementation|protocol|end|property|synthesize|dynamic|selector|encode|autoreleasepool|synchronized|try|catch|finally|throw|class|import|available)\b)"},
        {string, none, uR"(@"(?:[^"\\\n]|\\.)*")"},
    }));

constexpr auto javaTokens = std::to_array<RuleRow>({
    slashLineComment,
    doubleQuotedString,
    singleQuotedString,
    {attribute, none, uR"(@[A-Za-z_][A-Za-z0-9_]*)"},
    standardNumber,
    {keyword, words, u"abstract|assert|boolean|break|byte|case|catch|char|class|const|continue|default|do|double|else|enum|extends|"
                     u"final|finally|float|for|goto|if|implements|import|instanceof|int|interface|long|native|new|package|private|"
                     u"protected|public|record|return|sealed|short|static|strictfp|super|switch|synchronized|this|throw|throws|"
                     u"transient|try|var|void|volatile|while|yield"},
    {builtin, words, u"true|false|null"},
    call,
    capitalisedName,
});

constexpr auto csharpSpans = std::to_array<RuleRow>({
    {string, none, uR"(@"(?:[^"]|"")*")"},
});

constexpr auto csharpTokens = std::to_array<RuleRow>({
    slashLineComment,
    doubleQuotedString,
    singleQuotedString,
    {preprocessor, lines, uR"(^\s*#\s*[a-z]+)"},
    {attribute, lines, uR"(^\s*\[[A-Za-z_][^\]\n]*\])"},
    standardNumber,
    {keyword, words, u"abstract|as|async|await|base|bool|break|byte|case|catch|char|checked|class|const|continue|decimal|default|"
                     u"delegate|do|double|else|enum|event|explicit|extern|finally|fixed|float|for|foreach|get|goto|if|implicit|in|"
                     u"int|interface|internal|is|lock|long|namespace|new|object|operator|out|override|params|private|protected|"
                     u"public|readonly|record|ref|return|sbyte|sealed|set|short|sizeof|stackalloc|static|string|struct|switch|this|"
                     u"throw|try|typeof|uint|ulong|unchecked|unsafe|ushort|using|var|virtual|void|volatile|while|yield"},
    {builtin, words, u"true|false|null|value"},
    call,
    capitalisedName,
});

// clang-format on

} // namespace

constinit const LanguageRules cRules = {cFamilySpans, cTokens};
constinit const LanguageRules objectiveCRules = {cFamilySpans, objectiveCTokens};
constinit const LanguageRules javaRules = {{}, javaTokens};
constinit const LanguageRules csharpRules = {csharpSpans, csharpTokens};
