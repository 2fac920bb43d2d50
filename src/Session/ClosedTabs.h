// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Session/SessionSnapshot.h"
#include "Text/Rope.h"

#include <deque>
#include <memory>
#include <optional>

class DocumentStore;
class Preferences;
class SessionStore;
class TextDocument;

/// Where a tab was.
struct ClosedPlace {
    /// The id of its pane in the layout of its window; 0 after a restart.
    int paneId = 0;
    /// The number of the pane, and of the tab in it.
    int pane = 0;
    int tab = 0;

    friend bool operator==(const ClosedPlace &, const ClosedPlace &) = default;
};

/// The tabs that were closed last, to be opened again: as they were as long as the program runs, with what was not saved, the caret and the
/// history; after a restart with text and caret.
///
/// Texts and histories take a certain size together. Of what does not fit only the file is known, and a text without a file is forgotten;
/// the oldest ones give way to new ones.
///
/// On disk they are in the folder `Closed` beside the session, for the user only: `closed-tabs.json`, an object with the array "tabs", the
/// oldest first, of objects with "document" (as in a SessionSnapshot), "pane" and "tab" (from 0), and a DraftFile for each text that was
/// not saved. What the list does not name is deleted. All is written by the thread of the session store, after what that had to write, so
/// that a text which was opened again is in its draft before it goes here. Nothing is there while sessions are not kept, and what concerns
/// one program is not told to another. Main thread only.
class ClosedTabs final {
public:
    static constexpr size_t largestCount = 20;
    /// UTF-16 code units: 64 MB, half of that where Latin 1 suffices.
    static constexpr qsizetype usualSize = qsizetype(32) * 1024 * 1024;

    /// All must outlive it; documents go from `documents` to this and back.
    ClosedTabs(NotificationCenter &notifications, const Preferences &preferences, DocumentStore &documents, SessionStore &session,
               qsizetype largestSize = usualSize);
    Q_DISABLE_COPY_MOVE(ClosedTabs)

    /// `document` is about to leave the store with its last tab. An empty text without a file is not noted.
    void note(const std::shared_ptr<TextDocument> &document, const ClosedPlace &place);
    [[nodiscard]] bool isEmpty();

    struct Reopened {
        /// In the store, perhaps waiting for its file; null when the file has to be opened anew, for it is not there.
        std::shared_ptr<TextDocument> document;
        QString path;
        ClosedPlace place;
    };
    /// Takes the one that was closed last. It stays on disk until keep() is called. None when there is none any more.
    [[nodiscard]] std::optional<Reopened> reopen();
    /// Writes the list as it is.
    void keep();
    /// Forgets all.
    void clear();

private:
    struct Tab {
        SessionSnapshot::Document entry;
        ClosedPlace place;
        /// Null after a restart, when it was too large, and when it was given up while it was being written: that ends with it.
        std::shared_ptr<TextDocument> document = {};
        /// What was not saved; none after a restart, when it is on disk.
        std::optional<Rope> text = {};
        /// Of text and history.
        qsizetype size = 0;
    };

    [[nodiscard]] bool isKept() const;
    [[nodiscard]] QString folder() const;
    void load();
    void limit();
    [[nodiscard]] std::shared_ptr<TextDocument> documentOf(const Tab &tab) const;
    /// Whose the file of an entry is by now.
    enum class FileOf { text, otherDocument };
    [[nodiscard]] std::shared_ptr<TextDocument> madeOf(const Tab &tab, FileOf file) const;

    const Preferences &m_preferences;
    DocumentStore &m_documents;
    SessionStore &m_session;
    qsizetype m_largestSize;
    bool m_isLoaded = false;
    /// The one that was closed last is the last.
    std::deque<Tab> m_tabs;
    NotificationCenter::Token m_preferencesObserver;
};
