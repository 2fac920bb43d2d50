// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileCalls.h"
#include "Session/SessionLock.h"
#include "Session/SessionSnapshot.h"

#include <memory>
#include <optional>

/// The sessions of programs that run beside the owner of a data folder. Each is a folder below `Guests`, of the same form as the data
/// folder itself, with a lock of its own; when its program has ended the next owner takes over the texts in it. Keeps no state.
class GuestSessions final {
public:
    GuestSessions() = delete;

    struct Place {
        QString folder;
        std::unique_ptr<SessionLock> lock;
    };

    /// For this program; none when nothing can be written there.
    [[nodiscard]] static std::optional<Place> make(const QString &root, FileCalls &calls);
    /// Moves the drafts of programs that have ended to those of `root`, and gives their entries to `snapshot`, which is written first. It
    /// may be cut off anywhere and done again. What cannot be moved stays where it is.
    static void adopt(const QString &root, std::optional<SessionSnapshot> &snapshot, FileCalls &calls);
    /// When no text is left in it.
    static void removeIfEmpty(const QString &folder);
};
