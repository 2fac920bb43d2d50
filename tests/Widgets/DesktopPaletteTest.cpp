// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/DesktopPalette.h"

#include "Base/ColorContrast.h"

#include <QApplication>
#include <QTimer>
#include <QToolTip>

namespace {

QPalette paletteOf(const QColor &ground, const QColor &text)
{
    QPalette palette;
    palette.setColor(QPalette::Base, ground);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 144));
    palette.setColor(QPalette::ToolTipBase, QColor(255, 255, 220));
    return palette;
}

} // namespace

TEST(DesktopPalette, AdjustsOnlyWhatCannotBeRead)
{
    const QPalette light = paletteOf(Qt::white, Qt::black);
    EXPECT_EQ(legibleHints(light).resolveMask(), 0U);
    QPalette dark = paletteOf(0x232629, 0xEFF0F1);
    EXPECT_FALSE(legibleHints(dark).isBrushSet(QPalette::Active, QPalette::Base)) << "the rest stays the desktop's";
    dark.setColor(QPalette::ToolTipBase, 0x31363B);
    EXPECT_EQ(plainToolTips(dark).resolveMask(), 0U);
}

TEST(DesktopPalette, LooksAsTheDesktopRequests)
{
    QPalette light = paletteOf(Qt::white, Qt::black);
    light.setColor(QPalette::Window, 0xEEEEEE);
    light.setColor(QPalette::WindowText, Qt::black);
    EXPECT_EQ(requestedPalette(light, {}).resolveMask(), 0U);
    EXPECT_EQ(requestedPalette(light, {.scheme = Appearance::light}).resolveMask(), 0U);
    const QPalette dark = requestedPalette(light, {.scheme = Appearance::dark});
    for (const auto &[ground, text] : {std::pair(QPalette::Window, QPalette::WindowText),
                                       {QPalette::Base, QPalette::Text},
                                       {QPalette::Button, QPalette::ButtonText},
                                       {QPalette::ToolTipBase, QPalette::ToolTipText}}) {
        EXPECT_LT(dark.color(ground).lightness(), 80);
        EXPECT_GT(dark.color(text).lightness(), 200);
        EXPECT_GT(dark.color(QPalette::Disabled, text).lightness(), dark.color(ground).lightness() + 40);
    }
    EXPECT_GT(requestedPalette(dark, {.scheme = Appearance::light}).color(QPalette::Window).lightness(), 200);
    EXPECT_EQ(requestedPalette(dark, {.scheme = Appearance::dark}).resolveMask(), 0U);

    const QPalette accented = requestedPalette(light, {.accent = QColor(0x9141AC)});
    EXPECT_EQ(accented.color(QPalette::Highlight), QColor(0x9141AC));
    EXPECT_EQ(accented.color(QPalette::HighlightedText), QColor(Qt::white));
    EXPECT_FALSE(accented.isBrushSet(QPalette::Active, QPalette::Window));
    const QPalette blue = requestedPalette(light, {.accent = QColor(0x3584E4)});
    EXPECT_GE(contrast(blue.color(QPalette::Highlight).rgb(), 0xFFFFFFFF), 4.5) << "a little darker, for white";
    EXPECT_EQ(blue.color(QPalette::HighlightedText), QColor(Qt::white));
    EXPECT_EQ(requestedPalette(light, {.accent = QColor(0xF6D32D)}).color(QPalette::HighlightedText), QColor(Qt::black));

    EXPECT_EQ(requestedPalette(light, {.hasHighContrast = true}).color(QPalette::Base), QColor(Qt::white));
    const QPalette stark = requestedPalette(light, {.scheme = Appearance::dark, .hasHighContrast = true});
    EXPECT_EQ(stark.color(QPalette::Window), QColor(Qt::black));
    EXPECT_EQ(stark.color(QPalette::Text), QColor(Qt::white));
    EXPECT_GT(stark.color(QPalette::Base).lightness(), 60) << "boxes have no outline on black";
}

TEST(DesktopPalette, FollowsTheDesktop)
{
    const QPalette before = QApplication::palette();
    const QPalette toolTipBefore = QToolTip::palette();
    QPalette desktop;
    const auto changeTo = [&desktop](const QPalette &palette) {
        desktop = palette;
        QApplication::setPalette(palette);
        QCoreApplication::sendPostedEvents();
    };
    const auto lightness = [](QPalette::ColorRole role) { return QApplication::palette().color(role).lightness(); };
    const auto lightnessOfToolTips = [] { return QToolTip::palette().color(QPalette::ToolTipBase).lightness(); };
    // The toolkit reports palettes only while the application runs.
    QTimer::singleShot(0, [&] {
        changeTo(paletteOf(0x232629, 0xEFF0F1));
        {
            DesktopPalette adjusting([&desktop] {
                QApplication::setPalette(QPalette());
                return desktop;
            });
            EXPECT_GT(lightness(QPalette::PlaceholderText), 120);
            EXPECT_LT(lightnessOfToolTips(), 60);
            changeTo(paletteOf(Qt::white, Qt::black));
            EXPECT_LT(lightness(QPalette::PlaceholderText), 180);
            EXPECT_GT(lightnessOfToolTips(), 220);

            adjusting.adapt({.scheme = Appearance::dark, .accent = QColor(0x9141AC)});
            EXPECT_LT(lightness(QPalette::Base), 60);
            EXPECT_LT(lightnessOfToolTips(), 80);
            // A desktop that becomes dark itself as well has colours of its own for it.
            QPalette ownDark = paletteOf(0x101820, 0xEFF0F1);
            ownDark.setColor(QPalette::Window, 0x101820);
            ownDark.setColor(QPalette::WindowText, 0xEFF0F1);
            changeTo(ownDark);
            EXPECT_EQ(QApplication::palette().color(QPalette::Base), QColor(0x101820));
            EXPECT_EQ(QApplication::palette().color(QPalette::Highlight), QColor(0x9141AC));

            // What the user chose for the texts goes before, and is not taken for the desktop's.
            adjusting.follow(Appearance::light);
            EXPECT_GT(lightness(QPalette::Window), 200);
            EXPECT_EQ(adjusting.ofDesktop(), Appearance::dark);
            adjusting.follow(std::nullopt);
            EXPECT_EQ(QApplication::palette().color(QPalette::Window), QColor(0x101820));

            adjusting.adapt({});
            QPalette ownLight = paletteOf(Qt::white, Qt::black);
            ownLight.setColor(QPalette::Window, 0xEEEEEE);
            ownLight.setColor(QPalette::WindowText, Qt::black);
            changeTo(ownLight);
            adjusting.follow(Appearance::dark);
            const auto box = [] { return QApplication::palette("QCheckBox").color(QPalette::Base); };
            EXPECT_GT(box().lightness(), lightness(QPalette::Base) + 30) << "their outlines are not seen on it";
            adjusting.follow(std::nullopt);
            EXPECT_EQ(box(), QApplication::palette().color(QPalette::Base));
        }
        QCoreApplication::quit();
    });
    QApplication::exec();
    QApplication::setPalette(before);
    QToolTip::setPalette(toolTipBefore);
}
