// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineEditing.h"

#include <optional>

class Rope;

/// What the lines of a text are indented with, as far as they tell.
struct TextIndentation {
    Indentation::Unit unit = Indentation::Unit::spaces;
    /// Columns of a level of spaces; how wide a tab is no text tells, and it is 0 then.
    int width = 0;

    friend bool operator==(TextIndentation, TextIndentation) = default;
};

/// How `text` is indented, by its first indented lines; none where these are fewer than five or nine in ten do not agree. A level of spaces
/// is what lines mostly go further in by. Lines that go on with a comment (" * …"), and those that stand below something in the line
/// before, say nothing. O(log n) a line, of 1000 indented lines and 10,000 in all at most, however long they are.
[[nodiscard]] std::optional<TextIndentation> indentationOf(const Rope &text);
