// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Session/SessionStore.h"

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

/// Makes the documents of an earlier session and adds them to `documents`: first those of the snapshot in its order, then texts whose
/// drafts no snapshot names. A draft goes before a file. Files are read on workers, all at once; one that cannot be read, or is not there,
/// does not come back. Main thread only.
[[nodiscard]] std::vector<RestoredDocument> restoreDocuments(const SessionStore::Saved &saved, SessionStore &store,
                                                             DocumentStore &documents,
                                                             std::chrono::milliseconds timeout = restorationTimeout);
