// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "App/AppDelegate.h"
#include "Base/Localization.h"
#include "Commands/Actions.h"
#include "Controls.h"
#include "Surroundings.h"
#include "View/FirstResponder.h"
#include "View/ViewFixture.h"

#include <QMenuBar>
#include <QTest>

#include <gtest/gtest.h>

/// The whole program with everything outside of it replaced, and what a test says to its windows and asks of them. Not started yet.
struct WholeProgram : Surroundings {
    using Surroundings::Surroundings;

    [[nodiscard]] MainWindowController &window(size_t index = 0) const { return *application.windows().at(index); }
    [[nodiscard]] WorkspaceViewController &workspace(size_t index = 0) const { return window(index).workspace(); }
    [[nodiscard]] PaneViewController &pane(size_t index) const { return *workspace().panes().at(index); }
    [[nodiscard]] EditorTextView &textView(size_t index = 0) const { return workspace(index).currentEditor()->textView(); }
    [[nodiscard]] QString text(size_t index = 0) const { return workspace(index).currentDocument()->storage().string(); }
    [[nodiscard]] static QStringList tabs(const PaneViewController &pane)
    {
        QStringList titles;
        for (const auto &document : pane.documents()) {
            titles << document->displayName();
        }
        return titles;
    }
    [[nodiscard]] QStringList tabs(size_t index = 0) const { return tabs(pane(index)); }
    [[nodiscard]] QString lastAlert() const { return presenter.alerts().empty() ? QString() : presenter.alerts().back().messageText; }
    /// Of the first window, as it is when its menu is opened; null for none.
    [[nodiscard]] QAction *menuItem(const QString &menu, const QString &title) const
    {
        for (const QAction *top : window().menuBar()->actions()) {
            if (top->text().remove(u'&') == menu) {
                emit top->menu()->aboutToShow();
                const QList<QAction *> items = top->menu()->actions();
                const auto item = std::ranges::find(items, title, [](const QAction *each) { return each->text().remove(u'&'); });
                return item == items.end() ? nullptr : *item;
            }
        }
        return nullptr;
    }

    void type(const QString &keys, size_t index = 0) const { QTest::keyClicks(&textView(index), keys); }
    /// As sendKeys() has them.
    void press(const QString &keys) const { sendKeys(textView(), keys); }
    bool send(const Action &action, const QVariant &represented = {}) const
    {
        return window().firstResponder().perform(action, represented);
    }
    [[nodiscard]] bool isEnabled(const Action &action) const { return window().firstResponder().state(action).isEnabled; }

    AppDelegate application{services};
};

/// It has a window that is shown offscreen and active.
class WindowTest : public testing::Test, protected WholeProgram {
protected:
    void SetUp() override
    {
        preferences.setLanguageResolver(Localization::use);
        application.launch({});
        window().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
        QObject::connect(&workspace().statusBar(), &StatusBarView::flashed, &window(),
                         [this](const QString &message) { flashes << message; });
    }
    /// Windows that were closed go while there still is what they use, as they do at the end of the event loop.
    void TearDown() override
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Localization::use(AppLanguage::english);
    }

    /// What the status bar of the first window showed for a moment.
    QStringList flashes;
};
