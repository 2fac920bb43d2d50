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
constexpr Action comment{"comment:"};
constexpr Action describe{"describe:"};
constexpr Action firstTab{.id = "selectTab:", .tag = 1};
constexpr Action secondTab{.id = "selectTab:", .tag = 2};
constexpr Action thirdTab{.id = "selectTab:", .tag = 3};
constexpr Action quit{"quit:"};
constexpr Action unknown{"unknown:"};

QStringList performed;

class View : public QObject, public Responder {
public:
    explicit View(QObject *parent) : QObject(parent) {}

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override
    {
        static constexpr auto rows = std::to_array<ActionRow>({
            action<&View::copy, &View::hasSelection>(::copy),
            action<&View::selectTab, &View::tabState>(firstTab),
            action<&View::describe>(::describe),
        });
        return findAction(rows, wanted);
    }

    bool isSelected = false;

protected:
    virtual void describe() { performed << u"view"_s; }

private:
    void copy() { performed << u"copy"_s; }
    [[nodiscard]] bool hasSelection() const { return isSelected; }
    void selectTab(const ActionSender &sender) { performed << u"tab %1 %2"_s.arg(sender.tag).arg(sender.represented.toString()); }
    [[nodiscard]] ActionState tabState(const ActionSender &sender) const
    {
        return {.isEnabled = sender.tag < 3, .checkMark = sender.tag == 1 ? CheckMark::on : CheckMark::none, .title = u"Tab"_s};
    }
};

class Editor final : public View {
public:
    using View::View;

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override
    {
        static constexpr auto rows = std::to_array<ActionRow>({action<&Editor::comment>(::comment)});
        const ActionRow *row = findAction(rows, wanted);
        return row ? row : View::actionFor(wanted);
    }

private:
    void comment() { performed << u"comment"_s; }
    void describe() override { performed << u"editor"_s; }
};

class Application final : public Responder {
public:
    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override
    {
        static constexpr auto rows =
            std::to_array<ActionRow>({action<&Application::quit>(::quit), action<&Application::copyAlways>(::copy)});
        return findAction(rows, wanted);
    }

private:
    void quit() { performed << u"quit"_s; }
    void copyAlways() { performed << u"application copy"_s; }
};

} // namespace

TEST(Responder, ActionsTravelUpToTheFirstThatTakesThem)
{
    performed.clear();
    Application application;
    View window(nullptr);
    window.setNextResponder(&application);
    QObject plain(&window);
    Editor editor(&plain);

    EXPECT_EQ(nearestResponder(&plain), &window);
    EXPECT_EQ(editor.nextResponder(), &window);
    EXPECT_TRUE(editor.perform(comment));
    EXPECT_TRUE(editor.perform(::copy));
    EXPECT_TRUE(editor.perform(::describe));
    EXPECT_TRUE(editor.perform(secondTab, u"x"_s));
    EXPECT_TRUE(editor.perform(::quit));
    EXPECT_FALSE(editor.perform(::unknown));
    EXPECT_FALSE(window.perform(::comment));
    EXPECT_EQ(performed, QStringList({u"comment"_s, u"copy"_s, u"editor"_s, u"tab 2 x"_s, u"quit"_s}));
}

TEST(Responder, StateIsTheTargetsAlone)
{
    Application application;
    Editor editor(nullptr);
    editor.setNextResponder(&application);

    EXPECT_FALSE(editor.state(::copy).isEnabled) << "the application would take it, but the editor comes first";
    editor.isSelected = true;
    EXPECT_TRUE(editor.state(::copy).isEnabled);
    EXPECT_TRUE(editor.state(::quit).isEnabled);
    EXPECT_FALSE(editor.state(::unknown).isEnabled);
    const ActionState first = editor.state(firstTab);
    EXPECT_TRUE(first.isEnabled);
    EXPECT_EQ(first.checkMark, CheckMark::on);
    EXPECT_EQ(first.title, u"Tab"_s);
    EXPECT_FALSE(editor.state(thirdTab).isEnabled);
}
