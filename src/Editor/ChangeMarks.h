// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Base/NotificationCenter.h"
#include "Base/Scheduler.h"
#include "Files/GitBase.h"
#include "Text/LineChanges.h"
#include "Text/Rope.h"

#include <QObject>

#include <optional>
#include <span>
#include <vector>

class Preferences;
class TextDocument;
struct Theme;

/// Which lines of a document are others than in its file or, where that is in a git repository, in its last commit. They are found by a
/// worker when edits have come to rest, whatever the length of the text; until then the marks stay on their lines. A text that can only be
/// that of its file is not compared. Main thread only.
class ChangeMarks final : public QObject {
    Q_OBJECT

public:
    struct Services {
        Scheduler &scheduler;
        Workers &workers;
        NotificationCenter &notifications;
        const Preferences &preferences;
    };

    /// Without an edit before a worker compares, and from how many units on it waits longer.
    static constexpr Scheduler::Milliseconds restTime{250};
    static constexpr qsizetype largeText = 1024 * 1024;
    static constexpr Scheduler::Milliseconds largeRestTime{1000};

    /// All must outlive it.
    ChangeMarks(TextDocument &document, const Services &services, QObject *parent = nullptr);

    /// Ascending and apart; none while they are not wanted.
    [[nodiscard]] std::span<const LineChange> changes() const { return m_changes; }
    /// They are what makes the text as it is now of `base()`.
    [[nodiscard]] bool areCurrent() const { return m_isCurrent; }
    [[nodiscard]] const Rope &base() const { return m_base; }
    /// What `base()` is.
    enum class Reference { savedText, lastCommit };
    [[nodiscard]] Reference reference() const { return m_commit ? Reference::lastCommit : Reference::savedText; }
    /// Others may have made another commit. It is looked for by a worker, which may hang as the file's folder does.
    void refreshCommit();

signals:
    /// Other marks, or others to come: edits that only move them are not reported.
    void changed();

private:
    void noteEdit(const TextChange &change);
    void noteDocument();
    void compareSoon();
    void compare();
    void take(const Rope &base, std::vector<LineChange> changes);
    [[nodiscard]] bool areWanted() const;
    [[nodiscard]] std::optional<Rope> wantedBase() const;
    void lookForCommit(const QString &path);
    void takeCommit(std::optional<GitBase> found);

    TextDocument &m_document;
    Services m_services;
    std::vector<LineChange> m_changes;
    Rope m_base;
    bool m_isCurrent = true;
    /// An edit took some away, which nobody was told yet.
    bool m_hasOthers = false;
    DelayedTask m_soon;
    BackgroundTask m_comparing;
    std::optional<GitBase> m_commit;
    DelayedTask m_lookSoon;
    BackgroundTask m_looking;
    /// What the worker looks for, and that it has to do so again.
    QString m_lookedFor;
    bool m_looksAgain = false;
    std::vector<NotificationCenter::Token> m_observers;
};

/// 0xFFRRGGBB; stands out from the gutter, also in themes that are shown as they are.
[[nodiscard]] quint32 changeColor(const Theme &theme, LineChange::Kind kind);
