// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Session/SessionStore.h"

#include <functional>
#include <memory>
#include <vector>

class DocumentStore;

/// A document that came back.
struct RestoredDocument {
    /// By which the panes of the snapshot name it; null when none does.
    QUuid idInSnapshot;
    std::shared_ptr<TextDocument> document;
};

/// How long start-up waits for files, all together, before it goes on with tabs that wait.
constexpr std::chrono::milliseconds restorationTimeout{300};

/// Told of a document that was made later, because its file took its time to come.
using RecoveryReport = std::function<void(TextDocument &document)>;

/// Those of `rescued` that are texts of the file at `path`, however it leads there, with that path as their target. None when the file is
/// open. What the path leads to is asked on a worker, if there are any.
[[nodiscard]] std::vector<RescuedFile> rescuedAt(const QString &path, std::vector<RescuedFile> rescued, const DocumentStore &documents,
                                                 std::chrono::milliseconds timeout);

/// Makes the documents of an earlier session and adds them to `documents`: first those of the snapshot in its order, then texts whose
/// drafts no snapshot names. A draft goes before a file. Files are read on workers, all at once; one that cannot be read, or is not there,
/// does not come back. Main thread only.
///
/// Of a file of which several unsaved texts were kept the one that was changed last has its tab; the others, and what was typed into texts
/// that are others now, become texts without a file that say where they are from (TextOrigin).
[[nodiscard]] std::vector<RestoredDocument> restoreDocuments(
    const SessionStore::Saved &saved, SessionStore &store, DocumentStore &documents, std::chrono::milliseconds timeout = restorationTimeout,
    const RecoveryReport &report = [](TextDocument & /*document*/) {});
