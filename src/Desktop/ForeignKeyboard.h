// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

#include <optional>

class QKeyEvent;

/// Keyboards that write another script than Latin. Commands have Latin letters and a Latin keyboard's signs, so there they are found by
/// where a US keyboard has them. What a keyboard writes is known from the last letter that came from it. Main thread only.
namespace ForeignKeyboard {

/// Keeps in mind what is written, as far as this key tells.
void note(const QKeyEvent &event);
/// Whether the keyboard that a key comes from writes another script.
[[nodiscard]] bool wrote(const QKeyEvent &event);

/// What a key of a US keyboard writes.
struct Signs {
    char16_t plain;
    char16_t shifted;

    [[nodiscard]] bool isLetter() const { return plain >= u'a' && plain <= u'z'; }
};
/// In the place of a key; nothing where that writes nothing.
[[nodiscard]] std::optional<Signs> signsInPlaceOf(const QKeyEvent &event);
/// With Shift as it is held and letters in the case that the key wrote.
[[nodiscard]] std::optional<QString> textInPlaceOf(const QKeyEvent &event);

} // namespace ForeignKeyboard

/// Makes the chords of such keyboards those of a US keyboard, where the toolkit does not do it: it knows the letters of another layout only
/// when the user has one, and takes a sign for what it is wherever it is. A chord that then means nothing is what it was. On any keyboard
/// it also finds the shortcuts of signs that need AltGr, for which the toolkit never looks.
class ForeignChords final : public QObject {
public:
    /// For all windows of the program, as long as it lives.
    explicit ForeignChords(QObject *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};
