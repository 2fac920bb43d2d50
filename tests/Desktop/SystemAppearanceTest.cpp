// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/SystemAppearance.h"

#include <QGuiApplication>
#include <QPalette>

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

class FakeSource final : public AppearanceSource {
public:
    explicit FakeSource(std::function<void(const DesktopWishes &)> &tell) : m_tell(tell) {}
    void start(std::function<void(const DesktopWishes &wishes)> tell) override { m_tell = std::move(tell); }

private:
    std::function<void(const DesktopWishes &)> &m_tell;
};

class SystemAppearanceTest : public testing::Test {
protected:
    const QPalette before = QGuiApplication::palette();
    std::function<void(const DesktopWishes &)> tell;
    std::vector<Appearance> told;

    SystemAppearanceTest() { setPalette(Qt::white, Qt::black); }
    ~SystemAppearanceTest() override { QGuiApplication::setPalette(before); }

    static void setPalette(Qt::GlobalColor ground, Qt::GlobalColor text)
    {
        QPalette palette;
        palette.setColor(QPalette::Window, ground);
        palette.setColor(QPalette::WindowText, text);
        QGuiApplication::setPalette(palette);
    }
    std::unique_ptr<SystemAppearance> made()
    {
        auto appearance = std::make_unique<SystemAppearance>(std::make_unique<FakeSource>(tell));
        QObject::connect(appearance.get(), &SystemAppearance::changed, [this, made = appearance.get()](Appearance now) {
            EXPECT_EQ(made->current(), now) << "whoever hears of it asks";
            told.push_back(now);
        });
        return appearance;
    }
};

} // namespace

TEST_F(SystemAppearanceTest, GoesByThePaletteUntilTheDesktopSpeaks)
{
    const auto appearance = made();
    EXPECT_EQ(appearance->current(), Appearance::light);
    setPalette(Qt::darkGray, Qt::white);
    EXPECT_EQ(appearance->current(), Appearance::dark);
    setPalette(Qt::lightGray, Qt::black);
    EXPECT_THAT(told, ElementsAre(Appearance::dark, Appearance::light));

    setPalette(Qt::black, Qt::white);
    EXPECT_EQ(made()->current(), Appearance::dark);
}

TEST_F(SystemAppearanceTest, FollowsTheDesktopAndFallsBackToThePalette)
{
    const auto appearance = made();
    tell({.scheme = Appearance::dark});
    EXPECT_EQ(appearance->current(), Appearance::dark);
    tell({.scheme = Appearance::dark});
    setPalette(Qt::lightGray, Qt::black);
    EXPECT_THAT(told, ElementsAre(Appearance::dark));

    tell({});
    EXPECT_THAT(told, ElementsAre(Appearance::dark, Appearance::light));
    tell({.scheme = Appearance::light});
    setPalette(Qt::black, Qt::white);
    EXPECT_THAT(told, ElementsAre(Appearance::dark, Appearance::light));
    tell({});
    EXPECT_THAT(told, ElementsAre(Appearance::dark, Appearance::light, Appearance::dark));
}
