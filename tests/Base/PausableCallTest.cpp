// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/PausableCall.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include <sanitizer/asan_interface.h>
#include <unistd.h>

using testing::ElementsAre;

namespace {

int depthReached(PausableCall &call, int depth)
{
    volatile char kept[1000] = {char(depth)};
    if (depth == 0) {
        call.pause();
        return 0;
    }
    return depthReached(call, depth - 1) + (kept[0] == char(depth) ? 1 : 0);
}

} // namespace

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
/// They would be found on whatever comes to lie there.
TEST(PausableCall, LeavesNoMarksOfTheSanitizerWhereItsStackWas)
{
    volatile char *place = nullptr;
    {
        PausableCall call;
        call.start([&place] {
            volatile char here = 0;
            place = &here;
        });
    }
    // The stack ended with the page.
    const auto pageSize = uintptr_t(sysconf(_SC_PAGESIZE));
    const auto from = reinterpret_cast<uintptr_t>(place);
    EXPECT_EQ(__asan_region_is_poisoned(reinterpret_cast<void *>(from), pageSize - from % pageSize), nullptr);
}
#endif
#endif

TEST(PausableCall, GoesOnWhereItPausedWithAllThatItHolds)
{
    PausableCall one;
    PausableCall other;
    std::vector<std::string> events;
    const auto held = std::make_shared<int>(0);
    one.start([&, held] {
        EXPECT_TRUE(one.isWithin());
        other.start([&] {
            events.emplace_back("in the other");
            other.pause();
            events.emplace_back("at the other's end");
        });
        EXPECT_EQ(depthReached(one, 100), 100);
        events.emplace_back("at the end");
    });
    EXPECT_TRUE(one.isPaused());
    EXPECT_FALSE(one.isWithin());
    events.emplace_back("outside");
    other.resume();
    EXPECT_EQ(held.use_count(), 2);
    one.resume();
    EXPECT_FALSE(one.isPaused());
    EXPECT_EQ(held.use_count(), 1) << "nothing is left of what is done";
    EXPECT_THAT(events, ElementsAre("in the other", "outside", "at the other's end", "at the end"));

    int turns = 0;
    one.start([&] {
        for (; turns < 1000; ++turns) {
            one.pause();
        }
    });
    while (one.isPaused()) {
        one.resume();
    }
    EXPECT_EQ(turns, 1000);
}
