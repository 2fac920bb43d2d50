// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Commands/Responder.h"

#include <QObject>
#include <QStringList>

#include <gtest/gtest.h>

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr Action copy{"copy:"};
constexpr Action firstTab{.id = "selectTab:", .tag = 1};
constexpr Action thirdTab{.id = "selectTab:", .tag = 3};
constexpr Action quit{"quit:"};

QStringList performed;

class View final : public QObject, public Responder {
public:
    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override
    {
        static constexpr auto rows = std::to_array<ActionRow>({
            action<&View::copy, &View::hasSelection>(::copy),
            action<&View::selectTab, &View::tabState>(firstTab),
        });
        return findAction(rows, wanted);
    }

    bool isSelected = false;

private:
    void copy() { performed << u"copy"_s; }
    [[nodiscard]] bool hasSelection() const { return isSelected; }
    void selectTab(const ActionSender &sender) { performed << u"tab %1 %2"_s.arg(sender.tag).arg(sender.represented.toString()); }
    [[nodiscard]] ActionState tabState(const ActionSender &sender) const
    {
        return {.isEnabled = sender.tag < 3, .checkMark = sender.tag == 1 ? CheckMark::on : CheckMark::none};
    }
};

class Application final : public Responder {
public:
    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override
    {
        static constexpr auto rows = std::to_array<ActionRow>({action<&Application::quit>(::quit), action<&Application::quit>(::copy)});
        return findAction(rows, wanted);
    }

private:
    void quit() { performed << u"quit"_s; }
};

} // namespace

TEST(Responder, ActionsTravelUpToTheFirstThatTakesThem)
{
    Application application;
    View view;
    QObject inside(&view);
    EXPECT_EQ(nearestResponder(&inside), &view);
    view.setNextResponder(&application);
    EXPECT_TRUE(view.perform(::copy));
    EXPECT_TRUE(view.perform(thirdTab, u"x"_s));
    EXPECT_TRUE(view.perform(::quit));
    EXPECT_FALSE(view.perform(Action{"unknown:"}));
    EXPECT_EQ(performed, QStringList({u"copy"_s, u"tab 3 x"_s, u"quit"_s}));

    EXPECT_FALSE(view.state(::copy).isEnabled) << "the application would take it, but the view comes first";
    view.isSelected = true;
    EXPECT_TRUE(view.state(::copy).isEnabled);
    EXPECT_TRUE(view.state(::quit).isEnabled);
    EXPECT_FALSE(view.state(Action{"unknown:"}).isEnabled);
    EXPECT_EQ(view.state(firstTab).checkMark, CheckMark::on);
    EXPECT_FALSE(view.state(thirdTab).isEnabled);
}
