// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class ForeignKeyboard;

/// Makes the chords of keyboards that write another script than Latin those of a US keyboard, where the toolkit does not do it: it knows
/// the letters of another layout only when the user has one, and takes a sign for what it is wherever it is. A chord that then means
/// nothing is what it was. On any keyboard it also finds the shortcuts of signs that need AltGr, for which the toolkit never looks.
class ForeignChords final : public QObject {
public:
    /// For all windows of the program, as long as it lives.
    explicit ForeignChords(ForeignKeyboard &keyboard, QObject *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    ForeignKeyboard &m_keyboard;
};
