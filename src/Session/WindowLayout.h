// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Session/SessionRestoration.h"
#include "Session/SessionSnapshot.h"

#include <map>

/// What a window shows, as it is kept in the session and brought back.
struct WindowLayout {
    struct Pane {
        /// The tabs, left to right.
        std::vector<std::shared_ptr<TextDocument>> documents;
        int selectedIndex = 0;
    };

    /// Left to right, or from the top.
    std::vector<Pane> panes;
    size_t activePane = 0;
    Qt::Orientation orientation = Qt::Horizontal;
    /// None for a window that stays where it is.
    std::optional<WindowFrame> frame;
};

/// The drafts in which unsaved texts are kept, by document.
using DraftNames = std::map<QUuid, QString>;

/// The session of `window`: what it shows, and of `documents` those with unsaved text, which other windows may show. What nobody can save
/// has no entry.
[[nodiscard]] SessionSnapshot snapshotOf(const WindowLayout &window, const std::vector<std::shared_ptr<TextDocument>> &documents,
                                         const DraftNames &drafts);

/// The window for what came back of `snapshot`, whatever nonsense that holds. Texts without a pane are tabs of the active one. Every pane
/// has a tab; with nothing restored there is no pane.
[[nodiscard]] WindowLayout layoutOf(const SessionSnapshot &snapshot, const std::vector<RestoredDocument> &restored);
