// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Session/SessionSnapshot.h"

class QWidget;

/// Where `window` stands, and its size when it is neither maximised nor in full screen. A place of 0, 0 where windows have none.
[[nodiscard]] WindowFrame frameOf(const QWidget &window);
/// As far as the screens that there are now allow it.
void placeWindow(QWidget &window, const WindowFrame &frame);
