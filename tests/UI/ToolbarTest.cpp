// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/Localization.h"
#include "Commands/Actions.h"
#include "Surroundings.h"
#include "UI/EditorToolbarController.h"
#include "UI/ToolbarActionItem.h"
#include "UI/ToolbarCatalogue.h"
#include "UI/ToolbarStrip.h"
#include "View/FirstResponder.h"

#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Stands for the text in the window.
class Text final : public QWidget, public Responder {
public:
    explicit Text(Preferences &preferences) : m_preferences(preferences) { setFocusPolicy(Qt::StrongFocus); }

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override
    {
        static constexpr auto rows = std::to_array<ActionRow>({
            action<&Text::save, &Text::canSave>(Actions::saveDocument),
            action<&Text::trash, &Text::canTrash>(Actions::moveDocumentToTrash),
            action<&Text::toggleLineNumbers, &Text::lineNumbersState>(Actions::toggleLineNumbers),
            action<&Text::save>(Actions::compareWithFile),
        });
        return findAction(rows, wanted);
    }

    QString done;
    bool mayTrash = true;
    bool mayToggle = true;
    mutable int questions = 0;

private:
    void save() { done += u"save "_s; }
    void trash() { done += u"trash "_s; }
    void toggleLineNumbers() { m_preferences.set(Settings::showLineNumbers, !m_preferences.value(Settings::showLineNumbers)); }
    [[nodiscard]] bool canSave() const
    {
        ++questions;
        return true;
    }
    [[nodiscard]] bool canTrash() const { return mayTrash; }
    [[nodiscard]] ActionState lineNumbersState() const
    {
        return {.isEnabled = mayToggle, .checkMark = m_preferences.value(Settings::showLineNumbers) ? CheckMark::on : CheckMark::none};
    }

    Preferences &m_preferences;
};

class ToolbarTest : public testing::Test, protected Surroundings {
protected:
    void SetUp() override
    {
        Localization::use(AppLanguage::english);
        preferences.setLanguageResolver(Localization::use);
        for (const QString &title : {u"File"_s, u"Edit"_s, u"View"_s, u"Window"_s}) {
            window.menuBar()->addMenu(title)->addAction(title);
        }
        window.setCentralWidget(text);
        window.resize(900, 300);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        text->setFocus();
        settle();
    }
    void TearDown() override { Localization::use(AppLanguage::english); }

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
    [[nodiscard]] ToolbarActionItem *button(const QString &id) const
    {
        for (ToolbarActionItem *item : controller->strip()->items()) {
            if (item->spec().id == id) {
                return item;
            }
        }
        return nullptr;
    }
    [[nodiscard]] static QStringList titles(const QMenu &menu)
    {
        QStringList titles;
        for (const QAction *action : menu.actions()) {
            titles << action->text();
        }
        return titles;
    }
    [[nodiscard]] QMenu &openedExtension() const
    {
        QMenu *menu = controller->strip()->extension().menu();
        emit menu->aboutToShow();
        return *menu;
    }
    [[nodiscard]] static QStringList everyId()
    {
        QStringList ids;
        for (const ToolbarAction &action : ToolbarCatalogue::all()) {
            ids << action.id;
        }
        return ids;
    }

    QMainWindow window;
    Text *text = new Text(preferences);
    FirstResponder responder{window, presenter};
    EditorToolbarController *controller = new EditorToolbarController(window, {scheduler, notifications, preferences, responder});
};

} // namespace

