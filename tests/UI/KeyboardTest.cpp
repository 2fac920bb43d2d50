// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/Translation.h"
#include "Editor/EditorViewController.h"
#include "KeyboardTour.h"
#include "Widgets/WidgetAlertPresenter.h"
#include "WindowFixture.h"

#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace {

/// Every window, in both languages, with nothing but the keyboard.
class KeyboardTest : public WindowTest, public testing::WithParamInterface<AppLanguage> {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        preferences.set(Settings::language, GetParam());
    }

    static QStringList tour(QWidget &window)
    {
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        // Tabs have a key of their own and menus; their row goes on by itself when the focus moves.
        return KeyboardTour(window, {localized(u"Close Tab"), localized(u"Scroll Left"), localized(u"Scroll Right")}).take();
    }
    /// Of the dialog that the presenter has opened for the window.
    QStringList tourOfDialog()
    {
        QDialog &dialog = *window().findChild<QDialog *>();
        QStringList names = tour(dialog);
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible()) << "Escape leaves it";
        QCoreApplication::sendPostedEvents(&dialog, QEvent::DeferredDelete);
        return names;
    }

    WidgetAlertPresenter dialogs;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Languages, KeyboardTest, testing::Values(AppLanguage::english, AppLanguage::german));

TEST_P(KeyboardTest, EditorWindow)
{
    for (const QString &name : {u"a.txt"_s, u"b.txt"_s, u"c.txt"_s}) {
        application.open({put(name, "text\n")});
    }
    type(u"x"_s);
    put(u"c.txt"_s, "another text\n");
    ASSERT_TRUE(QTest::qWaitFor([this] {
        scheduler.advance(std::chrono::milliseconds(300));
        return workspace().currentEditor()->banner() != nullptr;
    }));
    send(Actions::findAndReplace);
    scheduler.advance(std::chrono::seconds(1));
    QTest::keyClicks(QApplication::focusWidget(), u"e"_s);
    QStringList names = tour(window());
    QStringList wanted{u"Find"_s,    u"Replace with"_s,     u"Replace All"_s, u"Find Previous"_s, u"Match Case"_s,
                       u"Compare"_s, u"Reload from Disk"_s, u"Keep Mine"_s,   u"New Tab"_s,       u"Save"_s};
    std::ranges::transform(wanted, wanted.begin(), [](const QString &name) { return localized(name); });
    names.removeIf([&wanted](const QString &name) { return !wanted.contains(name); });
    EXPECT_EQ(names, wanted) << names.join(u", "_s).toStdString();
}

TEST_P(KeyboardTest, Settings)
{
    send(Actions::showSettings);
    const QWidgetList shown = QApplication::topLevelWidgets();
    QWidget &settings = **std::ranges::find(shown, u"settings"_s, &QWidget::objectName);
    auto &tabs = *settings.findChild<QTabWidget *>();
    for (int page = 0; page < 4; ++page) {
        tabs.setCurrentIndex(page);
        SCOPED_TRACE(tabs.tabText(page).toStdString());
        EXPECT_GT(tour(settings).size(), 5);
    }
}

TEST_P(KeyboardTest, Comparison)
{
    workspace().open({put(u"a.txt"_s, "one\ntwo\n")});
    type(u"x"_s);
    send(Actions::compareWithFileOnDisk);
    DiffWindowController &comparison = *application.comparisons().back();
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&comparison)->role(), QAccessible::Window);
    EXPECT_EQ(tour(comparison).size(), 5) << "two texts and three controls";
}

TEST_P(KeyboardTest, Dialogs)
{
    const AlertButton cancel{u"Cancel"_s, AlertButtonRole::cancel};
    dialogs.present(
        Alert{.messageText = u"Where?"_s, .buttons = {{u"Go"_s}, cancel}, .textField = Alert::TextField{.placeholder = u"Line"_s}},
        &window(), {});
    EXPECT_EQ(tourOfDialog().size(), 3);
    dialogs.present(FontPanel{.title = u"Font"_s, .current = {u"DejaVu Sans Mono"_s, 12}, .leastSize = 6, .greatestSize = 96}, &window(),
                    [](const auto &) {});
    EXPECT_EQ(tourOfDialog().size(), 5);
}
