// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Spelling/SpellDictionary.h"

#include <map>
#include <mutex>

/// The dictionaries in memory, each of them once for all who use it and as long as somebody does. Any thread.
class SpellLibrary final {
public:
    /// One dictionary, loaded when it is asked first. Its lock is held for a word at a time, so that suggestions get in between those of a
    /// batch. Any thread.
    class Volume final {
    public:
        explicit Volume(SpellDictionaryFiles files) : m_files(std::move(files)) {}

        [[nodiscard]] const SpellDictionaryFiles &files() const { return m_files; }
        /// False when it cannot be read.
        [[nodiscard]] bool load();
        /// None when it is for another script, or cannot be read.
        [[nodiscard]] std::optional<bool> knows(const QString &word);
        /// None in the same cases.
        [[nodiscard]] std::optional<QStringList> suggestions(const QString &word);

    private:
        /// With the lock held.
        [[nodiscard]] SpellDictionary *dictionaryFor(const QString &word);

        const SpellDictionaryFiles m_files;
        std::mutex m_mutex;
        std::unique_ptr<SpellDictionary> m_dictionary;
        bool m_isLoaded = false;
    };

    [[nodiscard]] std::shared_ptr<Volume> volume(const SpellDictionaryFiles &files);

private:
    std::mutex m_mutex;
    /// By the file of the words.
    std::map<QString, std::weak_ptr<Volume>> m_volumes;
};
