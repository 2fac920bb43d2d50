// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

// What the engine does by default, in parts that share its keys and counts; the rows of VimKeyTable.cpp call them. Private to the sources
// of the engine and its tests. Positions are UTF-16 units. Main thread only.

#include "Vim/VimEngine.h"

class VimEngine::Part {
protected:
    explicit Part(VimEngine &engine) : m_engine(engine) {}

    VimEngine &m_engine;
};

/// Where the caret goes: motions, marks, the screen, searches.
class VimEngine::Moving final : public Part {
public:
    using Target = VimMotion::Result (*)(const VimMotion::Request &request);

    explicit Moving(VimEngine &engine) : Part(engine) {}

    void go(Target target, Unmoved unmoved);
    void applyVertical(qsizetype lines);
    void find(char16_t character, VimMotion::FindKind kind);
    void repeatFind(bool isReversed);
    void goToLine(std::optional<LineNumber> number, qsizetype otherwise);
    void setMark(const QString &name);
    void goToMark(const QString &name, bool isExact);
    void goToVisibleLine(VisibleLine line);
    enum class Shown { anywhere, centered };
    void showSelection(Shown where);
    void scrollLines(qsizetype lines);
    void performSearch(const QString &pattern, SearchDirection direction, qsizetype from);
    void repeatSearch(bool isReversed);
    void searchWordUnderCaret(SearchDirection direction);

private:
    void applyMotion(const VimMotion::Result &result);
    void findOnLine(char16_t character, VimMotion::FindKind kind);
    void jumpToMatch(const VimSearch &search, qsizetype from);
    void jumpTo(TextRange hit);

    struct LastFind {
        char16_t character;
        VimMotion::FindKind kind;
    };
    std::optional<LastFind> m_lastFind;
    std::map<QString, qsizetype> m_marks;
};

/// What operators and commands do to the text, the sessions of insert mode, and what "." does again.
class VimEngine::Editing final : public Part {
public:
    explicit Editing(VimEngine &engine) : Part(engine) {}

    void apply(OperatorKind kind, TextRange range, Span span);
    void applyLinewiseOperator(OperatorKind kind, qsizetype count);
    void applyToSelection(OperatorKind kind);
    void changeComments(TextRange range);
    void enterInsert(qsizetype place);
    void openLine(Side side);
    void toggleCaseUnderCaret(qsizetype count);
    void joinLines(qsizetype count);
    void replaceCharacter(QStringView key, qsizetype count);
    void paste(Side side, qsizetype count);
    void copySelection();
    /// From the caret, `count` characters on, but not beyond the line.
    [[nodiscard]] TextRange charactersFrom(qsizetype caret, qsizetype count) const;

    void noteInserted(const QString &text) { m_insertedText += text; }
    void deleteInserted(VimDeletion what);
    void insertRegister(char16_t name);
    void endInsertSession();

    void repeatLastChange();
    /// A command that changed the text is over.
    void noteChange();

private:
    /// What "." does again: keys, then what was typed; from the caret on so much, if an operator took it.
    struct Change {
        QString keys;
        std::optional<QString> insertedText = std::nullopt;
        std::optional<Extent> extent = std::nullopt;
    };

    void changeRange(TextRange range, Span span);
    void shiftLines(TextRange range, OperatorKind kind);
    void changeCase(TextRange range, OperatorKind kind);
    void store(TextRange range, Span span);
    void beginInsertSession();
    [[nodiscard]] Extent selectedExtent() const;
    void selectAgain(const Extent &extent);

    std::optional<Change> m_lastChange;
    Change m_insertCommand;
    QString m_insertedText;
    bool m_isReplaying = false;
};
