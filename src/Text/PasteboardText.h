// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"

class Pasteboard;

/// Puts `text` on the clipboard; a long one is made only when somebody asks for it.
void setText(Pasteboard &pasteboard, const Rope &text);
/// A text from elsewhere as it is kept here, where lines end with LF alone.
[[nodiscard]] QString withLineFeeds(QString text);
