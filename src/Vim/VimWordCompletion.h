// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"

#include <QStringList>

#include <vector>

/// The words that begin like the one before the caret, or any words where there is none there, in the order in which they are found from
/// the caret on: in its text, round the text's end, then in others. One of them, or what was typed, is chosen. Each is there once, that
/// which was typed only where it stands elsewhere too. A value; any thread.
class VimWordCompletion final {
public:
    enum class Direction { forward, backward };

    /// Units in each direction and in the others together that are looked at: as many as a key press has time for.
    static constexpr qsizetype longestSearch = qsizetype(2) << 20;
    static constexpr qsizetype mostWords = 2000;

    struct Place {
        const Rope &text;
        /// Units.
        qsizetype caret = 0;
        bool ignoresCase = false;
    };
    /// Nothing is chosen yet. Those of `others` are asked for when there is time for them.
    VimWordCompletion(const Place &place, const std::vector<Rope> &others, Direction direction);

    /// Where the word begins that was typed.
    [[nodiscard]] qsizetype start() const { return m_start; }
    [[nodiscard]] const QString &typed() const { return m_typed; }
    [[nodiscard]] bool isEmpty() const { return m_words.isEmpty(); }
    /// To the next one; between the last and the first there is what was typed.
    void step(Direction direction);
    [[nodiscard]] const QString &chosen() const { return m_chosen < 0 ? m_typed : m_words[m_chosen]; }
    /// As a list: those that Direction::forward leads to are further down.
    [[nodiscard]] QStringList listed() const;
    /// In that list; -1 for none.
    [[nodiscard]] qsizetype chosenRow() const;

private:
    class Finding;

    Direction m_direction;
    qsizetype m_start = 0;
    QString m_typed;
    /// As they were found.
    QStringList m_words;
    qsizetype m_chosen = -1;
};
