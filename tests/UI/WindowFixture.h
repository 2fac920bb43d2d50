// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "App/AppDelegate.h"
#include "Commands/Actions.h"
#include "Surroundings.h"
#include "View/FirstResponder.h"

#include <QFile>
#include <QTest>

#include <gtest/gtest.h>

/// The whole program around a window that is shown offscreen and active, with everything outside of it replaced.
class WindowTest : public testing::Test, protected Surroundings {
protected:
    void SetUp() override
    {
        application.launch({});
        window().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    }
    /// Windows that were closed go while there still is what they use, as they do at the end of the event loop.
    void TearDown() override { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    [[nodiscard]] MainWindowController &window(size_t index = 0) const { return *application.windows().at(index); }
    [[nodiscard]] WorkspaceViewController &workspace(size_t index = 0) const { return window(index).workspace(); }
    [[nodiscard]] PaneViewController &pane(size_t index) const { return *workspace().panes().at(index); }
    [[nodiscard]] EditorTextView &textView() const { return workspace().currentEditor()->textView(); }
    [[nodiscard]] QString text() const { return workspace().currentDocument()->storage().string(); }
    [[nodiscard]] QStringList tabs(size_t index = 0) const { return titlesOf(pane(index)); }
    [[nodiscard]] static QStringList titlesOf(const PaneViewController &pane)
    {
        QStringList titles;
        for (const auto &document : pane.documents()) {
            titles << document->displayName();
        }
        return titles;
    }

    void type(const QString &keys) const { QTest::keyClicks(&textView(), keys); }
    bool send(const Action &action, const QVariant &represented = {}) const
    {
        return window().firstResponder().perform(action, represented);
    }
    [[nodiscard]] bool isEnabled(const Action &action) const { return window().firstResponder().state(action).isEnabled; }

    [[nodiscard]] QString path(const QString &name) const { return folder.filePath(name); }
    QString write(const QString &name, const QByteArray &content) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }
    [[nodiscard]] QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
    [[nodiscard]] QString lastAlert() const { return presenter.alerts().empty() ? QString() : presenter.alerts().back().messageText; }

    AppDelegate application{services};
};
