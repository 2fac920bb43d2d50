// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimKey.h"

/// What is typed behind Ctrl+V: the next key as it is, or the character whose code is typed, in decimal digits, or behind "x", "o", "u" or
/// "U" in those of that base. A value.
class VimLiteral final {
public:
    struct Taken {
        /// What is to be put into the text; nothing while the code goes on.
        QString text = {};
        /// The next key belongs to it too.
        bool goesOn = false;
        /// The code was over before this key, which is none of it.
        bool leavesKey = false;
    };

    [[nodiscard]] Taken take(const VimKeyEvent &event);

private:
    /// So far.
    QString m_code;
};
