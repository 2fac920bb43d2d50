// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/BarColors.h"

#include "Base/ColorContrast.h"
#include "Highlighting/Theme.h"

namespace {

constexpr quint32 black = 0xFF000000;
constexpr double darkening = 0.35;
constexpr double lightDarkening = 0.06;
constexpr double hoverShare = 0.4;
constexpr double inactiveShare = 0.6;

} // namespace

BarColors BarColors::of(const Theme &theme)
{
    const auto [text, mark] = limitsOf(theme.contrast);
    const auto beside = [&theme](quint32 color, double least, std::initializer_list<quint32> grounds) {
        return legible(color, theme.foreground, least, grounds);
    };
    const quint32 tabBar = blended(theme.gutterBackground, black, theme.isDark ? darkening : lightDarkening);
    const quint32 hoveredTab = blended(tabBar, theme.background, hoverShare);
    return {.ground = theme.gutterBackground,
            .text = beside(theme.gutterForeground, text, {theme.gutterBackground}),
            .border = theme.gutterSeparator,
            .tabBar = tabBar,
            .hoveredTab = hoveredTab,
            .tabBorder = beside(theme.gutterSeparator, mark, {tabBar, theme.background}),
            .tabText = beside(theme.gutterForeground, text, {tabBar, hoveredTab}),
            .inactiveTabText = beside(blended(theme.background, theme.foreground, inactiveShare), text, {theme.background})};
}

QColor accentOn(const Theme &theme, const QColor &accent, AccentUse use)
{
    const auto [text, mark] = limitsOf(theme.contrast);
    const double least = use == AccentUse::text ? text : mark;
    return QColor::fromRgb(legible(accent.rgb(), theme.foreground, least, {theme.gutterBackground, theme.background}));
}
