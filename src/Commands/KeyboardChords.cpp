// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Commands/KeyboardChords.h"

namespace {

QSet<int> &chordsInUse()
{
    static QSet<int> chords;
    return chords;
}

} // namespace

void KeyboardChords::use(const QSet<int> &chords)
{
    chordsInUse() = chords;
}

bool KeyboardChords::has(const QKeySequence &keys)
{
    const QSet<int> &chords = chordsInUse();
    for (int index = 0; index < keys.count(); ++index) {
        const QKeyCombination chord = keys[uint(index)];
        if (!chords.isEmpty() && chord.key() < Qt::Key_Escape && !chords.contains(chord.toCombined())) {
            return false;
        }
    }
    return true;
}
