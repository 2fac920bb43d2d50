// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/LineEnding.h"
#include "Files/TextEncoding.h"

#include <QString>

class Rope;

/// What stands at `caret` (0 … length) in lines for a hint: the code points of the grapheme with their names, its bytes in UTF-8 and in the
/// encoding of the file and, where that is another number than in UTF-16 code units, its column in characters.
[[nodiscard]] QString caretHint(const Rope &text, qsizetype caret, TextEncoding encoding, LineEnding lineEnding);
