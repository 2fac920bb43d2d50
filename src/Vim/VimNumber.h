// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimLines.h"

#include <QString>

/// A number in a text and what counting makes of it. Offsets are UTF-16 units.
struct VimNumber {
    TextRange range;
    QString text;

    /// The number at `from` or behind it in its line, `by` added: decimal with its sign, hexadecimal behind "0x", binary behind "0b". None
    /// without one before `behind`. Digits before `from` belong to it unless it is `isBounded`.
    [[nodiscard]] static std::optional<VimNumber> added(const VimLines &lines, qsizetype from, qsizetype behind, bool isBounded, qint64 by);
};
