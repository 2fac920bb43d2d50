// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Base/Scheduler.h"
#include "Text/TextStorage.h"

#include <functional>
#include <optional>

/// The text that stands in a document's file, with its hash, and whether the document's own is that text. A large one is hashed
/// on a worker from a snapshot, and the answer counts only if nothing was typed meanwhile: no key waits for a pass over the text. Main
/// thread only.
class SavedText final {
public:
    /// From this many units on a text is hashed on a worker.
    static constexpr qsizetype largeText = 512 * 1024;
    static constexpr Scheduler::Milliseconds comparisonDelay{400};

    /// `compared` is called with whether the text of `storage` is the saved one. All must outlive this.
    SavedText(const TextStorage &storage, Scheduler &scheduler, Workers &workers, std::function<void(bool isSaved)> compared);

    /// The file has `text`, and nothing needs to be compared. A large text without its hash is hashed when it is first compared.
    void set(const Rope &text, std::optional<quint64> hash = {});
    /// Of the text that the file has, where that is known.
    [[nodiscard]] std::optional<quint64> hash() const { return m_isNone ? std::nullopt : m_hash; }
    /// The file is gone, so no text is a saved one.
    void setNone() { m_isNone = true; }
    /// What was set last stands in no file, though it counts as saved; the file has `fileText`, or that is not known.
    void setUnwritten(const std::optional<Rope> &fileText = {})
    {
        m_isUnwritten = true;
        m_fileText = fileText;
    }
    /// None where no file is known to have one. O(1): it shares its leaves with the document's as far as they are the same.
    [[nodiscard]] std::optional<Rope> text() const { return m_isNone ? std::nullopt : m_isUnwritten ? m_fileText : std::optional(m_text); }
    /// Compares when nobody has asked again for `comparisonDelay`.
    void compareSoon();
    /// `compared` is still to be called.
    [[nodiscard]] bool isComparing() const { return m_soon.isPending() || m_comparison.isPending() || m_hashing.isPending(); }
    /// The same answer without waiting for it; none for a large text of the same length.
    [[nodiscard]] std::optional<bool> isSaved() const;

private:
    void compare();
    void hashSaved();
    [[nodiscard]] bool isSaved(quint64 hash) const { return !m_isNone && hash == m_hash; }
    void answer(quint64 hash) { m_compared(isSaved(hash)); }

    const TextStorage &m_storage;
    Scheduler &m_scheduler;
    Workers &m_workers;
    std::function<void(bool)> m_compared;
    Rope m_text;
    /// None until a large text has been hashed.
    std::optional<quint64> m_hash;
    bool m_isNone = false;
    bool m_isUnwritten = false;
    std::optional<Rope> m_fileText;
    DelayedTask m_soon;
    BackgroundTask m_hashing;
    BackgroundTask m_comparison;
};
