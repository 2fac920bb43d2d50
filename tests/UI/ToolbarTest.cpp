// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/EditorToolbarController.h"

#include "UI/ToolbarActionItem.h"
#include "UI/ToolbarCatalogue.h"
#include "UI/ToolbarStrip.h"
#include "WindowFixture.h"

#include <QLabel>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class ToolbarTest : public WindowTest {
protected:
    /// What is shown is so at once and stays so a moment later.
    void settle()
    {
        scheduler.advance(50ms);
        QCoreApplication::processEvents();
    }
    void configure(ToolbarStyle style, const QStringList &ids)
    {
        preferences.set(Settings::toolbarItemIDs, ids);
        preferences.set(Settings::toolbarStyle, style);
        settle();
    }
    [[nodiscard]] EditorToolbarController &toolbar() const { return window().toolbar(); }
    [[nodiscard]] ToolbarActionItem *button(const QString &label) const { return control<ToolbarActionItem>(*toolbar().strip(), label); }
};

} // namespace

TEST_F(ToolbarTest, StandsWhereTheStyleSays)
{
    const auto rows = [this] { return window().findChildren<QToolBar *>(u"QuilletToolbar"_s, Qt::FindDirectChildrenOnly); };
    EXPECT_EQ(window().menuBar()->cornerWidget(), toolbar().strip());
    EXPECT_TRUE(toolbar().strip()->isVisible());
    EXPECT_TRUE(rows().isEmpty());

    preferences.set(Settings::toolbarStyle, ToolbarStyle::separate);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_EQ(rows().size(), 1);
    EXPECT_TRUE(rows().first()->isAncestorOf(toolbar().strip()));
    EXPECT_EQ(window().menuBar()->cornerWidget(), nullptr);
    const std::unique_ptr<QMenu> contextMenu(window().createPopupMenu());
    EXPECT_TRUE(!contextMenu || contextMenu->isEmpty()) << "nothing there hides the toolbar";

    preferences.set(Settings::toolbarStyle, ToolbarStyle::hidden);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(toolbar().strip(), nullptr);
    EXPECT_TRUE(rows().isEmpty());
}

