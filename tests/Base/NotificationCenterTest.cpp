// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/NotificationCenter.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

TEST(NotificationCenter, ObserversComeAndGoDuringADelivery)
{
    NotificationCenter center;
    std::vector<int> heard;
    NotificationCenter::Token first;
    NotificationCenter::Token second;
    NotificationCenter::Token third;
    NotificationCenter::Token late;
    first = center.observe("A", nullptr, [&] {
        heard.push_back(1);
        first.reset();
        second.reset();
        late = center.observe("A", nullptr, [&] { heard.push_back(4); });
        center.post("B", nullptr);
    });
    second = center.observe("A", nullptr, [&] { heard.push_back(2); });
    third = center.observe("A", nullptr, [&] { heard.push_back(3); });
    const auto nested = center.observe("B", nullptr, [&] {
        heard.push_back(5);
        if (heard.size() < 4) {
            center.post("A", nullptr);
        }
    });
    center.post("A", nullptr);
    EXPECT_THAT(heard, ElementsAre(1, 5, 3, 4, 3));
    EXPECT_FALSE(first.isObserving());
    EXPECT_TRUE(late.isObserving());
}

TEST(NotificationCenter, TokensOutliveTheCentreAndMayBeHeldByCallbacks)
{
    auto center = std::make_unique<NotificationCenter>();
    int heard = 0;
    auto inner = std::make_shared<NotificationCenter::Token>(center->observe("A", nullptr, [&] { ++heard; }));
    auto outer = center->observe("A", nullptr, [inner] {});
    inner.reset();
    outer.reset();
    auto replaced = center->observe("A", nullptr, [&] { heard += 10; });
    replaced = center->observe("A", nullptr, [&] { ++heard; });
    center->post("A", nullptr);
    EXPECT_EQ(heard, 1);
    inner = std::make_shared<NotificationCenter::Token>(center->observe("A", nullptr, [] {}));
    outer = center->observe("A", nullptr, [inner] {});
    inner.reset();
    center.reset();
    EXPECT_FALSE(replaced.isObserving());
}
