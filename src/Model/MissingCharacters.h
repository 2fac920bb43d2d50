// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Files/TextEncoding.h"
#include "Text/TextStorage.h"

#include <functional>
#include <optional>

class CharacterSet;

/// How many characters of a document's text cannot be written in its encoding. A large text is counted on a worker, and from then on every
/// edit only looks at what it takes away and brings; where the encoding has all characters nothing is looked at. Main thread only.
class MissingCharacters final {
public:
    /// From this many units on the main thread does not count them.
    static constexpr qsizetype largeText = 512 * 1024;

    /// `changed` is called when count() has another answer, and may not change the text. All must outlive this.
    MissingCharacters(const TextStorage &storage, Workers &workers, std::function<void()> changed)
        : m_storage(storage), m_workers(workers), m_changed(std::move(changed))
    {}

    void setEncoding(TextEncoding encoding);
    /// The text was changed.
    void noteEdit(const TextChange &change);

    /// None while a large text is counted.
    [[nodiscard]] std::optional<qsizetype> count() const { return m_counting.isPending() ? std::nullopt : std::optional(m_count); }
    /// Those that the encoding has; null for all.
    [[nodiscard]] const CharacterSet *characters() const { return m_characters; }

private:
    void countAll();

    const TextStorage &m_storage;
    Workers &m_workers;
    std::function<void()> m_changed;
    const CharacterSet *m_characters = nullptr;
    /// While all are counted: by how much edits since then have changed the number.
    qsizetype m_count = 0;
    BackgroundTask m_counting;
};
