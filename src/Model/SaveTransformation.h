// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextEdits.h"

struct SaveOptions {
    enum class Trimmed { nothing, lastLine, everyLine };

    /// Where spaces and tabs at the ends of lines go. Those elsewhere than in the last one may mean something, as they do in Markdown.
    Trimmed trimmed = Trimmed::nothing;
    bool ensuresTrailingNewline = false;
};

/// What saving changes in a text. A last line may have a line break behind it. A final line feed is added to a text that is not empty.
/// O(what is changed), but where every line is trimmed O(text).
[[nodiscard]] TextEdits saveTransformation(const Rope &text, SaveOptions options);
