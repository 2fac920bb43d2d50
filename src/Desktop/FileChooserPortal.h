// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

#include <functional>
#include <optional>

class QDBusPendingCallWatcher;
class QWindow;

/// The desktop's own file chooser, which its portal shows for one question. Main thread only; nothing waits for the bus.
class FileChooserPortal final : public QObject {
    Q_OBJECT

public:
    enum class Choice { openFile, openFiles, openFolder, save };

    struct Question {
        Choice choice = Choice::openFiles;
        QString title = {};
        /// Of the button that takes the choice; empty for the desktop's own word.
        QString acceptLabel = {};
        /// Absolute path; empty for the desktop's own choice.
        QString folder = {};
        /// File name to save under.
        QString name = {};
    };

    enum class Outcome {
        chosen,
        cancelled,
        /// There is no such portal, or it cannot do it: nothing was shown.
        unavailable,
    };
    /// Absolute paths, none unless something was chosen.
    using Completion = std::function<void(Outcome outcome, const QStringList &paths)>;

    explicit FileChooserPortal(QDBusConnection bus);
    /// What is still open is closed, and answers nothing.
    ~FileChooserPortal() override;

    /// Once. `parent`, which may be null, is the window that the chooser belongs to. `completion` is called once, after this returned; it
    /// may destroy the portal.
    void ask(const Question &question, const QWindow *parent, Completion completion);

private slots:
    void answered(uint response, const QVariantMap &results);

private:
    void finish(Outcome outcome, const QStringList &paths = {});
    void listenAt(const QString &path);

    QDBusConnection m_bus;
    Completion m_completion;
    /// Of the question on the bus; empty while there is none.
    QString m_path;
    QDBusPendingCallWatcher *m_call = nullptr;
};
