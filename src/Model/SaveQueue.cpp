// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/SaveQueue.h"

#include <utility>

void SaveQueue::whenOver(std::function<void(bool isWritten)> then) const
{
    if (isActive()) {
        m_whenOver.push_back(std::move(then));
    } else {
        then(true);
    }
}

void SaveQueue::add(DocumentFile::Snapshot snapshot, const Completion &completion)
{
    if (m_waiting.empty() || m_waiting.back().snapshot.path != snapshot.path || m_waiting.back().snapshot.manner != snapshot.manner) {
        m_waiting.emplace_back();
    }
    m_waiting.back().snapshot = std::move(snapshot);
    if (completion) {
        m_waiting.back().completions.push_back(completion);
    }
}

DocumentFile::Snapshot *SaveQueue::begin()
{
    if (m_underWay || m_waiting.empty()) {
        return nullptr;
    }
    m_underWay = std::move(m_waiting.front());
    m_waiting.pop_front();
    return &m_underWay->snapshot;
}

SaveQueue::Save SaveQueue::end()
{
    return *std::exchange(m_underWay, std::nullopt);
}

void SaveQueue::finish(bool isWritten)
{
    for (const auto &then : std::exchange(m_whenOver, {})) {
        then(isWritten);
    }
}