TEST_F(ToolbarTest, ShowsTheLanguageTheTitleAndWhatIsOn)
{
    preferences.set(Settings::windowShowsTitle, true);
    workspace().open({put(u"a[*].txt"_s, "text")});
    type(u"x"_s);
    settle();
    const auto *label = toolbar().strip()->findChild<QLabel *>();
    EXPECT_EQ(label->text(), u"a[*].txt*"_s);
    EXPECT_TRUE(label->isVisible());
    EXPECT_LE(label->geometry().right(), button(u"New"_s)->x());
    EXPECT_EQ(button(u"Save"_s)->toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
    button(u"Save"_s)->click();
    EXPECT_EQ(label->text(), u"a[*].txt"_s);

    preferences.set(Settings::toolbarShowsLabels, false);
    preferences.set(Settings::language, AppLanguage::german);
    EXPECT_EQ(button(u"Speichern"_s)->toolButtonStyle(), Qt::ToolButtonIconOnly);
    EXPECT_EQ(button(u"Speichern"_s)->toolTip(), u"Speichern (Ctrl+S)"_s);

    configure(ToolbarStyle::combined, {u"nonsense"_s, u"lineNumbers"_s, u""_s});
    ASSERT_EQ(toolbar().strip()->items().size(), 1U);
    ToolbarActionItem &numbers = *toolbar().strip()->items().front();
    const bool before = preferences.value(Settings::showLineNumbers);
    numbers.click();
    EXPECT_EQ(preferences.value(Settings::showLineNumbers), !before);
    EXPECT_EQ(numbers.isChecked(), !before);
    preferences.set(Settings::showLineNumbers, before);
    settle();
    EXPECT_EQ(numbers.isChecked(), before) << "changed elsewhere";
}

TEST_F(ToolbarTest, IsEnabledAsTheFirstResponderSays)
{
    settle();
    EXPECT_TRUE(button(u"Save"_s)->isEnabled());
    EXPECT_FALSE(button(u"Backup"_s)->isEnabled());
    workspace().open({put(u"a.txt"_s, "text")});
    const int pending = scheduler.pendingCount();
    for (int i = 0; i < 5; ++i) {
        notifications.post(TextDocument::didChangeMetadata, nullptr);
        toolbar().validateSoon();
    }
    EXPECT_LE(scheduler.pendingCount(), pending + 1) << "once for all of them";
    EXPECT_FALSE(button(u"Backup"_s)->isEnabled()) << "not within the key press";
    scheduler.advance(50ms);
    EXPECT_TRUE(button(u"Backup"_s)->isEnabled());
}

TEST_F(ToolbarTest, PutsWhatDoesNotFitIntoAMenu)
{
    QStringList all;
    for (const ToolbarAction &action : ToolbarCatalogue::all()) {
        all << action.id;
    }
    for (const ToolbarStyle style : {ToolbarStyle::combined, ToolbarStyle::separate}) {
        configure(style, all);
        window().resize(480, 300);
        settle();
        const ToolbarStrip &strip = *toolbar().strip();
        QStringList hidden;
        int end = 0;
        for (const ToolbarActionItem *item : strip.items()) {
            if (item->isVisible()) {
                EXPECT_TRUE(hidden.isEmpty()) << "the last ones are left out";
                EXPECT_GE(item->x(), end);
                end = item->geometry().right() + 1;
            } else {
                hidden << (item->isEnabled() ? item->label() : u'(' + item->label() + u')');
            }
        }
        ASSERT_TRUE(strip.extension().isVisible());
        EXPECT_GE(strip.extension().x(), end);
        if (style == ToolbarStyle::combined) {
            const QMenuBar &menus = *window().menuBar();
            EXPECT_LE(menus.actionGeometry(menus.actions().last()).right(), strip.x());
        }
        QMenu &menu = *strip.extension().menu();
        EXPECT_EQ(titlesOf(menu).replaceInStrings(u"*"_s, QString()), hidden);
        window().resize(2500, 300);
        settle();
        EXPECT_FALSE(toolbar().strip()->extension().isVisible());
    }
    window().resize(480, 300);
    configure(ToolbarStyle::combined, {u"open"_s, u"find"_s, u"trash"_s, u"compare"_s, u"new"_s});
    for (const QString &title : {u"One"_s, u"Two"_s, u"Three"_s, u"Four"_s, u"Five"_s}) {
        window().menuBar()->addMenu(title);
    }
    settle();
    const auto *menus = window().menuBar()->findChild<QToolButton *>(u"qt_menubar_ext_button"_s);
    ASSERT_TRUE(menus && menus->isVisible());
    EXPECT_EQ(menus->accessibleName(), u"More Menus"_s);
    QMenu &menu = *toolbar().strip()->extension().menu();
    emit menu.aboutToShow();
    menu.actions().last()->trigger();
    EXPECT_EQ(tabs().size(), 2);
    EXPECT_EQ(titlesOf(*button(u"Compare"_s)->menu()).value(1), u"With &File…"_s);
    EXPECT_EQ(titlesOf(*button(u"Compare"_s)->menu()), titlesOf(*button(u"Compare"_s)->menu())) << "those of the last opening are gone";
}

TEST_F(ToolbarTest, ActsOnTheTextBehindWhenItIsUsedWithKeys)
{
    configure(ToolbarStyle::combined, {u"backup"_s, u"new"_s, u"save"_s, u"terminal"_s, u"find"_s});
    ASSERT_EQ(toolbar().entry(), button(u"New"_s)) << "the first that can be used";
    type(u"x"_s);
    toolbar().entry()->setFocus();
    settle();
    for (const auto &[key, name] : {std::pair(Qt::Key_Right, u"Save"_s), {Qt::Key_Right, u"Find"_s}, {Qt::Key_Left, u"Save"_s}}) {
        QTest::keyClick(window().focusWidget(), key);
        EXPECT_EQ(window().focusWidget()->accessibleName(), name);
    }
    presenter.answerSave(path(u"a.txt"_s));
    QTest::keyClick(window().focusWidget(), Qt::Key_Return);
    EXPECT_EQ(read(u"a.txt"_s), "x");
    QTest::keyClick(window().focusWidget(), Qt::Key_Escape);
    EXPECT_TRUE(textView().hasFocus());
}
