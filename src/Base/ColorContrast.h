// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <initializer_list>

// Colours are sRGB, 0xAARRGGBB; alpha is not looked at.

/// How well two colours can be told apart, from 1 (they are the same) to 21 (black and white): the ratio of their relative luminances.
[[nodiscard]] double contrast(quint32 one, quint32 other);

/// `color` where it has a contrast of `least` with each of `grounds`; else moved towards `target` as little as it takes. Where even the
/// target has not enough, it moves towards black or white, whichever suits the grounds better, and may end there.
[[nodiscard]] quint32 legible(quint32 color, quint32 target, double least, std::initializer_list<quint32> grounds);

/// Black or white, whichever has the greater contrast with `ground`.
[[nodiscard]] quint32 oppositeOf(quint32 ground);
