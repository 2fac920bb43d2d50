// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Spelling/SpellLibrary.h"

#include <utility>

bool SpellLibrary::Volume::load()
{
    const std::lock_guard lock(m_mutex);
    if (!std::exchange(m_isLoaded, true)) {
        m_dictionary = SpellDictionary::load(m_files);
        if (!m_dictionary) {
            qWarning("The dictionary %s is damaged or cannot be read.", qPrintable(m_files.words));
        }
    }
    return m_dictionary != nullptr;
}

SpellDictionary *SpellLibrary::Volume::dictionaryFor(const QString &word)
{
    return m_dictionary && m_dictionary->isResponsible(word) ? m_dictionary.get() : nullptr;
}

std::optional<bool> SpellLibrary::Volume::knows(const QString &word)
{
    (void)load();
    const std::lock_guard lock(m_mutex);
    SpellDictionary *dictionary = dictionaryFor(word);
    return dictionary ? std::optional(dictionary->knows(word)) : std::nullopt;
}

std::optional<QStringList> SpellLibrary::Volume::suggestions(const QString &word)
{
    (void)load();
    const std::lock_guard lock(m_mutex);
    SpellDictionary *dictionary = dictionaryFor(word);
    return dictionary ? std::optional(dictionary->suggestions(word)) : std::nullopt;
}

std::shared_ptr<SpellLibrary::Volume> SpellLibrary::volume(const SpellDictionaryFiles &files)
{
    const std::lock_guard lock(m_mutex);
    std::weak_ptr<Volume> &kept = m_volumes[files.words];
    std::shared_ptr<Volume> volume = kept.lock();
    if (!volume) {
        volume = std::make_shared<Volume>(files);
        kept = volume;
    }
    return volume;
}
