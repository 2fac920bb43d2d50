// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Selections.h"

#include <functional>

/// A change and the selections that it leaves.
struct CaretStep {
    TextEdits edits;
    Selections after;
};

/// What a command does at each of several carets, as functions of the text: the edits of all together are one change, and every caret goes
/// where it would go if it were alone. O(carets · log text), but for what the command itself costs.
namespace CaretEditing {

/// `text` in place of `range`; the caret is behind it then, so many cells behind the line's end.
struct Replacement {
    TextRange range;
    Rope text = {};
    qsizetype cellsBehind = 0;

    /// Of a step that is one edit and leaves the caret behind it.
    [[nodiscard]] static Replacement of(const TextStep &step) { return {step.edits[0].range, step.edits[0].text}; }
};

/// `replacementOf` is asked for each selection in turn. Its range holds the caret or meets it; where ranges overlap, what two want to
/// remove goes once.
[[nodiscard]] CaretStep replaced(const Selections &selections,
                                 const std::function<Replacement(const CaretSelection &, size_t index)> &replacementOf);

/// `text` in place of every selection, behind the blanks that lead to a caret beyond the end of its line.
[[nodiscard]] CaretStep typed(const Selections &selections, const Rope &text);
[[nodiscard]] TextStep typedAt(const CaretSelection &one, const Rope &text);
/// The same with a text for each; `texts` are as many as the selections.
[[nodiscard]] CaretStep typed(const Selections &selections, const std::vector<Rope> &texts);

/// What is selected goes; where nothing is, the text between the caret and where `otherEnd` says. A caret beyond the end of its line goes
/// a cell back by `Direction::backward`.
enum class Direction { backward, forward };
[[nodiscard]] Replacement removal(const CaretSelection &one, Direction direction,
                                  const std::function<qsizetype(const CaretSelection &)> &otherEnd);
[[nodiscard]] CaretStep removed(const Selections &selections, Direction direction,
                                const std::function<qsizetype(const CaretSelection &)> &otherEnd);
/// A command for each by itself; one that gives nothing, or would change again what was changed for another, does nothing.
using CaretCommand = std::function<std::optional<TextStep>(const CaretSelection &)>;
[[nodiscard]] CaretStep atEach(const Selections &selections, const CaretCommand &command);

/// What is selected goes.
[[nodiscard]] CaretStep withoutSelected(const Selections &selections);

/// A command of whole lines, once for every block of lines that selections have a part of or meet at. In a block with several the command
/// is given what lies between the first and the last of them, and each keeps its place in the text, or what `Places` says.
enum class Places {
    /// Goes with the text around it.
    mapped,
    /// As far from the start of what is selected then as it was from the start of what the command was given.
    withLines,
};
using LineCommand = std::function<std::optional<TextStep>(TextSelection)>;
[[nodiscard]] std::optional<CaretStep> atLines(const Rope &text, const Selections &selections, const LineCommand &command,
                                               Places places = Places::mapped);

/// Each line's part of what is selected, breaks left out; bare carets stay.
[[nodiscard]] Selections splitIntoLines(const Rope &text, const Selections &selections);

/// What each has selected, one after another with line breaks between.
[[nodiscard]] Rope joinedPieces(const Rope &text, const Selections &selections);

} // namespace CaretEditing
