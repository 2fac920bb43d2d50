// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>

#include <cmath>

/// `color` with a share, from 0 to 1, of `other` in it; opaque.
[[nodiscard]] inline QColor mixed(const QColor &color, const QColor &other, double share)
{
    const auto mix = [share](int a, int b) { return int(std::lround(a * (1 - share) + b * share)); };
    return {mix(color.red(), other.red()), mix(color.green(), other.green()), mix(color.blue(), other.blue())};
}
