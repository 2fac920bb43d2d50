// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/SystemPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(SystemPasteboard, MakesTextsOnlyWhenAsked)
{
    SystemPasteboard pasteboard;
    int made = 0;
    pasteboard.setLazyText([&] {
        ++made;
        return u"Grüße\n"_s;
    });
    EXPECT_TRUE(pasteboard.hasText());
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    EXPECT_EQ(data->formats(), QStringList({u"text/plain"_s, u"text/plain;charset=utf-8"_s}));
    EXPECT_EQ(made, 0);
    EXPECT_EQ(pasteboard.text(), u"Grüße\n"_s);
    EXPECT_EQ(data->data(u"text/plain;charset=utf-8"_s), "Grüße\n");
    EXPECT_EQ(data->data(u"text/plain"_s), "Grüße\n");
}

TEST(SystemPasteboard, CountsEveryChangeAndOnlyChanges)
{
    SystemPasteboard pasteboard;
    SystemPasteboard neighbour;
    const int start = pasteboard.changeCount();
    pasteboard.setText(u"one"_s);
    EXPECT_EQ(pasteboard.text(), u"one"_s);
    EXPECT_EQ(pasteboard.changeCount(), start + 1);

    // Another part of the program that knows nothing of the pasteboard.
    auto *picture = new QMimeData;
    picture->setData(u"image/png"_s, "x");
    QGuiApplication::clipboard()->setMimeData(picture);
    EXPECT_EQ(pasteboard.changeCount(), start + 2);
    EXPECT_FALSE(pasteboard.hasText());
    EXPECT_EQ(pasteboard.text(), QString());

    neighbour.setText(u"two"_s);
    EXPECT_EQ(pasteboard.changeCount(), start + 3);
    EXPECT_TRUE(pasteboard.hasText());
}
