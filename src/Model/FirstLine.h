// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class Rope;

/// What a text begins with: the first line that is not blank among its first 512 units, on one line and without blanks around it, at most
/// 40 graphemes and then "…". Empty when there is none. Costs the same for a text of any length.
[[nodiscard]] QString firstLineOf(const Rope &text);

/// A name for the file of a text, after its first line: without what names of files may not or should not have, at most 40 graphemes and
/// 200 bytes. Empty when nothing is left.
[[nodiscard]] QString fileNameFor(const Rope &text);
