// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <optional>

/// Keys as they are written in mappings, "<C-w>j" or "<leader>x", and as text of one unit a key (VimKey).
namespace VimKeyNotation {

/// What is no key in angle brackets is the characters that it is. `leader` is what "<leader>" stands for.
[[nodiscard]] QString parsed(QStringView written, QStringView leader);
/// The first key with a modifier that there is not here; as characters it would never be typed.
[[nodiscard]] std::optional<QString> unknownKey(QStringView written);
/// The other way round.
[[nodiscard]] QString written(QStringView keys);

} // namespace VimKeyNotation
