// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"

#include <QKeySequence>
#include <QSet>

/// The chords that the keyboard in use can type. Of the keys of a command those are shown before others. Main thread only.
class KeyboardChords final {
public:
    KeyboardChords() = delete;

    /// Others can be typed than before; about nothing. What shows keys is to be brought up to date.
    static constexpr NotificationName didChangeNotification = "QLT.KeyboardDidChange";

    /// Keys with their modifiers, as QKeySequence combines them. Announces nothing. None when it is not known what there is.
    static void use(const QSet<int> &chords);
    /// Whether all of `keys` can be typed, as far as it is known; keys that write nothing always can.
    [[nodiscard]] static bool has(const QKeySequence &keys);
};
