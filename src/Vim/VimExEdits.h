// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"
#include "Text/LineEditing.h"
#include "Vim/VimLines.h"
#include "Vim/VimPattern.h"

#include <stop_token>

/// What commands behind ":" do to lines, as functions of the text. Lines are counted from 1 and lie in the text, the last one is not before
/// the first; offsets are UTF-16 units.
namespace VimExEdits {

struct LineSpan {
    qsizetype first = 1;
    qsizetype last = 1;

    [[nodiscard]] qsizetype count() const { return last - first + 1; }
};

/// What ends a line here.
[[nodiscard]] QString lineBreak(const Rope &text);
/// The lines, each with its break; a last one without gets one.
[[nodiscard]] Rope content(const Rope &text, LineSpan lines);
[[nodiscard]] TextEdits removed(const Rope &text, LineSpan lines);
/// `block`, lines with their breaks, behind the line `after`, which may be 0.
[[nodiscard]] TextEdits inserted(const Rope &text, qsizetype after, const Rope &block);
/// `after` is not one of the lines but the last.
[[nodiscard]] TextEdits moved(const Rope &text, LineSpan lines, qsizetype after);

enum class Blanks { kept, one };
/// As one line; with `one` the blanks that lines begin with make room for a space, which none gets behind blanks or before ")".
[[nodiscard]] TextEdits joined(const Rope &text, LineSpan lines, Blanks blanks);
/// So many levels more, or less when negative, but for empty lines.
[[nodiscard]] TextEdits shifted(const Rope &text, LineSpan lines, qsizetype levels, Indentation indentation);

enum class Runs { withTabs, all };
/// Runs of blanks anew, of which there are tabs in or, with `all`, two at least: as wide as before with tab stops `oldWidth` columns apart,
/// of what `wanted` indents with and its tab stops.
[[nodiscard]] TextEdits retabbed(const Rope &text, LineSpan lines, int oldWidth, Indentation wanted, Runs runs);

/// What `:sort` goes by.
struct Sorting {
    enum class By { text, decimal, real, hexadecimal, octal, binary };

    By by = By::text;
    bool isReversed = false;
    bool ignoresCase = false;
    bool dropsRepeats = false;
    /// By what the pattern matches rather than by what is behind it.
    bool takesMatch = false;
    std::optional<VimPattern> pattern = std::nullopt;
};
/// Nothing when it is stopped.
[[nodiscard]] TextEdits sorted(const Rope &text, LineSpan lines, const Sorting &sorting, const std::stop_token &stop = {});

} // namespace VimExEdits
