// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What a dictionary is for, in the language of the interface: "German (Austria)"; its own name when that is no language.
[[nodiscard]] QString languageOfDictionary(const QString &dictionary);

/// The same with its own name behind it, where that is another: "German (Austria) – de_AT".
[[nodiscard]] QString titleOfDictionary(const QString &dictionary);
