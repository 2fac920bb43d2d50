// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/SavedText.h"

#include "Files/TextHash.h"

SavedText::SavedText(const TextStorage &storage, Scheduler &scheduler, Workers &workers, std::function<void(bool isSaved)> compared)
    : m_storage(storage), m_scheduler(scheduler), m_workers(workers), m_compared(std::move(compared))
{
    set(storage.text());
}

void SavedText::set(const Rope &text, std::optional<quint64> hash)
{
    m_soon.cancel();
    m_comparison.cancel();
    m_hashing.cancel();
    m_isNone = false;
    m_isUnwritten = false;
    m_fileText.reset();
    m_text = text;
    m_hash = hash;
    if (!hash && text.length() < largeText) {
        m_hash = textHash(text);
    }
}

void SavedText::compareSoon()
{
    m_comparison.cancel();
    m_soon = m_scheduler.after(comparisonDelay, [this] { compare(); });
}

std::optional<bool> SavedText::isSaved() const
{
    // A letter more or less answers without a look at the text.
    if (m_isNone || m_storage.length() != m_text.length()) {
        return false;
    }
    return m_hash && m_text.length() < largeText ? std::optional(isSaved(textHash(m_storage.text()))) : std::nullopt;
}

void SavedText::compare()
{
    if (const auto saved = isSaved()) {
        m_compared(*saved);
        return;
    }
    if (!m_hash) {
        hashSaved();
        return;
    }
    m_comparison = BackgroundTask::start(
        m_workers, [text = m_storage.text()](const std::stop_token &stop) { return textHash(text, stop); },
        [this, revision = m_storage.revision()](std::optional<quint64> hash) {
            if (hash && revision == m_storage.revision()) {
                answer(*hash);
            }
        });
}

void SavedText::hashSaved()
{
    if (m_hashing.isPending()) {
        return;
    }
    m_hashing = BackgroundTask::start(
        m_workers, [text = m_text](const std::stop_token &stop) { return textHash(text, stop); },
        [this](std::optional<quint64> hash) {
            m_hash = hash;
            compare();
        });
}
