// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QScreen>
#include <QWidget>

/// Logical pixels, enough for the frame of any window manager, which is not known before a window is shown.
inline constexpr QSize frameRoom(16, 48);

/// As much of `wanted`, in logical pixels, as the window's screen has room for: at 200 % a small screen has little.
[[nodiscard]] inline QSize sizeOnScreen(const QWidget &window, QSize wanted)
{
    const QScreen *shown = window.screen();
    return shown ? wanted.boundedTo(shown->availableSize() - frameRoom) : wanted;
}
