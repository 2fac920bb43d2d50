// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

/// The desktop's style, but for what hinders: menus that are longer than the screen scroll instead of growing columns that are cut off at
/// its edge, flat buttons with the focus have a ring that is seen, and disabled texts are not embossed.
class InterfaceStyle final : public QProxyStyle {
public:
    /// That of the desktop, whichever it is.
    InterfaceStyle() = default;

    [[nodiscard]] int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                                QStyleHintReturn *returned) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;

    /// Of a menu bar that has not enough room: every one makes its picture when it is made itself, which the toolkit reads from files.
    [[nodiscard]] QIcon standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const override;

    /// The name of the style that the program's is, or is made of.
    [[nodiscard]] static QString baseName();
};
