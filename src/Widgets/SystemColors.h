// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Appearance.h"

#include <QColor>
#include <QGuiApplication>
#include <QPalette>

/// Colours that mean something, the same in every theme of one brightness.
namespace SystemColor {

[[nodiscard]] inline QColor yellow(Appearance appearance)
{
    return QColor::fromRgb(appearance == Appearance::dark ? 0xFFFFD60A : 0xFFFFCC00);
}
/// Dark enough for white text.
[[nodiscard]] inline QColor green()
{
    return QColor::fromRgb(0xFF248A3D);
}
/// Dark enough for white text.
[[nodiscard]] inline QColor purple()
{
    return QColor::fromRgb(0xFF9A44C4);
}
[[nodiscard]] inline QColor accent()
{
    return QGuiApplication::palette().color(QPalette::Active, QPalette::Highlight);
}

} // namespace SystemColor
