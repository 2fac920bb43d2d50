// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Highlighting/Languages/LanguageRow.h"

#include <algorithm>

// Rules that several languages have.

// clang-format off
inline constexpr RuleRow cBlockComment =      {Scope::comment,  RuleTraits::none,   uR"(/\*[^*]*+(?:\*(?!/)[^*]*+)*+\*/)"};
inline constexpr RuleRow slashLineComment =   {Scope::comment,  RuleTraits::lines,  uR"(//.*$)"};
inline constexpr RuleRow hashLineComment =    {Scope::comment,  RuleTraits::lines,  uR"(#.*$)"};
inline constexpr RuleRow doubleQuotedString = {Scope::string,   RuleTraits::none,   uR"("(?:[^"\\\n]|\\.)*")"};
inline constexpr RuleRow singleQuotedString = {Scope::string,   RuleTraits::none,   uR"('(?:[^'\\\n]|\\.)*')"};
inline constexpr RuleRow rawSingleQuotedString = {Scope::string, RuleTraits::none,  uR"('[^'\n]*')"};
inline constexpr RuleRow standardNumber =     {Scope::number,   RuleTraits::none,   uR"(\b(?:0[xX][0-9a-fA-F_]+|0[bB][01_]+|0[oO][0-7_]+|\d[\d_]*(?:\.[\d_]+)?(?:[eE][+-]?\d+)?)\b)"};
inline constexpr RuleRow call =               {Scope::function, RuleTraits::group1, uR"(\b([A-Za-z_][A-Za-z0-9_]*+)\s*\()"};
inline constexpr RuleRow capitalisedName =    {Scope::type,     RuleTraits::group1, uR"(\b([A-Z][A-Za-z0-9_]*)\b)"};
// clang-format on

/// The rules of `first`, then those of `second`.
template<size_t firstSize, size_t secondSize>
[[nodiscard]] constexpr auto joined(const std::array<RuleRow, firstSize> &first, const std::array<RuleRow, secondSize> &second)
{
    std::array<RuleRow, firstSize + secondSize> all = {};
    std::ranges::copy(second, std::ranges::copy(first, all.begin()).out);
    return all;
}
