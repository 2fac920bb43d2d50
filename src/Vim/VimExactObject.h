// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimExactMotion.h"
#include "Vim/VimKeyHelp.h"
#include "Vim/VimTextObject.h"

/// Stretches of text by their structure as Vim has them, of which several may be taken and selections grow. Pure functions over the text.
namespace VimExactObject {

using VimTextObject::Extent;

struct Request {
    VimLines lines;
    qsizetype caret = 0;
    qsizetype count = 1;
    Extent extent = Extent::inner;
    bool isVisual = false;
    /// Of a selection: whole lines.
    bool isOfLines = false;
    /// The other end of a selection of more than one character; else where the caret is.
    qsizetype anchor = 0;

    [[nodiscard]] bool isSelecting() const { return isVisual && anchor != caret; }
};

struct Result {
    qsizetype from = 0;
    qsizetype place = 0;
    /// Of `place`.
    VimMotion::Kind kind = VimMotion::Kind::inclusive;
    /// What is selected from now on.
    enum class Selects { asBefore, characters, noLines, lines };
    Selects selects = Selects::noLines;
    /// There is not as much as was asked for, yet the caret goes as far as it can.
    bool failed = false;
};

/// None when there is no such object here, or the key names none.
[[nodiscard]] std::optional<Result> range(const Request &request, char16_t object);

/// Of those that VimTextObject does not have.
[[nodiscard]] VimKeyHelpEntries keyHelp();

} // namespace VimExactObject