TEST_F(ToolbarTest, StandsWhereTheStyleSays)
{
    const auto rows = [this] { return window.findChildren<QToolBar *>(u"QuilletToolbar"_s, Qt::FindDirectChildrenOnly); };
    EXPECT_EQ(window.menuBar()->cornerWidget(), controller->strip());
    EXPECT_TRUE(controller->strip()->isVisible());
    EXPECT_TRUE(rows().isEmpty());

    preferences.set(Settings::toolbarStyle, ToolbarStyle::separate);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_EQ(rows().size(), 1);
    EXPECT_TRUE(rows().first()->isAncestorOf(controller->strip()));
    EXPECT_EQ(window.menuBar()->cornerWidget(), nullptr);
    const std::unique_ptr<QMenu> contextMenu(window.createPopupMenu());
    EXPECT_TRUE(!contextMenu || contextMenu->isEmpty()) << "nothing there hides the toolbar";

    preferences.set(Settings::toolbarStyle, ToolbarStyle::hidden);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(controller->strip(), nullptr);
    EXPECT_TRUE(rows().isEmpty());
}

TEST_F(ToolbarTest, NamesItsButtonsInTheLanguageChosen)
{
    EXPECT_EQ(button(u"save"_s)->toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
    EXPECT_EQ(button(u"save"_s)->toolTip(), u"Save (Ctrl+S)"_s);

    preferences.set(Settings::toolbarShowsLabels, false);
    preferences.set(Settings::language, AppLanguage::german);
    EXPECT_EQ(button(u"save"_s)->toolButtonStyle(), Qt::ToolButtonIconOnly);
    EXPECT_EQ(button(u"save"_s)->accessibleName(), u"Speichern"_s);
    EXPECT_EQ(button(u"save"_s)->toolTip(), u"Speichern (Ctrl+S)"_s);
}

TEST_F(ToolbarTest, ShowsTheTitleWithItsMark)
{
    preferences.set(Settings::windowShowsTitle, true);
    window.setWindowTitle(u"a[*][*].txt[*]"_s);
    window.setWindowModified(true);
    settle();
    const auto *label = controller->strip()->findChild<QLabel *>();
    EXPECT_EQ(label->text(), u"a[*].txt*"_s);
    EXPECT_TRUE(label->isVisible());
    EXPECT_LE(label->geometry().right(), button(u"new"_s)->x());
    window.setWindowModified(false);
    EXPECT_EQ(label->text(), u"a[*].txt"_s);
}

TEST_F(ToolbarTest, IsEnabledAsTheFirstResponderSays)
{
    EXPECT_TRUE(button(u"save"_s)->isEnabled());
    EXPECT_FALSE(button(u"backup"_s)->isEnabled()) << "nobody takes it";
    button(u"save"_s)->click();
    EXPECT_EQ(text->done, u"save "_s);

    text->mayTrash = false;
    text->questions = 0;
    settle();
    for (int i = 0; i < 5; ++i) {
        notifications.post(TextDocument::didChangeMetadata, nullptr);
        controller->validateSoon();
    }
    EXPECT_TRUE(button(u"trash"_s)->isEnabled()) << "not within the key press";
    scheduler.advance(50ms);
    EXPECT_FALSE(button(u"trash"_s)->isEnabled());
    EXPECT_EQ(text->questions, 1);

    text->clearFocus();
    window.setFocus();
    settle();
    EXPECT_FALSE(button(u"save"_s)->isEnabled()) << "the text has lost the focus";
}

TEST_F(ToolbarTest, ToggleShowsWhatIsOn)
{
    configure(ToolbarStyle::combined, {u"nonsense"_s, u"lineNumbers"_s, u""_s});
    EXPECT_EQ(controller->strip()->items().size(), 1U);
    const bool before = preferences.value(Settings::showLineNumbers);
    button(u"lineNumbers"_s)->click();
    EXPECT_EQ(preferences.value(Settings::showLineNumbers), !before);
    EXPECT_EQ(button(u"lineNumbers"_s)->isChecked(), !before);
    preferences.set(Settings::showLineNumbers, before);
    settle();
    EXPECT_EQ(button(u"lineNumbers"_s)->isChecked(), before) << "changed elsewhere";

    text->mayToggle = false;
    button(u"lineNumbers"_s)->click();
    EXPECT_EQ(presenter.beepCount(), 1);
    EXPECT_EQ(button(u"lineNumbers"_s)->isChecked(), before) << "the click alone changes nothing";
}

TEST_F(ToolbarTest, ActionWithAMenuOpensWhatItsFillerPuts)
{
    configure(ToolbarStyle::combined, {u"compare"_s});
    EXPECT_FALSE(button(u"compare"_s)->isEnabled()) << "it would be empty";
    controller->setMenuFiller([](QMenu &menu) {
        menu.addAction(u"With File"_s);
        menu.addMenu(u"With Recent"_s);
    });
    EXPECT_TRUE(button(u"compare"_s)->isEnabled());
    for (int opening = 0; opening < 2; ++opening) {
        QMenu *menu = button(u"compare"_s)->menu();
        emit menu->aboutToShow();
        EXPECT_EQ(titles(*menu), QStringList({u"With File"_s, u"With Recent"_s}));
        EXPECT_EQ(menu->findChildren<QMenu *>().size(), 1) << "those of the last opening are gone";
    }
}

TEST_F(ToolbarTest, PutsWhatDoesNotFitIntoAMenu)
{
    controller->setMenuFiller([](QMenu &menu) { menu.addAction(u"With File"_s); });
    for (const ToolbarStyle style : {ToolbarStyle::combined, ToolbarStyle::separate}) {
        configure(style, everyId());
        window.resize(480, 300);
        settle();
        const ToolbarStrip &strip = *controller->strip();
        QStringList hidden;
        int end = 0;
        for (const ToolbarActionItem *item : strip.items()) {
            if (item->isVisible()) {
                EXPECT_TRUE(hidden.isEmpty()) << "the last ones are left out";
                EXPECT_GE(item->x(), end);
                end = item->geometry().right() + 1;
            } else {
                hidden << item->label();
            }
        }
        ASSERT_TRUE(strip.extension().isVisible());
        EXPECT_GE(strip.extension().x(), end);
        if (style == ToolbarStyle::combined) {
            const QMenuBar &menus = *window.menuBar();
            EXPECT_LE(menus.actionGeometry(menus.actions().last()).right(), strip.x());
        }

        QMenu &menu = openedExtension();
        EXPECT_EQ(titles(menu), hidden);
        EXPECT_EQ(titles(*menu.actions().at(hidden.indexOf(u"Compare"_s))->menu()), QStringList(u"With File"_s));
        window.resize(1900, 300);
        settle();
        EXPECT_FALSE(controller->strip()->extension().isVisible());
    }
    window.resize(300, 300);
    configure(ToolbarStyle::combined, {u"open"_s, u"find"_s, u"trash"_s, u"save"_s});
    for (const QString &title : {u"Navigate"_s, u"Editor"_s, u"Help"_s}) {
        window.menuBar()->addMenu(title);
    }
    settle();
    const auto *menus = window.menuBar()->findChild<QToolButton *>(u"qt_menubar_ext_button"_s);
    ASSERT_TRUE(menus && menus->isVisible());
    EXPECT_EQ(menus->accessibleName(), u"More Menus"_s);
    openedExtension().actions().last()->trigger();
    EXPECT_EQ(text->done, u"save "_s);
}

TEST_F(ToolbarTest, ActsOnTheTextBehindWhenItIsUsedWithKeys)
{
    configure(ToolbarStyle::combined, {u"new"_s, u"save"_s, u"backup"_s, u"trash"_s});
    ASSERT_EQ(controller->entry(), button(u"save"_s)) << "the first that can be used";
    controller->entry()->setFocus();
    settle();
    EXPECT_TRUE(button(u"save"_s)->isEnabled());
    QTest::keyClick(button(u"save"_s), Qt::Key_Return);
    QTest::keyClick(button(u"save"_s), Qt::Key_Right);
    ASSERT_TRUE(button(u"trash"_s)->hasFocus());
    QTest::keyClick(button(u"trash"_s), Qt::Key_Space);
    EXPECT_EQ(text->done, u"save trash "_s);

    controller->entry()->setFocus();
    QTest::keyClick(controller->entry(), Qt::Key_Escape);
    EXPECT_TRUE(text->hasFocus());
}
