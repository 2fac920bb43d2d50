// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Selections.h"

class Pasteboard;

/// Puts `text` on the clipboard; a long one is made only when somebody asks for it.
void setText(Pasteboard &pasteboard, const Rope &text);
/// What each of several carets has selected, with line breaks between.
void setPieces(Pasteboard &pasteboard, const Rope &text, const Selections &selections);
/// `text`, which the clipboard holds, in so many pieces: those that it was made of, or else its lines. None when they are of another
/// number.
[[nodiscard]] std::optional<std::vector<Rope>> piecesOf(const Pasteboard &pasteboard, const QString &text, size_t count);
/// A text from elsewhere as it is kept here, where lines end with LF alone.
[[nodiscard]] QString withLineFeeds(QString text);
