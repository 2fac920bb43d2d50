// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/BarColors.h"

#include "Base/ColorContrast.h"
#include "Highlighting/Theme.h"

#include <gtest/gtest.h>

TEST(BarColors, CanBeReadInEveryTheme)
{
    for (const Theme &own : Theme::all()) {
        const BarColors before = BarColors::of(own);
        EXPECT_EQ(before.text, own.gutterForeground);
        EXPECT_EQ(before.tabBorder, own.gutterSeparator);
        for (const Contrast wanted : {Contrast::legible, Contrast::high}) {
            const Theme &theme = Theme::shown(own, wanted);
            SCOPED_TRACE(theme.name.toUtf8().toStdString());
            const auto [text, mark] = limitsOf(wanted);
            const BarColors bar = BarColors::of(theme);
            EXPECT_GE(contrast(bar.text, bar.ground), text);
            EXPECT_GE(contrast(bar.border, bar.ground), mark);
            EXPECT_GE(contrast(bar.tabText, bar.tabBar), text);
            EXPECT_GE(contrast(bar.tabText, bar.hoveredTab), text);
            EXPECT_GE(contrast(bar.inactiveTabText, theme.background), text);
            EXPECT_GE(contrast(bar.tabBorder, bar.tabBar), mark);
            EXPECT_GE(contrast(bar.tabBorder, theme.background), mark);
            for (const QRgb accent : {0xFF308CC6, 0xFFF6D32D, 0xFF1A1A2E}) {
                EXPECT_GE(contrast(accentOn(theme, QColor::fromRgb(accent), AccentUse::text).rgb(), bar.ground), text);
            }
        }
    }
}
