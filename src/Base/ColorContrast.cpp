// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/ColorContrast.h"

#include "Base/ColorBlend.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr quint32 black = 0xFF000000;
constexpr quint32 white = 0xFFFFFFFF;
/// A step is less than what one channel can show.
constexpr int steps = 256;

/// The light of every value of a channel, from 0 to 1: a theme is asked for thousands of contrasts at each start.
const std::array<double, 256> &lightOfValues()
{
    static const auto all = [] {
        std::array<double, 256> light{};
        for (size_t value = 0; value < light.size(); ++value) {
            const double part = double(value) / 0xFF;
            light[value] = part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        }
        return light;
    }();
    return all;
}

/// From 0 to 1, as WCAG 2 defines it.
double luminance(quint32 color)
{
    const auto &light = lightOfValues();
    return 0.2126 * light[color >> 16 & 0xFF] + 0.7152 * light[color >> 8 & 0xFF] + 0.0722 * light[color & 0xFF];
}

double leastContrast(quint32 color, std::initializer_list<quint32> grounds)
{
    double least = contrast(black, white);
    for (const quint32 ground : grounds) {
        least = std::min(least, contrast(color, ground));
    }
    return least;
}

} // namespace

double contrast(quint32 one, quint32 other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

quint32 oppositeOf(quint32 ground)
{
    return contrast(black, ground) > contrast(white, ground) ? black : white;
}

quint32 legible(quint32 color, quint32 target, double least, std::initializer_list<quint32> grounds)
{
    const quint32 extreme = leastContrast(black, grounds) > leastContrast(white, grounds) ? black : white;
    for (const quint32 end : {target, extreme}) {
        for (int step = 0; step <= steps; ++step) {
            if (const quint32 moved = blended(color, end, double(step) / steps); leastContrast(moved, grounds) >= least) {
                return moved;
            }
        }
    }
    return extreme;
}
