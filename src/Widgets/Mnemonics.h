// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// `titles` with their underlined letters: the first letter of a word that no title before has and that is not among `taken`; those that
/// find none get any letter that is left, if there is one. `taken`, in lower case, has all of them afterwards. Titles come without
/// mnemonics; what they have of "&" is shown as it is.
[[nodiscard]] QStringList withMnemonics(const QStringList &titles, QString &taken);
