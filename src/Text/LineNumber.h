// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// A line as users count them, from 1. Lines without this type are counted from 0.
enum class LineNumber : qsizetype { first = 1 };

[[nodiscard]] constexpr LineNumber numberOfLine(qsizetype line)
{
    return static_cast<LineNumber>(line + 1);
}

/// Of numbers below the first, the first.
[[nodiscard]] constexpr qsizetype lineOfNumber(LineNumber number)
{
    return number < LineNumber::first ? 0 : static_cast<qsizetype>(number) - 1;
}
