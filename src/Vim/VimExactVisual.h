// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimExactOperators.h"
#include "Vim/VimPlaces.h"

/// The visual modes.
class VimEngine::Selecting final : public ExactPart {
public:
    using ExactPart::ExactPart;

    void toggle(Mode mode);
    void begin(Mode mode, qsizetype anchor, qsizetype head);
    /// Moves the end that moves.
    void select(qsizetype head);
    void leave();
    /// As an operator does it.
    void leaveAtStart();
    void again();
    void otherEnd(bool isInRow);
    void selectHit(SearchDirection direction);
    void insert(Side side, qsizetype count);
    void apply(OperatorKind kind, std::optional<Span> span = std::nullopt, bool toEnds = false);
    /// Whole lines, or of a block all up to the ends of lines.
    void removeLines(OperatorKind kind);
    void removeAll();
    void yankLines();
    void replaceCharacters(QStringView key);
    enum class PasteRegister { takes, keeps };
    /// Lines go above a rectangle, or below it.
    void paste(qsizetype count, Side side, PasteRegister taking, Operating::PasteCaret at = Operating::PasteCaret::onText);
    void join(VimFormatting::Glue glue);
    void add(qint64 by, bool isProgressive);
    void takeObject(VimTextObject::Extent extent, char16_t key);
    [[nodiscard]] VimBlock block() const;
    [[nodiscard]] Extent extent() const;
    /// What the command takes, for repeating it and for as much again.
    void takeExtent();
    /// From the caret on, or from the `column` of its line.
    void selectAgain(const Extent &extent, std::optional<qsizetype> column = std::nullopt);
    /// Remembers the selection for `gv` and its marks.
    void remember();
    void followChange(const TextChange &change);
    struct Selected {
        Mode mode = Mode::visual;
        VimPlace anchor;
        VimPlace head;
        bool isEndless = false;
    };
    [[nodiscard]] const std::optional<Selected> &selected() const { return m_last; }
    /// Of a text that is as it was then.
    void setSelected(const Selected &selected);

private:
    [[nodiscard]] Operating::Region region() const;
    [[nodiscard]] qsizetype firstOfLines(const VimLines &lines) const;
    /// What was selected, and is deleted, for something to be put in its place.
    struct Replaced {
        Operating::Region region;
        VimBlock block;
        bool isBlock = false;
        qsizetype lines = 1;
        /// Up to the end of a line.
        bool isAtEnd = false;
        /// The last lines of the text, or all of them.
        bool isLast = false;
        bool isAll = false;
        /// The end that moves was in a line above the other one's.
        bool isUpward = false;
    };
    void put(const VimRegisterContents &pasted, const Replaced &replaced, Side side, qsizetype count, Operating::PasteCaret at);
    void pasteIntoRows(const VimBlock &block, const QString &pasted);
    [[nodiscard]] bool isEndless() const;
    [[nodiscard]] qsizetype placeToInsert(const VimLines &lines, Side side) const;
    void endAt(qsizetype place);
    void removeEmptyLast();
    void selectPasted(Mode mode);

    std::optional<Selected> m_last;
    /// Cells of a rectangle that a repetition takes whatever its last line has, while its end is at `head`.
    struct Width {
        qsizetype head = 0;
        qsizetype cells = 0;
    };
    std::optional<Width> m_width;
};
