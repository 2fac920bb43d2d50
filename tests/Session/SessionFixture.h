// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FaultyCalls.h"
#include "Base/Workers.h"
#include "Files/WatchedPath.h"
#include "Model/DocumentStore.h"
#include "Session/DraftFile.h"
#include "Session/SessionStore.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
#include "TestFolder.h"

#include <QCoreApplication>

/// A folder for a session, and documents that need no window.
class SessionFixture : public testing::Test, protected TestFolder {
protected:
    [[nodiscard]] QString root() const { return path(QStringLiteral("Quillet")); }
    [[nodiscard]] std::unique_ptr<SessionStore> open()
    {
        return std::make_unique<SessionStore>(SessionStore::Places{root(), path({})}, preferences, calls);
    }
    [[nodiscard]] std::unique_ptr<TextDocument> document(const QString &text, const QUuid &id = QUuid::createUuid(),
                                                         const QString &path = {})
    {
        return std::make_unique<TextDocument>(services, path, TextFile::Contents{.text = Rope(text)}, id);
    }
    static void edit(TextDocument &document, const QString &text) { document.storage().apply({{0, document.storage().length()}, text}); }
    /// A snapshot of one pane with these documents, as a window makes it.
    static SessionSnapshot sessionOf(SessionStore &store, const std::vector<TextDocument *> &documents)
    {
        SessionSnapshot snapshot{.panes = {{}}};
        for (TextDocument *document : documents) {
            snapshot.documents << SessionSnapshot::Document{.id = document->id(),
                                                            .filePath =
                                                                document->isUntitled() ? std::nullopt : std::optional(document->path()),
                                                            .draftFilename = store.writeDraft(*document),
                                                            .encodingRawValue = quint32(document->encoding()),
                                                            .lineEnding = rawValue(document->lineEnding()).toString()};
            snapshot.panes.front().documentIDs << document->id();
        }
        return snapshot;
    }
    [[nodiscard]] QStringList drafts() const { return names(QStringLiteral("Quillet/Drafts")); }
    /// Lets time pass and what workers and the kernel said arrive.
    void settle()
    {
        for (int step = 0; step < 20; ++step) {
            QCoreApplication::processEvents();
            scheduler.advance(std::chrono::milliseconds(50));
            QCoreApplication::processEvents();
        }
    }
    static bool isWritten(SessionStore &store) { return store.waitUntilWritten(std::chrono::minutes(1)); }
    void put(const QString &name, const QByteArray &content) const { TestFolder::put(QStringLiteral("Quillet/") + name, content); }

    ManualScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults{QString(), scheduler};
    Preferences preferences{defaults, notifications};
    InlineWorkers workers;
    FileWatcherQueue watchers{scheduler, WatchCalls::system(), workers};
    DocumentServices services{scheduler, notifications, preferences, workers, watchers, {}};
    DocumentStore documents{services, {}};
    FaultyCalls calls;
};
