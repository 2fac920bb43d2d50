// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Spelling/SpellGuess.h"

#include "Spelling/SpellLibrary.h"

#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype leastWords = 8;
/// Of the words, in per cent: what one must know that the ones before it do not.
constexpr qsizetype leastAddition = 10;
constexpr qsizetype leastAddedWords = 3;
/// With fewer words that the likely ones know together, some of the text is in another language; with fewer that any one knows, it is in
/// none that is known.
constexpr qsizetype leastOfLikely = 75;
constexpr qsizetype leastOfAny = 30;

struct Reader {
    QString name;
    std::vector<bool> known;
};

/// How many of the words it knows that are not known yet.
qsizetype addition(const Reader &reader, const std::vector<bool> &known)
{
    qsizetype count = 0;
    for (size_t word = 0; word < known.size(); ++word) {
        count += reader.known[word] && !known[word] ? 1 : 0;
    }
    return count;
}

class Guessing {
public:
    Guessing(const QStringList &words, SpellLibrary &library, const std::stop_token &stop)
        : m_words(words), m_library(library), m_stop(stop)
    {}

    void read(const std::vector<SpellDictionaryFiles> &candidates)
    {
        for (const SpellDictionaryFiles &files : candidates) {
            if (m_stop.stop_requested()) {
                return;
            }
            const auto volume = m_library.volume(files);
            Reader reader{files.name, {}};
            for (const QString &word : m_words) {
                reader.known.push_back(volume->knows(word).value_or(false));
            }
            m_readers.push_back(std::move(reader));
        }
    }
    /// To all of them together.
    [[nodiscard]] bool isKnown(qsizetype percent) const
    {
        qsizetype count = 0;
        for (size_t word = 0; word < size_t(m_words.size()); ++word) {
            count += std::ranges::any_of(m_readers, [word](const Reader &reader) { return reader.known[word]; }) ? 1 : 0;
        }
        return count * 100 >= percent * m_words.size();
    }
    [[nodiscard]] bool isKnownToOne(qsizetype percent) const
    {
        const std::vector<bool> none(size_t(m_words.size()));
        return std::ranges::any_of(m_readers,
                                   [&](const Reader &reader) { return addition(reader, none) * 100 >= percent * m_words.size(); });
    }
    [[nodiscard]] QStringList chosen() const
    {
        QStringList names;
        std::vector<bool> known(size_t(m_words.size()));
        qsizetype least = 1;
        while (names.size() < std::ssize(m_readers)) {
            const auto best = std::ranges::max_element(m_readers, {}, [&](const Reader &reader) { return addition(reader, known); });
            if (addition(*best, known) < least) {
                break;
            }
            names << best->name;
            for (size_t word = 0; word < known.size(); ++word) {
                known[word] = known[word] || best->known[word];
            }
            least = std::max(leastAddedWords, leastAddition * m_words.size() / 100);
        }
        return names;
    }

private:
    const QStringList &m_words;
    SpellLibrary &m_library;
    const std::stop_token &m_stop;
    std::vector<Reader> m_readers;
};

} // namespace

QStringList SpellGuess::dictionaries(const QStringList &words, const Candidates &candidates, SpellLibrary &library,
                                     const std::stop_token &stop)
{
    QStringList likely;
    for (const SpellDictionaryFiles &files : candidates.likely) {
        likely << files.name;
    }
    if (words.size() < leastWords) {
        return likely;
    }
    Guessing guessing(words, library, stop);
    guessing.read(candidates.likely);
    if (!guessing.isKnown(leastOfLikely)) {
        guessing.read(candidates.others);
    }
    return guessing.isKnownToOne(leastOfAny) ? guessing.chosen() : likely;
}
