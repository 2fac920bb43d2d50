// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextEdits.h"

struct SaveOptions {
    bool trimsTrailingWhitespace = false;
    bool ensuresTrailingNewline = false;
};

/// What saving changes at the end of a text. Trimming reaches the blanks and tabs at the end of the last line only, with or without a line
/// break behind them: blanks elsewhere may mean something, as they do in Markdown. A final line feed is added to a text that is not empty.
/// O(what is changed).
[[nodiscard]] TextEdits saveTransformation(const Rope &text, SaveOptions options);
