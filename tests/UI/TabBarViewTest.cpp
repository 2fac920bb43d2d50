// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TabBarView.h"

#include "Controls.h"
#include "Widgets/FlatButton.h"

#include <QAccessible>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class TabBarViewTest : public testing::Test {
protected:
    TabBarViewTest()
    {
        QObject::connect(&bar, &TabBarView::tabChosen, [this](int index) {
            reports.append(u"select %1"_s.arg(index));
            bar.setTabs(tabs, index);
        });
        QObject::connect(&bar, &TabBarView::closeRequested, [this](int index) {
            reports.append(u"close %1"_s.arg(index));
            tabs.erase(tabs.begin() + index);
            bar.setTabs(tabs, qMin(index, int(tabs.size()) - 1));
        });
        QObject::connect(&bar, &TabBarView::newTabRequested, [this] { reports.append(u"new"_s); });
        QObject::connect(&bar, &TabBarView::moveRequested, [this](int from, int to) { reports.append(u"move %1 %2"_s.arg(from).arg(to)); });
        bar.resize(800, bar.sizeHint().height());
        bar.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&bar));
    }

    void setCount(int count, int selectedIndex)
    {
        tabs.clear();
        for (int i = 0; i < count; ++i) {
            tabs.push_back({.title = u"tab %1"_s.arg(i), .tooltip = u"/folder/tab %1"_s.arg(i)});
        }
        bar.setTabs(tabs, selectedIndex);
    }
    /// In the order of the row.
    [[nodiscard]] std::vector<TabItemView *> items() const
    {
        std::vector<TabItemView *> found;
        for (TabItemView *item : bar.findChildren<TabItemView *>()) {
            if (!item->isHidden()) {
                found.push_back(item);
            }
        }
        std::ranges::sort(found, {}, &QWidget::x);
        return found;
    }
    [[nodiscard]] FlatButton *button(const QString &name) const { return control<FlatButton>(bar, name); }
    [[nodiscard]] FlatButton *closeButton(int index) const { return items()[size_t(index)]->findChild<FlatButton *>(); }
    /// Whether all of the item can be seen, with no button over it.
    [[nodiscard]] bool isInView(int index) const
    {
        const QWidget *item = items()[size_t(index)];
        const QRect place(item->mapTo(&bar, QPoint()), item->size());
        QRegion buttons;
        for (const QString &name : {u"Scroll Left"_s, u"Scroll Right"_s, u"All Tabs"_s, u"New Tab"_s}) {
            buttons += button(name)->isHidden() ? QRect() : button(name)->geometry();
        }
        return bar.rect().contains(place) && !buttons.intersects(place);
    }
    [[nodiscard]] QStringList taken() { return std::exchange(reports, {}); }

    std::vector<TabDescriptor> tabs;
    TabBarView bar;

private:
    QStringList reports;
};

} // namespace

TEST_F(TabBarViewTest, PointerSelectsClosesAndAsksForNewTabs)
{
    setCount(3, 0);
    QTest::mousePress(items()[2], Qt::LeftButton);
    EXPECT_EQ(taken(), QStringList{u"select 2"_s}) << "at the press, not later";
    QTest::mouseRelease(items()[2], Qt::LeftButton);
    QTest::mouseClick(items()[1], Qt::RightButton);
    EXPECT_EQ(taken(), QStringList());

    QTest::mouseClick(items()[0], Qt::MiddleButton);
    EXPECT_EQ(taken(), QStringList{u"close 0"_s});

    EXPECT_TRUE(closeButton(0)->isHidden());
    QEnterEvent enter({5, 5}, {5, 5}, items()[0]->mapToGlobal(QPointF(5, 5)));
    QApplication::sendEvent(items()[0], &enter);
    ASSERT_FALSE(closeButton(0)->isHidden());
    QTest::mouseClick(closeButton(0), Qt::LeftButton);
    EXPECT_EQ(taken(), QStringList{u"close 0"_s});
    ASSERT_EQ(items().size(), 1U);
    EXPECT_FALSE(closeButton(0)->isHidden()) << "the pointer is now over the tab that came into the place";
    QTest::mouseClick(closeButton(0), Qt::LeftButton);
    EXPECT_EQ(items().size(), 0U) << "the one that was clicked is gone as well";

    QTest::mouseClick(button(u"New Tab"_s), Qt::LeftButton);
    EXPECT_EQ(taken(), (QStringList{u"close 0"_s, u"new"_s}));
    EXPECT_EQ(button(u"New Tab"_s)->toolTip(), u"New Tab (Ctrl+N)"_s);
}

