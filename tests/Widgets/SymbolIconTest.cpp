// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/SymbolIcon.h"

#include <QGuiApplication>
#include <QImage>
#include <QPalette>

#include <gtest/gtest.h>

#include <set>

using namespace Qt::StringLiterals;

namespace {

class SymbolIcon : public testing::Test {
protected:
    SymbolIcon() { setButtonText(Qt::blue); }
    ~SymbolIcon() override { QGuiApplication::setPalette(m_before); }

    static void setButtonText(Qt::GlobalColor color)
    {
        QPalette palette;
        palette.setColor(QPalette::ButtonText, color);
        palette.setColor(QPalette::HighlightedText, Qt::yellow);
        palette.setColor(QPalette::Disabled, QPalette::ButtonText, Qt::gray);
        QGuiApplication::setPalette(palette);
    }
    /// The colour of what is covered fully, invalid if there are several.
    static QColor colorOf(const QIcon &icon, QIcon::Mode mode)
    {
        std::set<QRgb> found;
        const QImage image = icon.pixmap(QSize(48, 48), 1.0, mode).toImage();
        for (int place = 0; place < 48 * 48; ++place) {
            const QColor color = image.pixelColor(place % 48, place / 48);
            if (color.alpha() == 255) {
                found.insert(color.rgb());
            }
        }
        return found.size() == 1 ? QColor(*found.begin()) : QColor();
    }

private:
    QPalette m_before = QGuiApplication::palette();
};

} // namespace

TEST_F(SymbolIcon, IsTintedByThePalette)
{
    const QIcon plain = symbolIcon(u"chevron.right.2"_s);
    const QIcon red = symbolIcon("trash"_L1, Qt::red);
    EXPECT_EQ(colorOf(plain, QIcon::Normal), QColor(Qt::blue));
    EXPECT_EQ(colorOf(plain, QIcon::Active), QColor(Qt::blue));
    EXPECT_EQ(colorOf(plain, QIcon::Selected), QColor(Qt::yellow));
    EXPECT_EQ(colorOf(plain, QIcon::Disabled), QColor(Qt::gray));
    EXPECT_EQ(colorOf(red, QIcon::Normal), QColor(Qt::red));
    EXPECT_EQ(colorOf(red, QIcon::Disabled), QColor(Qt::gray));
    setButtonText(Qt::green);
    EXPECT_EQ(colorOf(plain, QIcon::Normal), QColor(Qt::green)) << "the icon was there before the palette";
    EXPECT_TRUE(symbolIcon("no.such.symbol"_L1).isNull());
    EXPECT_FALSE(applicationIcon().pixmap(16, 16).isNull());
}

TEST_F(SymbolIcon, IsDrawnAtDevicePixels)
{
    const QIcon icon = symbolIcon("trash"_L1);
    EXPECT_EQ(icon.pixmap(QSize(16, 16), 2.0).toImage(), icon.pixmap(QSize(32, 32), 1.0).toImage()) << "as if it were of that size";
}
