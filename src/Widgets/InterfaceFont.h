// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>

/// Sizes of text as parts of the desktop's own, so that they follow it.
namespace TextSize {
inline constexpr double tab = 12.0 / 13;
inline constexpr double status = 11.0 / 13;
inline constexpr double badge = 10.0 / 13;
} // namespace TextSize

/// `font` at `factor` times its size, whether that is kept in points or in pixels.
[[nodiscard]] inline QFont scaledFont(QFont font, double factor)
{
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * factor);
    } else {
        font.setPixelSize(qMax(1, qRound(font.pixelSize() * factor)));
    }
    return font;
}
