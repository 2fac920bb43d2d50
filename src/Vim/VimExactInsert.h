// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimExactPart.h"
#include "Vim/VimLiteral.h"
#include "Vim/VimWordCompletion.h"

#include <vector>

/// Insert and replace mode.
class VimEngine::Inserting final : public ExactPart {
public:
    using ExactPart::ExactPart;

    enum class Kind { insert, replace, block };

    /// Text is typed from now on; the command may have changed something already, in the same step of undo.
    void begin();
    void enter(qsizetype place, qsizetype count = 1, Kind kind = Kind::insert);
    void append(qsizetype count);
    void enterAtFirst(qsizetype count);
    void enterAtStart(qsizetype count);
    void enterAtEnd(qsizetype count);
    void enterWhereLeft(qsizetype count);
    /// Of several places, in the lines of a block.
    struct BlockInsertion {
        std::vector<qsizetype> places;
        /// Where the caret is left; where it is by then without.
        std::optional<qsizetype> endsAt = std::nullopt;
        qsizetype count = 1;
        /// Takes away again what short lines were filled up with, if nothing is typed.
        TextEdits unfilling = {};
        /// The text when typing began.
        Rope before = {};
    };
    void enterBlock(const BlockInsertion &block);
    void openLine(Side side, qsizetype count);
    /// The line has nothing but the indentation that it was given, which goes with Escape.
    void noteIndentation(bool isGiven) { m_hasGivenIndentation = isGiven; }

    /// False leaves it to the view.
    bool handle(const VimKeyEvent &event);
    void noteTyped(const QString &text);
    void leave();
    void deleteBefore(VimDeletion what, char16_t key);
    void deleteBehind();
    enum class Inserted { asTyped, asIs };
    void insertRegister(char16_t name, Inserted inserted);
    void insertLast(bool leaves);
    void insertNeighbour(qsizetype lines);
    void shiftLine(OperatorKind kind, char16_t key);
    void oneCommand();
    void awaitLiteral();
    void awaitDigraph();
    /// The word before the caret.
    void complete(VimWordCompletion::Direction direction);
    [[nodiscard]] bool isReplacing() const { return m_kind == Kind::replace; }
    [[nodiscard]] const QString &lastInserted() const { return m_lastInserted; }
    void setLastInserted(const QString &text) { m_lastInserted = text; }
    void insertTab();
    /// After a command of normal mode that was to be the only one.
    void comeBack();
    [[nodiscard]] bool comesBack() const { return m_comesBack; }
    void setComesBack(bool comesBack) { m_comesBack = comesBack; }
    /// To where the caret is then, even if it was behind the line.
    void comeBackBefore() { m_returnsBehind.reset(); }
    /// Behind its last character if it is there then.
    void comeBackBehind(qsizetype line) { m_returnsBehind = line; }
    /// Nothing was typed yet since the caret was moved, or since a command of normal mode.
    [[nodiscard]] bool isAnew() const { return m_isAnew; }
    /// Plays what was typed again.
    void play(const QString &script);

    void newLine();
    /// Where insert mode ends that was at `place`, right behind indentation that a new line was given: behind a single character there.
    [[nodiscard]] static qsizetype endBehindGiven(const VimLines &lines, qsizetype place);

private:
    void takeLiteral(const VimKeyEvent &event);
    /// Before a key changes the text.
    void startTyping();
    /// While a word is being completed. False leaves the key to insert mode, where it ends that.
    bool takeCompletionKey(const VimKeyEvent &event);
    void endCompletion();
    void putCompletion(const QString &word);
    void showCompletion();
    void takeDigraph(const VimKeyEvent &event, VimDigraph digraph);
    void putLiteral(const QString &text);
    void put(const QString &text);
    void restoreReplaced(VimDeletion what);
    [[nodiscard]] qsizetype deletedFrom(VimDeletion what) const;
    /// From now on it is typed into the first line of a block alone.
    void gatherBlock();
    [[nodiscard]] TextRange typedIntoBlock() const;
    bool leaveBlock();
    void move(char16_t key);
    void finishReplay();
    void overwrite(const QString &text);
    void breakBeforeWidth(const QString &next);
    qsizetype dropGivenIndentation();
    /// Where insert mode ends, and the cell that is kept for the next `j` where that is another.
    struct End {
        qsizetype place = 0;
        std::optional<qsizetype> column = std::nullopt;
    };
    End endAtGivenIndentation();
    [[nodiscard]] QString indentationFor(qsizetype place) const;
    [[nodiscard]] bool dropsIndentation(qsizetype place) const;

    Kind m_kind = Kind::insert;
    qsizetype m_count = 1;
    std::optional<Side> m_opened;
    QString m_script;
    VimLiteral m_literal;
    /// A word that is being completed, and what stands in its place now.
    struct Completing {
        VimWordCompletion words;
        QString shown;
        /// It was chosen by an arrow key, which leaves the text as it is.
        bool isOnlyShown = false;
    };
    std::optional<Completing> m_completing;
    QString m_lastInserted;
    /// What typed characters took the place of; empty where they were added.
    std::vector<QString> m_replaced;
    qsizetype m_start = 0;
    std::optional<BlockInsertion> m_block;
    bool m_hasGivenIndentation = false;
    /// Of the next line, which this one was to have.
    std::optional<QString> m_nextIndentation;
    bool m_isRepeating = false;
    bool m_comesBack = false;
    bool m_isAnew = false;
    /// The next key is the first one that changes the text.
    bool m_isFirstKey = false;
    Kind m_returnsTo = Kind::insert;
    /// The line, from 0, behind which the caret was.
    std::optional<qsizetype> m_returnsBehind;
};
