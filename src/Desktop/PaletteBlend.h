// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/ColorBlend.h"

#include <QColor>

/// The same for colours of palettes; opaque.
[[nodiscard]] inline QColor blended(const QColor &color, const QColor &other, double fraction)
{
    return QColor::fromRgb(blended(color.rgb(), other.rgb(), fraction));
}
