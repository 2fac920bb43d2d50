// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Where a text without a file comes from that was kept unsaved, when what it belongs to has another text now.
struct TextOrigin {
    enum class Kind {
        /// The whole text, of which another version was kept that was changed later.
        otherVersion,
        /// What was typed into a text that is not there any more as it was then.
        insertions,
    };
    Kind kind = Kind::otherVersion;
    /// Absolute; empty for a text without a file.
    QString path;

    /// Of what it belongs to, as users read it.
    [[nodiscard]] QString shownName() const;

    friend bool operator==(const TextOrigin &, const TextOrigin &) = default;
};
