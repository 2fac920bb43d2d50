// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Text/TextSearch.h"

#include <functional>

class TextStorage;

/// Looks on a worker for all that is to be replaced in a text, once more when it has changed meanwhile. Main thread only.
class ReplacementSearch final {
public:
    struct Found {
        TextReplacement replacement;
        /// Some stretches were too hard for the expression.
        bool isIncomplete = false;
    };
    /// On any thread.
    using Search = std::function<Found(const Rope &text, const std::stop_token &stop)>;
    /// Of the text as it is.
    using Arrival = std::function<void(const Found &found)>;

    /// One that is under way is stopped.
    void start(TextStorage &storage, Workers &workers, Search search, Arrival arrive);
    [[nodiscard]] bool isPending() const { return m_task.isPending(); }
    void cancel() { m_task.cancel(); }

private:
    BackgroundTask m_task;
};
