// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Base/Scheduler.h"
#include "Session/WindowLayout.h"

#include <QObject>

#include <chrono>
#include <set>

class DocumentStore;
class Preferences;
class SessionStore;
class TextDocument;

/// The main windows, as the keeper asks for them.
class SessionWindows {
public:
    /// Notes in the documents where in them the user is.
    virtual void rememberPlaces() = 0;
    /// In the order in which the windows came.
    [[nodiscard]] virtual std::vector<WindowLayout> layouts() const = 0;
    /// Of them, the one that was used last.
    [[nodiscard]] virtual size_t frontmostLayout() const = 0;
    /// Gives a document that has come by itself a tab, behind the one that is used.
    virtual void showBehind(TextDocument &document) = 0;

protected:
    ~SessionWindows() = default;
};

/// Sees to it that unsaved text and the session are kept while the program runs, and bring them back: at every tick of its timer, after a
/// pause in the work, and whenever it is asked to. Each time drafts are written first, then the session of one window.
///
/// The session is that of the window that was used last; at the end it is that of the last window. Main thread only.
class SessionKeeper final {
public:
    /// For a disk that is busy. One that hangs is not waited for any longer.
    static constexpr std::chrono::milliseconds userPatience{5000};
    /// While a session manager is ending everybody.
    static constexpr std::chrono::milliseconds systemPatience{700};

    /// All must outlive the keeper, the store of documents all windows.
    SessionKeeper(Scheduler &scheduler, NotificationCenter &notifications, const Preferences &preferences, DocumentStore &documents,
                  SessionStore &store);
    Q_DISABLE_COPY_MOVE(SessionKeeper)

    /// Null when there are none any more.
    void setWindows(SessionWindows *windows) { m_windows = windows; }

    /// The user did something: it is kept after a pause, well within the interval.
    void noteActivity();
    /// Writes what is unsaved into its files, if the settings say so, or into drafts, and then the session.
    void performAutosave();
    /// Writes drafts and session now.
    void keep();
    /// What would become of unsaved text if the program ended now.
    enum class Kept {
        /// It comes back at the next start.
        all,
        /// It comes back when a start owns the session again.
        forLater,
        /// Some of it would be lost.
        notAll,
    };
    /// The last time before the end.
    [[nodiscard]] Kept keepAndWait(std::chrono::milliseconds timeout);

    /// Once, before anything is kept: what earlier programs left. None when that is nothing, or not wanted.
    [[nodiscard]] std::optional<WindowLayout> restore();
    /// The same for the text of one file, when restore() was not called.
    void bringBack(const QString &path);

private:
    void startTimer();
    void followDocuments();
    void follow(TextDocument &document);
    void autosaveIfQuiet();
    void saveToFiles();
    [[nodiscard]] DraftNames writeDrafts();
    void showBehind(TextDocument &document);
    /// Null where there is none.
    void write(const WindowLayout *window);
    [[nodiscard]] std::vector<WindowLayout> layouts() const;
    [[nodiscard]] bool wantsSession() const;

    Scheduler &m_scheduler;
    const Preferences &m_preferences;
    DocumentStore &m_documents;
    SessionStore &m_store;
    SessionWindows *m_windows = nullptr;
    Scheduler::Milliseconds m_interval{};
    RepeatingTimer m_timer;
    DelayedTask m_pause;
    Scheduler::Milliseconds m_lastActivity{};
    DelayedTask m_flush;
    /// Those whose edits are noted, and whether the one that is being edited was dirty.
    std::set<const TextDocument *> m_followed;
    /// Those that were edited since their save began.
    std::set<const TextDocument *> m_editedWhileSaved;
    bool m_wasDirty = false;
    QObject m_context;
    NotificationCenter::Token m_documentsObserver;
    NotificationCenter::Token m_preferencesObserver;
};
