// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <algorithm>
#include <cmath>

/// `color` moved towards `other`, by 0 (stays as it is) to 1 (becomes the other), each channel of 0xAARRGGBB on its own.
[[nodiscard]] inline quint32 blended(quint32 color, quint32 other, double fraction)
{
    const double part = std::clamp(fraction, 0.0, 1.0);
    quint32 result = 0;
    for (const int shift : {24, 16, 8, 0}) {
        const double channel = double(color >> shift & 0xFF) * (1 - part) + double(other >> shift & 0xFF) * part;
        result |= quint32(std::lround(channel)) << shift;
    }
    return result;
}
