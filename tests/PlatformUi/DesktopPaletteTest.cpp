// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Platform/DesktopPalette.h"

#include <QApplication>
#include <QToolTip>

namespace {

QPalette paletteOf(const QColor &ground, const QColor &text)
{
    QPalette palette;
    palette.setColor(QPalette::Base, ground);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
    palette.setColor(QPalette::ToolTipBase, QColor(255, 255, 220));
    return palette;
}

} // namespace

TEST(DesktopPalette, MendsOnlyWhatCannotBeRead)
{
    const QPalette light = paletteOf(Qt::white, Qt::black);
    EXPECT_EQ(legibleHints(light).resolveMask(), 0U);
    const QPalette dark = paletteOf(0x232629, 0xEFF0F1);
    const QPalette hints = legibleHints(dark);
    EXPECT_GT(hints.color(QPalette::PlaceholderText).lightness(), 120);
    EXPECT_FALSE(hints.isBrushSet(QPalette::Active, QPalette::Base)) << "the rest stays the desktop's";

    EXPECT_LT(plainToolTips(dark).color(QPalette::ToolTipBase).lightness(), 60);
    QPalette chosen = dark;
    chosen.setColor(QPalette::ToolTipBase, 0x31363B);
    EXPECT_EQ(plainToolTips(chosen).resolveMask(), 0U);
}

TEST(DesktopPalette, FollowsTheDesktop)
{
    const QPalette before = QApplication::palette();
    const QPalette toolTipBefore = QToolTip::palette();
    QApplication::setPalette(paletteOf(0x232629, 0xEFF0F1));
    {
        const DesktopPalette mending;
        EXPECT_GT(QApplication::palette().color(QPalette::PlaceholderText).lightness(), 120);
        EXPECT_LT(QToolTip::palette().color(QPalette::ToolTipBase).lightness(), 60);
        QApplication::setPalette(paletteOf(Qt::white, Qt::black));
        QCoreApplication::sendPostedEvents();
        EXPECT_LT(QApplication::palette().color(QPalette::PlaceholderText).lightness(), 180);
        EXPECT_GT(QToolTip::palette().color(QPalette::ToolTipBase).lightness(), 220);
    }
    QApplication::setPalette(before);
    QToolTip::setPalette(toolTipBefore);
}
