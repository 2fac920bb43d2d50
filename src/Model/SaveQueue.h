// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/DocumentFile.h"

#include <deque>
#include <functional>
#include <optional>
#include <vector>

/// The texts of one document on their way into files, one after the other, and who waits for that. Main thread only.
class SaveQueue final {
public:
    /// Called when a file was written, with how, or could not be.
    using Completion = std::function<void(const Result<AtomicFile::InPlace> &saved)>;
    struct Save {
        DocumentFile::Snapshot snapshot;
        std::vector<Completion> completions;
    };

    /// One is being written, or waits for that.
    [[nodiscard]] bool isActive() const { return m_underWay || !m_waiting.empty(); }
    /// Calls `then` when it is not active any more, perhaps at once, with whether the last write succeeded; never if the document is
    /// destroyed first.
    void whenOver(std::function<void(bool isWritten)> then) const;

    /// For the document, as are all that follow. Of several texts that wait for the same file only the last is written.
    void add(DocumentFile::Snapshot snapshot, const Completion &completion);
    /// The next one, which is under way from now on; null while one is, or when none is left.
    [[nodiscard]] DocumentFile::Snapshot *begin();
    /// The one that was under way.
    [[nodiscard]] Save end();
    /// None is left, and those who wait for that are called.
    void finish(bool isWritten);

private:
    std::deque<Save> m_waiting;
    std::optional<Save> m_underWay;
    mutable std::vector<std::function<void(bool)>> m_whenOver;
};
