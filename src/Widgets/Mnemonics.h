// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

class QMenu;

/// `titles` with their underlined letters: the first of all if no title before begins so and it is not among `taken`, so that Save is S
/// wherever it stands; for the others the first letter of a word, and at last any letter that is left, or that another title can do
/// without, if there is one. `taken`, in lower case, has all of them afterwards. Titles come without mnemonics; what they have of "&" is
/// shown as it is.
[[nodiscard]] QStringList withMnemonics(const QStringList &titles, QString &taken);

/// A title with an underlined letter that no item of the menu has, for what comes to it later.
[[nodiscard]] QString withMnemonic(const QString &title, const QMenu &menu);
