// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/ReadPosition.h"
#include "Files/TextFile.h"

#include <optional>
#include <stop_token>

/// Reads of a file that grows only what is new, as of a log. Every function takes the time that the file system takes. Keeps no state.
///
/// That the rest is as it was cannot be known without reading it. What is at hand says so mostly: the same file, longer than before, with
/// the same bytes at its start, at what was its end, and in some samples between them. So a text is shown, but the file's state that goes
/// with it counts as one that is not certain, and whoever writes over the file compares all bytes first. When there is time, check()
/// looks at the rest.
class GrowingFile final {
public:
    GrowingFile() = delete;

    /// The text of what stands in the file behind `position`, and its line endings, with what is now to be said of the whole file. Where
    /// the text before ended with CR, the first ending is that of its last line. None when it has to be read
    /// as a whole: it is another one, not longer, different before the position as far as that was looked at, or may now be read in
    /// another encoding.
    [[nodiscard]] static std::optional<TextFile::Contents> readAdded(const QString &path, const ReadPosition &position, FileCalls &calls);

    enum class Finding {
        /// It is another file, or cannot be read.
        unknown,
        same,
        different,
    };
    struct Check {
        Finding finding = Finding::unknown;
        /// Of a file that has these bytes and no others.
        std::optional<FileState> state = std::nullopt;
    };
    /// Whether all bytes before `position` are those that were read, one way or another. Unknown soon after a stop was requested.
    [[nodiscard]] static Check check(const QString &path, const ReadPosition &position, FileCalls &calls, const std::stop_token &stop);
};
