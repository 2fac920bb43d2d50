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
    explicit FakeSource(std::function<void(const RequestedAppearance &)> &notify) : m_notify(notify) {}
    void start(std::function<void(const RequestedAppearance &requested)> notify) override { m_notify = std::move(notify); }

private:
    std::function<void(const RequestedAppearance &)> &m_notify;
};

class SystemAppearanceTest : public testing::Test {
protected:
    const QPalette before = QGuiApplication::palette();
    std::function<void(const RequestedAppearance &)> notify;
    std::vector<Appearance> reported;

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
        auto appearance = std::make_unique<SystemAppearance>(std::make_unique<FakeSource>(notify));
        QObject::connect(appearance.get(), &SystemAppearance::changed, [this, made = appearance.get()](Appearance now) {
            EXPECT_EQ(made->current(), now) << "whoever is notified asks";
            reported.push_back(now);
        });
        return appearance;
    }
};

} // namespace

TEST_F(SystemAppearanceTest, GoesByThePaletteWhereTheDesktopSaysNothing)
{
    const auto appearance = made();
    EXPECT_EQ(appearance->current(), Appearance::light);
    setPalette(Qt::darkGray, Qt::white);
    setPalette(Qt::lightGray, Qt::black);
    EXPECT_THAT(std::exchange(reported, {}), ElementsAre(Appearance::dark, Appearance::light));

    notify({.scheme = Appearance::dark});
    notify({.scheme = Appearance::dark});
    setPalette(Qt::white, Qt::black);
    EXPECT_THAT(std::exchange(reported, {}), ElementsAre(Appearance::dark));
    notify({});
    EXPECT_THAT(std::exchange(reported, {}), ElementsAre(Appearance::light));
    notify({.scheme = Appearance::light});
    setPalette(Qt::black, Qt::white);
    EXPECT_TRUE(reported.empty());
    notify({});
    EXPECT_THAT(reported, ElementsAre(Appearance::dark));
    EXPECT_EQ(made()->current(), Appearance::dark);
}
