// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextRange.h"
#include "Vim/VimDigraphs.h"
#include "Vim/VimLiteral.h"
#include "Vim/VimTextView.h"

#include <QStringList>

#include <functional>
#include <optional>

class Rope;
class VimHistory;
class VimRegisters;

/// The line that is typed behind ":", "/" or "?". It knows the keys that change it, and nothing of what it is for. Its cursor, an offset
/// in UTF-16 units, stays at the end but in exact editing.
class VimCommandLine final {
public:
    enum class Outcome { goesOn, isEntered, isLeft };

    /// What it takes text from, and the setting that decides which keys it knows.
    struct Surroundings {
        const VimRegisters &registers;
        const Rope &text;
        qsizetype caret;
        /// Null for none.
        const VimHistory *history = nullptr;
        bool isExact = false;
        /// What registers have that are no kept ones; none for kept ones.
        std::function<std::optional<QString>(char16_t name)> derived = {};
    };

    void begin(char16_t prefix, const QString &text = {});
    void clear() { begin(m_prefix); }
    /// Takes any key but Escape, and that too while it awaits one. What has no meaning here does nothing.
    Outcome handle(const VimKeyEvent &event, const Surroundings &around);

    [[nodiscard]] char16_t prefix() const { return m_prefix; }
    /// Without the prefix.
    [[nodiscard]] const QString &text() const { return m_text; }
    [[nodiscard]] qsizetype cursor() const { return m_cursor; }
    /// The next key is taken as it is, be it Escape.
    [[nodiscard]] bool awaitsKey() const
    {
        return m_awaited == Awaited::literal || m_awaited == Awaited::digraph || m_awaited == Awaited::exactRegister;
    }
    /// How many hits further the user wants to see than the one that the line finds; negative ones are before it.
    [[nodiscard]] int hitSteps() const { return m_hitSteps; }

    /// The part of a file's name that is to be completed, once somebody has looked for files; none while it is not.
    [[nodiscard]] std::optional<QString> awaitedFiles() const;
    /// Those that were asked for, see VimCompletion::files().
    void takeFiles(const QStringList &names);
    /// What may stand before the cursor, while there is a choice.
    [[nodiscard]] std::optional<VimOffer> offer() const;

private:
    struct KeyRow;
    enum class Awaited { nothing, registerName, exactRegister, literal, digraph };
    enum class Direction { forward, backward, nowhere };
    /// What was typed, and what is shown of the history in its place.
    struct Recall {
        QString sought;
        /// Among the entries; -1 is what was typed.
        qsizetype place = -1;
        QString shown;
    };
    /// What may stand from `from` to the cursor, as the last of it what was typed.
    struct Candidates {
        qsizetype from = 0;
        QStringList names;
        qsizetype chosen = 0;
        QString shown;
    };
    struct FileQuestion {
        qsizetype from = 0;
        Direction direction = Direction::forward;
    };

    Outcome deleteLetter(const Surroundings &around);
    Outcome deleteNextLetter(const Surroundings &around);
    Outcome deleteWord(const Surroundings &around);
    Outcome deleteToStart(const Surroundings &around);
    Outcome enter(const Surroundings &around);
    Outcome leave(const Surroundings &around);
    Outcome awaitRegister(const Surroundings &around);
    Outcome awaitLiteral(const Surroundings &around);
    Outcome awaitDigraph(const Surroundings &around);
    Outcome paste(const Surroundings &around);
    Outcome goLeft(const Surroundings &around);
    Outcome goRight(const Surroundings &around);
    Outcome goWordLeft(const Surroundings &around);
    Outcome goWordRight(const Surroundings &around);
    Outcome goToStart(const Surroundings &around);
    Outcome goToEnd(const Surroundings &around);
    Outcome recallOlderAlike(const Surroundings &around);
    Outcome recallNewerAlike(const Surroundings &around);
    Outcome recallOlder(const Surroundings &around);
    Outcome recallNewer(const Surroundings &around);
    Outcome completeNext(const Surroundings &around);
    Outcome completePrevious(const Surroundings &around);
    Outcome listNames(const Surroundings &around);
    Outcome takeBack(const Surroundings &around);
    Outcome accept(const Surroundings &around);
    Outcome showNextHit(const Surroundings &around);
    Outcome showPreviousHit(const Surroundings &around);

    Outcome takeAwaited(const VimKeyEvent &event, char16_t key, const Surroundings &around);
    void putText(const QString &text);
    void putLine(QString text);
    void putRegister(const Surroundings &around, char16_t name);
    void erase(TextRange range);
    void show(const QString &text);
    enum class Among { all, alike };
    void recall(Direction direction, Among among, const Surroundings &around);
    [[nodiscard]] bool hasSeveralCandidates() const;
    void complete(Direction direction);
    void offer(qsizetype from, QStringList names, Direction direction);
    void choose(qsizetype index);

    char16_t m_prefix = u':';
    QString m_text;
    qsizetype m_cursor = 0;
    Awaited m_awaited = Awaited::nothing;
    VimLiteral m_literal;
    VimDigraph m_digraph;
    /// Both hold as long as the line is as they left it.
    std::optional<Recall> m_recall;
    std::optional<Candidates> m_candidates;
    std::optional<FileQuestion> m_fileQuestion;
    int m_hitSteps = 0;
};
