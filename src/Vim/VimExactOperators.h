// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimBlock.h"
#include "Vim/VimExactPart.h"
#include "Vim/VimFormatting.h"

/// Operators and the other commands that change the text.
class VimEngine::Operating final : public ExactPart {
public:
    using ExactPart::ExactPart;

    struct Region {
        TextRange range;
        Span span = Span::characters;
        /// The caret after a yank.
        qsizetype start = 0;
        /// More than a part of a line.
        bool isOfLines = false;
        /// What it takes goes to the numbered registers however little it is.
        bool isLarge = false;
        /// How often lines are shifted.
        qsizetype amount = 1;
        /// Changing it takes even nothing into registers.
        bool isInclusive = false;
        /// Where yanking it leaves the mark `]`, where that is not its last unit.
        std::optional<qsizetype> markEnd = std::nullopt;
        /// The motion led to the start of the line below.
        bool endsBelow = false;
        /// With the empty line behind the last break, which the range cannot tell.
        bool takesOpenLine = false;

        /// Whole lines, up to that of `last`.
        [[nodiscard]] static Region ofLines(const VimLines &lines, qsizetype first, qsizetype last, qsizetype start);
    };

    /// The caret goes there, or the operator that waits has its text.
    void arrive(const VimExactMotion::Result &result);
    void takeObject(VimTextObject::Extent extent, char16_t key);
    void applyLines(OperatorKind kind, qsizetype count);
    void apply(OperatorKind kind, const Region &region);
    void applyToBlock(OperatorKind kind, const VimBlock &block);
    void forget() { m_forced.reset(), m_objectCaret.reset(); }
    /// The operator that waits takes what lies between the caret and where `command` leads.
    void applyOver(const QString &command);
    /// The operator that waits takes characters, lines or a block, whatever its motion says.
    void force(Mode mode);

    void deleteCharacters(Side side, qsizetype count);
    void substituteCharacters(qsizetype count);
    void toRestOfLine(OperatorKind kind, qsizetype count);
    void toggleCase(qsizetype count);
    void replaceCharacter(QStringView key, qsizetype count);
    void join(qsizetype count, VimFormatting::Glue glue);
    enum class PasteCaret { onText, behindText };
    enum class PasteIndentation { asIs, asHere };
    void paste(Side side, qsizetype count, PasteCaret at = PasteCaret::onText, PasteIndentation indentation = PasteIndentation::asIs);
    void add(qint64 by);
    void keep(const VimRegisterContents &contents, VimRegisters::Taken taken);
    void keepRange(const Region &region, VimRegisters::Taken taken);
    [[nodiscard]] QString blanks(qsizetype cells) const;
    void pasteText(const VimRegisterContents &contents, Side side, qsizetype count, PasteCaret at);

private:
    /// Units, the last of which is taken too if it `isInclusive`.
    struct Stretch {
        qsizetype low = 0;
        qsizetype high = 0;
        bool isInclusive = false;
    };
    [[nodiscard]] static Stretch stretchTo(const VimLines &lines, qsizetype caret, const VimExactMotion::Result &motion);
    [[nodiscard]] static Region regionOf(const VimLines &lines, OperatorKind kind, const Stretch &stretch,
                                         const VimExactMotion::Result &motion, std::optional<Mode> forced);
    [[nodiscard]] qsizetype placeBefore(OperatorKind kind, const Region &region) const;
    void change(const Region &region);
    void yank(const Region &region);
    void remove(const Region &region);
    void replaceByBreak(TextRange range);
    [[nodiscard]] qsizetype indentationAt(qsizetype line) const;
    void alignLines(qsizetype first, qsizetype count, qsizetype cells);
    void shift(const Region &region, OperatorKind kind);
    void changeCase(const Region &region, OperatorKind kind);
    void format(const Region &region, bool keepsCaret);
    void pasteBlock(const VimRegisterContents &contents, Side side, qsizetype count, PasteCaret at);
    void putText(const VimRegisterContents &contents, Side side, qsizetype count, PasteCaret at);
    void keepBlock(OperatorKind kind, const VimBlock &block, const VimLines &lines, bool isOfOneLine);
    void shiftBlock(OperatorKind kind, const VimBlock &block);

    std::optional<Mode> m_forced;
    /// Where the caret was before an object was taken.
    std::optional<qsizetype> m_objectCaret;
};
