// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// As Unicode calls it: "EURO SIGN"; of control characters the name that they are known by, else "<control-0006>".
[[nodiscard]] QString characterName(char32_t character);
/// "U+20AC".
[[nodiscard]] QString codePointName(char32_t character);
