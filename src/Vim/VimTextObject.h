// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimBuffer.h"
#include "Vim/VimKeyHelp.h"

/// Stretches of text by their structure: words, paragraphs, strings, blocks in brackets. Pure functions over the text.
namespace VimTextObject {

struct Result {
    TextRange range;
    bool linewise = false;
};

enum class Extent { inner, around };

/// The object of the key `object` at `caret`; none when there is none, or the key names none. Words go on for `count` runs, blanks between
/// them counted; other objects take no count.
[[nodiscard]] std::optional<Result> range(VimBuffer &text, qsizetype caret, char16_t object, Extent extent, qsizetype count);

/// What there is to say about the keys of objects.
[[nodiscard]] VimKeyHelpEntries keyHelp();

} // namespace VimTextObject
