// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/ThemePalette.h"

#include "Highlighting/Theme.h"

QPalette paletteBeside(const Theme &theme, const QPalette &desktop)
{
    const bool isDesktopDark = desktop.color(QPalette::Window).lightness() < desktop.color(QPalette::WindowText).lightness();
    if (isDesktopDark == theme.isDark) {
        return {};
    }
    const auto ground = [&theme](double share) { return QColor::fromRgb(blended(theme.background, theme.foreground, share)); };
    const QColor text = QColor::fromRgb(theme.foreground);
    QPalette colors(ground(0.16), ground(0.04));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::BrightText}) {
        colors.setColor(role, text);
        colors.setColor(QPalette::Disabled, role, ground(0.45));
    }
    colors.setColor(QPalette::PlaceholderText, ground(0.7));
    colors.setColor(QPalette::Base, QColor::fromRgb(theme.background));
    for (const auto role : {QPalette::Highlight, QPalette::HighlightedText, QPalette::Link, QPalette::LinkVisited, QPalette::ToolTipBase,
                            QPalette::ToolTipText}) {
        for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            colors.setColor(group, role, desktop.color(group, role));
        }
    }
    return colors;
}