TEST_F(TabBarViewTest, ManyTabsScrollAndStandInAMenu)
{
    setCount(40, 30);
    bar.scrollSelectedTabIntoView();
    EXPECT_FALSE(isInView(30)) << "not before everything has its place";
    QApplication::processEvents();
    EXPECT_TRUE(isInView(30));
    EXPECT_FALSE(isInView(0));
    EXPECT_FALSE(button(u"Scroll Left"_s)->isHidden());
    bar.resize(300, bar.height());
    EXPECT_TRUE(isInView(30)) << "what was in view stays there";

    const auto wheel = [&](int delta) {
        QWheelEvent event({10, 10}, bar.mapToGlobal(QPointF(10, 10)), {}, {0, delta}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(&bar, &event);
    };
    wheel(120 * 100);
    EXPECT_TRUE(isInView(0));
    EXPECT_TRUE(button(u"Scroll Left"_s)->isHidden());
    wheel(-120 * 100);
    EXPECT_TRUE(isInView(39));
    EXPECT_TRUE(button(u"Scroll Right"_s)->isHidden());
    QTest::mouseClick(button(u"Scroll Left"_s), Qt::LeftButton);
    EXPECT_FALSE(isInView(39));

    tabs[3] = {.title = u"a & b"_s, .tooltip = u"/<b>x</b>"_s, .isDirty = true};
    bar.setTabs(tabs, 3);
    QMenu *menu = button(u"All Tabs"_s)->menu();
    EXPECT_EQ(titlesOf(*menu).value(3), u"*a && b (edited)"_s);
    menu->actions()[39]->trigger();
    EXPECT_EQ(taken(), QStringList{u"select 39"_s});
    EXPECT_FALSE(items()[3]->toolTip().contains(u"<b>"_s)) << "a path is no markup";
}

TEST_F(TabBarViewTest, DroppedTabsMoveWithinTheBar)
{
    setCount(5, 0);
    const auto dropOn = [this](int index, const QString &format, const QByteArray &payload) {
        QMimeData data;
        data.setData(format, payload);
        return drop(*items()[size_t(index)], data);
    };
    const QString format = TabItemView::mimeType();
    EXPECT_EQ(dropOn(3, format, "1"), Qt::MoveAction);
    EXPECT_EQ(dropOn(0, format, "+4"), Qt::MoveAction);
    EXPECT_EQ(taken(), (QStringList{u"move 1 3"_s, u"move 4 0"_s}));
    for (const char *index : {"2", "5", "-1", "2147483647"}) {
        EXPECT_TRUE(dropOn(2, format, index)) << index << " is an index, of this tab or of a longer bar";
    }
    for (const char *bad : {"", "+", "1x", " 1", "--1", "99999999999"}) {
        EXPECT_FALSE(dropOn(2, format, bad)) << '"' << bad << '"';
    }
    EXPECT_FALSE(dropOn(2, u"text/plain"_s, "1"));
    EXPECT_EQ(taken(), QStringList());
}

TEST_F(TabBarViewTest, TheRowIsOneStopOfTheKeyboard)
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *before = new FlatButton(&window);
    layout->addWidget(before);
    layout->addWidget(&bar);
    window.resize(500, 100);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    setCount(20, 2);
    before->setFocus();
    const auto press = [](Qt::Key key) {
        QTest::keyClick(QApplication::focusWidget(), key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
        const auto *item = qobject_cast<TabItemView *>(QApplication::focusWidget());
        return item ? item->index() : -1;
    };
    for (const auto &[key, index] : {std::pair(Qt::Key_Tab, 2),
                                     {Qt::Key_Right, 3},
                                     {Qt::Key_End, 19},
                                     {Qt::Key_Right, 19},
                                     {Qt::Key_Left, 18},
                                     {Qt::Key_Tab, -1},    // a button
                                     {Qt::Key_Backtab, 2}, // left for good, the row is entered at the selected tab
                                     {Qt::Key_Home, 0},
                                     {Qt::Key_Left, 0}}) {
        EXPECT_EQ(press(key), index) << key;
        EXPECT_TRUE(index < 0 || isInView(index)) << key;
    }
    EXPECT_EQ(taken(), QStringList()) << "moving selects nothing";
    EXPECT_EQ(press(Qt::Key_Space), 0);
    EXPECT_EQ(press(Qt::Key_End), 19);
    EXPECT_EQ(press(Qt::Key_Return), 19);
    EXPECT_EQ(taken(), (QStringList{u"select 0"_s, u"select 19"_s}));
    tabs.resize(4);
    bar.setTabs(tabs, 0);
    EXPECT_EQ(QApplication::focusWidget(), items()[3]) << "its tab was closed";
    bar.setParent(nullptr);
}

TEST_F(TabBarViewTest, ScreenReadersKnowTheTabs)
{
    setCount(3, 1);
    tabs[1].isDirty = true;
    tabs[1].hasExternalChange = true;
    bar.setTabs(tabs, 1);
    QAccessibleInterface *tab = QAccessible::queryAccessibleInterface(items()[1]);
    EXPECT_EQ(tab->text(QAccessible::Name), u"tab 1"_s);
    EXPECT_EQ(tab->text(QAccessible::Description), u"edited, changed on disk, /folder/tab 1"_s);
    EXPECT_TRUE(tab->state().selected);
    QAccessibleInterface *other = QAccessible::queryAccessibleInterface(items()[2]);
    EXPECT_FALSE(other->state().selected);
    other->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(taken(), QStringList{u"select 2"_s});
    EXPECT_TRUE(other->state().selected);
}
