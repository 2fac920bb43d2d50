// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/MissingCharacters.h"

#include "Files/CharacterSet.h"

#include <utility>

void MissingCharacters::setEncoding(TextEncoding encoding)
{
    const CharacterSet *characters = CharacterSet::of(encoding);
    if (m_characters != characters) {
        m_characters = characters;
        countAll();
    }
}

void MissingCharacters::countAll()
{
    const bool wasCounting = m_counting.isPending();
    m_counting.cancel();
    const TextRange all{0, m_storage.length()};
    if (!m_characters || all.length < largeText) {
        const qsizetype count = m_characters ? m_characters->countMissing(m_storage.text(), all) : 0;
        if (std::exchange(m_count, count) != count || wasCounting) {
            m_changed();
        }
        return;
    }
    m_count = 0;
    m_counting = BackgroundTask::start(
        m_workers,
        [text = m_storage.text(), characters = m_characters](const std::stop_token &stop) {
            return characters->countMissing(text, {0, text.length()}, stop);
        },
        [this](qsizetype count) {
            m_count += count;
            m_changed();
        });
    m_changed();
}

void MissingCharacters::noteEdit(const TextChange &change)
{
    if (!m_characters) {
        return;
    }
    qsizetype looked = 0;
    for (const TextEdit &edit : change.edits) {
        looked += edit.range.length + edit.text.length();
    }
    if (looked >= largeText) {
        countAll();
        return;
    }
    qsizetype count = m_count;
    for (const TextEdit &edit : change.edits) {
        count += m_characters->countMissing(edit.text, {0, edit.text.length()}) - m_characters->countMissing(change.before, edit.range);
    }
    if (std::exchange(m_count, count) != count && !m_counting.isPending()) {
        m_changed();
    }
}
