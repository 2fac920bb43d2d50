// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/TextFile.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class TextDocument;

/// Whether a document still waits for the text of its file, and what came of that. Main thread only.
class DocumentArrival final {
public:
    /// Why there is no text although nobody waits for it: one of them is there.
    struct Failure {
        std::optional<TextFile::ReadError> error;
        /// The document that had the file already, known by another name, when it came.
        std::shared_ptr<TextDocument> twin;

        explicit operator bool() const { return error || twin; }
    };

    [[nodiscard]] bool isPending() const { return m_isPending; }
    [[nodiscard]] const Failure &failure() const { return m_failure; }
    /// Calls `then` when it is not pending any more, perhaps at once; never if the document is destroyed first.
    void whenOver(std::function<void()> then) const
    {
        if (m_isPending) {
            m_waiting.push_back(std::move(then));
        } else {
            then();
        }
    }

    /// For the document.
    void begin() { m_isPending = true; }
    /// Returns those who are to be called once the text is in its place.
    [[nodiscard]] std::vector<std::function<void()>> end(Failure failure)
    {
        m_isPending = false;
        m_failure = std::move(failure);
        return std::exchange(m_waiting, {});
    }

private:
    bool m_isPending = false;
    Failure m_failure;
    mutable std::vector<std::function<void()>> m_waiting;
};
