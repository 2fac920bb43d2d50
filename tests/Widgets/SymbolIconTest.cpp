// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/SymbolIcon.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPalette>

#include <gtest/gtest.h>

#include <set>

using namespace Qt::StringLiterals;

namespace {

class SymbolIcon : public testing::Test {
protected:
    void SetUp() override
    {
        QPalette palette;
        palette.setColor(QPalette::ButtonText, Qt::blue);
        palette.setColor(QPalette::HighlightedText, Qt::yellow);
        palette.setColor(QPalette::Disabled, QPalette::ButtonText, Qt::gray);
        QGuiApplication::setPalette(palette);
    }
    void TearDown() override { QGuiApplication::setPalette(m_before); }

    /// The colours of what is covered fully.
    static std::set<QRgb> colors(const QIcon &icon, QIcon::Mode mode)
    {
        std::set<QRgb> found;
        const QImage image = icon.pixmap(QSize(48, 48), 1.0, mode).toImage();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y).alpha() == 255) {
                    found.insert(image.pixelColor(x, y).rgb());
                }
            }
        }
        return found;
    }

private:
    QPalette m_before = QGuiApplication::palette();
};

} // namespace

TEST_F(SymbolIcon, IsTintedByThePalette)
{
    const QIcon plain = symbolIcon("folder"_L1);
    const QIcon red = symbolIcon("trash"_L1, Qt::red);
    EXPECT_EQ(colors(plain, QIcon::Normal), std::set{QColor(Qt::blue).rgb()});
    EXPECT_EQ(colors(plain, QIcon::Active), std::set{QColor(Qt::blue).rgb()});
    EXPECT_EQ(colors(plain, QIcon::Selected), std::set{QColor(Qt::yellow).rgb()});
    EXPECT_EQ(colors(plain, QIcon::Disabled), std::set{QColor(Qt::gray).rgb()});
    EXPECT_EQ(colors(red, QIcon::Normal), std::set{QColor(Qt::red).rgb()});
    EXPECT_EQ(colors(red, QIcon::Disabled), std::set{QColor(Qt::gray).rgb()});

    QPalette other = QGuiApplication::palette();
    other.setColor(QPalette::ButtonText, Qt::green);
    QGuiApplication::setPalette(other);
    EXPECT_EQ(colors(plain, QIcon::Normal), std::set{QColor(Qt::green).rgb()}) << "the icon was there before the palette";
}

TEST_F(SymbolIcon, IsDrawnAtDevicePixels)
{
    const QIcon icon = symbolIcon("trash"_L1);
    const QPixmap twice = icon.pixmap(QSize(16, 16), 2.0);
    EXPECT_EQ(twice.size(), QSize(32, 32));
    EXPECT_EQ(twice.toImage(), icon.pixmap(QSize(32, 32), 1.0).toImage()) << "as if it were of that size";

    const auto painted = [&icon](QSize size, double scale, QRect place) {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        icon.paint(&painter, place);
        painter.end();
        image.setDevicePixelRatio(1);
        return image;
    };
    EXPECT_EQ(painted({32, 32}, 2, {0, 0, 16, 16}), painted({32, 32}, 1, {0, 0, 32, 32}));
    EXPECT_EQ(painted({64, 32}, 1, {0, 0, 64, 32}).copy(16, 0, 32, 32), painted({32, 32}, 1, {0, 0, 32, 32})) << "never stretched";
}

TEST_F(SymbolIcon, KnowsItsNames)
{
    EXPECT_EQ(colors(symbolIcon(u"chevron.right.2"_s), QIcon::Normal).size(), 1U);
    EXPECT_TRUE(symbolIcon("no.such.symbol"_L1).isNull());
    EXPECT_FALSE(applicationIcon().pixmap(16, 16).isNull());
}
