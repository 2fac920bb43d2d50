// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineEditing.h"

#include <stop_token>

/// Commands that may concern a whole text, as functions of it for any thread: they cost a walk over what they look at, and end early, with
/// nothing, once the token says so. Nothing is returned where there is nothing to change. Selections are UTF-16 ranges in the text.
namespace LineTransformations {

/// What is in several selected lines, or in all there are where no more than one is selected.
[[nodiscard]] TextRange linesToArrange(const Rope &text, TextRange selection);
/// What is in the selected lines, or in all there are where nothing is selected.
[[nodiscard]] TextRange linesToTidy(const Rope &text, TextRange selection);

/// The lines in the order of the language's dictionaries (a BCP 47 name), those that it does not tell apart as they stood. Lines that are
/// in that order already come in the opposite one.
[[nodiscard]] std::optional<TextStep> sorted(const Rope &text, TextRange selection, const QByteArray &language,
                                             const std::stop_token &stop = {});
/// Without the lines that stood before, wherever that was.
[[nodiscard]] std::optional<TextStep> withoutRepeats(const Rope &text, TextRange selection, const std::stop_token &stop = {});
[[nodiscard]] std::optional<TextStep> reversed(const Rope &text, TextRange selection, const std::stop_token &stop = {});
/// Without the spaces and tabs at the ends of lines.
[[nodiscard]] std::optional<TextStep> trimmed(const Rope &text, TextRange selection, const std::stop_token &stop = {});
/// Every line begins as far from the margin as before, with spaces alone, or with as many tabs as there is room for.
[[nodiscard]] std::optional<TextStep> reindented(const Rope &text, TextRange selection, Indentation indentation,
                                                 const std::stop_token &stop = {});

enum class LetterCase { upper, lower, title };
/// What is to be written otherwise: the selection, or the word at the caret.
[[nodiscard]] TextRange lettersToChange(const Rope &text, TextRange selection);
/// By the rules of Unicode, for no language in particular. With `title` every word begins with a capital and goes on in small letters.
[[nodiscard]] std::optional<TextStep> recased(const Rope &text, TextRange selection, LetterCase letters, const std::stop_token &stop = {});

} // namespace LineTransformations
