// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Model/PaneLayout.h"
#include "Session/SessionRestoration.h"
#include "Session/SessionSnapshot.h"

#include <map>

/// What a window shows, as it is kept in the session and brought back.
struct WindowLayout {
    PaneLayout panes;
    /// None for a window that stays where it is.
    std::optional<WindowFrame> frame;
};

/// The drafts in which unsaved texts are kept, by document.
using DraftNames = std::map<QUuid, QString>;

/// A document in a session.
[[nodiscard]] SessionSnapshot::Document entryOf(const TextDocument &document, const DraftNames &drafts);

/// The session of `window`: what it shows, and of `documents` those with unsaved text, which other windows may show. What nobody can save
/// has no entry.
[[nodiscard]] SessionSnapshot snapshotOf(const WindowLayout &window, const std::vector<std::shared_ptr<TextDocument>> &documents,
                                         const DraftNames &drafts);

/// The window for what came back of `snapshot`, whatever nonsense that holds. Texts without a pane are tabs of the active one. With
/// nothing restored there is no pane.
[[nodiscard]] WindowLayout layoutOf(const SessionSnapshot &snapshot, const std::vector<RestoredDocument> &restored);
