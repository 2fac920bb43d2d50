// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

// What the engine does exactly as Vim, in parts that share the engine's keys and counts; the rows of VimExactKeys.cpp call them. Private to
// the sources of the engine. Positions are UTF-16 units. Main thread only.

#include "Vim/VimBlock.h"
#include "Vim/VimEngine.h"
#include "Vim/VimExTarget.h"
#include "Vim/VimExactMotion.h"
#include "Vim/VimExactObject.h"
#include "Vim/VimFileMarks.h"
#include "Vim/VimFormatting.h"
#include "Vim/VimIdleSteps.h"
#include "Vim/VimLiteral.h"
#include "Vim/VimMarks.h"
#include "Vim/VimStepCaret.h"
#include "Vim/VimSubstituteJob.h"
#include "Vim/VimWordCompletion.h"

#include <deque>

/// What all parts have: the text as Vim sees it, the caret, and how a command ends.
class VimEngine::ExactPart {
public:
    explicit ExactPart(Exact &exact);

protected:
    /// The text as it is now, to be looked at until the next change.
    struct Sight {
        Sight(const Rope &text, int tabWidth, VimLines::LastLine last) : lines(text, tabWidth, last) {}
        Q_DISABLE_COPY_MOVE(Sight)

        VimLines lines;
    };
    enum class Repeatable { no, yes };
    struct Form {
        int tabWidth;
        VimLines::LastLine last;
    };

    [[nodiscard]] Form form() const;
    [[nodiscard]] Sight see() const;
    /// What `function` makes of the lines of the text, on a worker where it is about much of it; none when the user has stopped it, or when
    /// the text is another one by then.
    template<class Function>
    [[nodiscard]] auto computed(TextRange about, Function function)
    {
        constexpr qsizetype readAtOnce = qsizetype(256) * 1024;
        const Rope before = text();
        const auto make = [form = form(), function = std::move(function)](const Rope &rope, const std::stop_token & /*stop*/) {
            return function(VimLines(rope, form.tabWidth, form.last));
        };
        auto made = about.length <= readAtOnce ? std::optional(make(before, {})) : m_engine.m_view.computed(make);
        if (!(text() == before)) {
            made.reset();
        }
        return made;
    }
    [[nodiscard]] const Rope &text() const;
    [[nodiscard]] qsizetype caret() const;
    /// On a character where the mode wants one; the other end of a selection stays. `column` is to be kept for the next `j`.
    void setCaret(qsizetype place, std::optional<qsizetype> column = std::nullopt);
    bool edit(const TextEdits &edits);
    bool edit(TextRange range, QStringView text) { return edit(TextEdits(range, text)); }
    /// What was typed is done.
    void finish(Repeatable repeatable = Repeatable::no);
    /// It came to nothing: macros stop.
    void fail();
    [[nodiscard]] VimExactMotion::Request request(const Sight &sight) const;

    VimEngine &m_engine;
    Exact &m_exact;
};

/// Where commands begin and how they are done again: their keys, macros, ".".
class VimEngine::Repeating final : public ExactPart {
public:
    using ExactPart::ExactPart;

    /// A key of a command, other than counts and registers.
    void note(QStringView key) { m_keys += key; }
    void dropNoted(qsizetype units) { m_keys.chop(units); }
    void forget();
    /// What was noted is what "." does.
    void remember();
    void rememberScript(const QString &script);
    /// "." inserts what was typed since then.
    void rememberInsertion();
    /// "." repeats the command by other keys than were typed.
    void rememberKeys(const QString &keys);
    /// "." does it no more than so often.
    void limitCount(qsizetype count);
    [[nodiscard]] bool isReplaying() const { return m_isReplaying; }
    [[nodiscard]] bool isRunning() const { return m_depth > 0; }
    void repeat();

    /// Carries keys out, false when one failed; what was left of them is dropped then.
    bool run(const QString &keys);
    /// The same, before what is still to come while others are carried out.
    void runNext(const QString &keys);
    void noteFailure() { m_hasFailed = true; }
    /// What is done meanwhile is part of another command.
    [[nodiscard]] QString hold();
    void release(const QString &keys);

    void record(const VimKeyEvent &event);
    /// An input method typed it.
    void recordText(const QString &text);
    /// Changes till the end are one step of undo, but for what `u` in between divides.
    void beginStep();
    void endStep();
    /// Undoes or redoes, beside the step that is under way.
    void outsideStep(const std::function<void()> &replay);
    /// Ends a recording, or waits for the name of a register to record into.
    void beginRecording();
    void toggleRecording(char16_t name);
    void runMacro(char16_t name);
    [[nodiscard]] std::optional<char16_t> recording() const { return m_recording; }

private:
    struct Redo {
        QString keys;
        std::optional<char16_t> registerName;
        /// 0 for none.
        qsizetype count = 0;
        std::optional<Extent> extent;
        /// What was typed in insert mode.
        std::optional<QString> script;
    };
    QString m_keys;
    void push(Redo redo);

    std::optional<Redo> m_redo;
    /// That before it, which "." repeats while the one that inserts text goes on.
    std::optional<Redo> m_redoBefore;
    bool m_isReplaying = false;
    bool m_isHeld = false;
    bool m_hasFailed = false;
    std::optional<char16_t> m_recording;
    QString m_recorded;
    char16_t m_lastMacro = 0;
    /// Still to come while keys are carried out; a macro goes before the rest.
    QString m_queue;
    qsizetype m_queuePlace = 0;
    qsizetype m_depth = 0;
    qsizetype m_steps = 0;
    qsizetype m_keysRun = 0;
};

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

/// What is remembered of changes: the marks that follow them, their steps of undo, the line before them.
class VimEngine::Changing final : public ExactPart {
public:
    using ExactPart::ExactPart;

    void undo(qsizetype count);
    void redo(qsizetype count);
    void undoLine();
    void followChange(const TextChange &change);
    /// The change under way is none of its own.
    [[nodiscard]] bool isUndoing() const { return m_making != Making::change; }
    [[nodiscard]] bool isReplaying() const { return m_making == Making::replay; }
    void noteCaret(qsizetype place) { m_caretBefore = place; }
    /// There is no line any more that could be as it was before.
    void forgetLine() { m_lineBefore.reset(); }
    /// A command is about to change the text there: where it changes nothing, that is a step of undo as well. It is for changes of one
    /// line that the line is kept for `U`. What comes `between` lines lets those alone.
    enum class Reach { line, lines, between };
    /// `taken` is what it takes, even if some of that stays as it is.
    void beginChange(qsizetype place, Reach reach = Reach::line, std::optional<TextRange> taken = std::nullopt);
    /// What a step keeps of `change`, which begins it: where the caret was.
    [[nodiscard]] VimStepCaret stepOf(const TextChange &change);
    /// The lines that a command took, all that it changes or not.
    [[nodiscard]] std::optional<VimStepCaret::LineSpan> takenLines() const { return m_taken; }
    void forgetTaken() { m_taken.reset(); }
    /// The line at `place` is as it is, unless it is kept already.
    void keepLine(qsizetype place);
    /// The change under way is one even if nothing else comes of it.
    void countChange() { m_hasChanged = true; }
    /// A key is done with.
    void endChange();
    /// Steps that can be undone.
    [[nodiscard]] qsizetype undoSteps() const;
    /// The break at the end of the text comes or goes with a change.
    void appendBreak();
    void dropLastBreak();
    /// The places of `[` and `]`.
    void setChangeMarks(qsizetype first, qsizetype last);
    /// A command has changed the text there, or changed nothing in what it was to change: that is where the mark `.` is, and where the
    /// list of changes leads for the step of undo. Without a call it is where the change begins.
    void noteChange(qsizetype place);
    /// The line of `place` as such was changed.
    void noteLine(qsizetype place);
    /// The line below that of `place` was there before the change; there need be none any more.
    void noteLineBelow(qsizetype place);

private:
    using Replay = VimStepCaret::Replay;
    enum class Replayed { nothing, idleStep, change };
    Replayed replayStep(Replay replay);
    void replaySteps(Replay replay, qsizetype count);
    void showReplayed(Replay replay);
    void showIdleStep(const VimIdleSteps::Step &step);
    void keepLineOf(const Rope &before, qsizetype place, qsizetype caret);
    [[nodiscard]] qsizetype stepUnderWay() const;

    /// The first unit that undoing changed.
    std::optional<qsizetype> m_firstChanged;
    /// As it was before the changes in it; the text has no break.
    struct LineBefore {
        qsizetype number = 0;
        Rope text;
        qsizetype column = 0;
    };
    std::optional<LineBefore> m_lineBefore;
    VimIdleSteps m_idleSteps;
    std::optional<VimStepCaret::LineSpan> m_taken;
    /// That of the step that has a place in the list of changes already.
    qsizetype m_stepNoted = 0;
    /// A command that may change nothing.
    struct Begun {
        qsizetype place = 0;
        Reach reach = Reach::line;
        /// Of the mark `]`.
        qsizetype last = 0;
    };
    std::optional<Begun> m_begun;
    bool m_hasChanged = false;
    bool m_changesLines = false;
    /// Where the caret is while a command changes the text.
    std::optional<qsizetype> m_caretBefore;
    /// What the change under way is: one of the user, what goes with one, or one that is undone or redone.
    enum class Making { change, addition, replay };
    Making m_making = Making::change;
};

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
    [[nodiscard]] qsizetype placeBefore(OperatorKind kind, const Region &region) const;
    void change(const Region &region);
    void remove(const Region &region);
    void replaceByBreak(TextRange range);
    [[nodiscard]] qsizetype indentationAt(qsizetype line) const;
    void alignLines(qsizetype first, qsizetype count, qsizetype cells);
    void shift(const Region &region, OperatorKind kind);
    void changeCase(TextRange range, OperatorKind kind);
    void format(const Region &region, bool keepsCaret);
    void pasteBlock(const VimRegisterContents &contents, Side side, qsizetype count, PasteCaret at);
    void putText(const VimRegisterContents &contents, Side side, qsizetype count, PasteCaret at);
    void shiftBlock(OperatorKind kind, const VimBlock &block);

    std::optional<Mode> m_forced;
    /// Where the caret was before an object was taken.
    std::optional<qsizetype> m_objectCaret;
};

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

/// Where the caret goes that is no motion of the text alone: marks, jumps, searches, the screen.
class VimEngine::Going final : public ExactPart {
public:
    using ExactPart::ExactPart;

    void go(VimExactMotion::Motion motion);
    void find(QStringView key, VimMotion::FindKind kind);
    void findAgain(bool isReversed);
    void toVisibleLine(VisibleLine line);
    void scrollHalf(qsizetype direction);
    void scrollPage(qsizetype direction, qsizetype count);
    void scrollRows(qsizetype rows);
    void reveal(std::optional<VimTextView::Edge> edge, bool toFirstNonBlank);
    /// By rows of the screen, of which a line that is wrapped has several.
    void goRows(qsizetype rows);
    enum class RowEdge { start, firstNonBlank, end };
    void toRowEdge(RowEdge edge);
    void toMark(char16_t name, bool isExact);
    void setMark(char16_t name);
    /// The one before, or of the tab with the count for its number.
    void toOtherText();
    void jump(bool isOlder, qsizetype count);
    void toChange(bool isOlder, qsizetype count);
    void search(const QString &typed, SearchDirection direction);
    void searchAgain(bool isReversed);
    void searchWord(SearchDirection direction, bool isWhole);
    /// To where the word is first named, which is not in a comment.
    enum class Scope { function, text };
    void toDeclaration(Scope scope);
    /// From where it is about to be left by a jump.
    void rememberJump();
    /// Before a text object is looked for, of which brackets are jumps.
    void rememberObject(char16_t key);

private:
    /// Where a search leads from a place in a text, if it does within so many units.
    using Route =
        std::function<std::optional<VimSearchMove>(const Rope &text, qsizetype from, const std::stop_token &stop, qsizetype most)>;
    void seek(qsizetype from, const VimSearch &search, const Route &route);
    void arriveAtHit(const VimSearchMove &move);
    void say(const QString &message);

    /// Lines of Control-D and Control-U; 0 for half of the screen.
    qsizetype m_scroll = 0;
    /// Where rows of the screen led, and what is kept for the next one.
    VimTextView::RowPlace m_row;
    struct LastFind {
        char32_t character;
        VimMotion::FindKind kind;
    };
    std::optional<LastFind> m_last;
};

/// The user's marks. Those of other texts are places of theirs.
class VimEngine::Marking final : public ExactPart, private VimFileMarks::Holder {
public:
    using ExactPart::ExactPart;
    ~Marking();
    Q_DISABLE_COPY_MOVE(Marking)

    /// From now on the text's other views have the same.
    void join();
    void set(char16_t name, qsizetype place);
    void remove(char16_t name);
    /// Has those of A–Z that are in this text, whoever set them, and no others.
    void update();
    [[nodiscard]] std::vector<VimFileMarks::Mark> elsewhere() const;
    /// To a mark in another text; false when there is no such mark.
    bool goElsewhere(char16_t name, bool isExact);

private:
    [[nodiscard]] std::optional<VimFileMarks::Place> heldMark(char16_t mark) const override;
    [[nodiscard]] QString heldText() const override;
    [[nodiscard]] VimMarks &heldMarks() override;
    void share(char16_t name);
    [[nodiscard]] VimFileMarks *shared() const;
};

/// What commands behind ":" do to the text, and the questions of those that ask.
class VimEngine::Commanding final : public ExactPart, public VimExTarget {
public:
    using ExactPart::ExactPart;

    /// False when it failed.
    bool run(const QString &typed);
    /// A command that a key stands for.
    void runFromKey(const QString &command);
    /// Of a key that in Vim runs another program.
    void refuseProgram(const QString &key);
    /// The last substitution once more, in the line or in all lines.
    void substituteAgain(bool inAllLines);
    /// A key that answers a question; false when none is asked.
    bool takeAnswer(const VimKeyEvent &event);
    /// What is replaced stays so, and the rest as it is.
    void endQuestions();
    [[nodiscard]] QString question() const { return m_confirmation ? m_confirmation->question() : QString(); }
    [[nodiscard]] std::optional<QString> lastReplacement() const { return m_substitution.replacement; }
    [[nodiscard]] std::optional<VimTypedSubstitution> typedSubstitution() const;

private:
    [[nodiscard]] const Rope &text() const override { return ExactPart::text(); }
    [[nodiscard]] VimLines::LastLine lastLine() const override;
    [[nodiscard]] qsizetype caret() const override { return ExactPart::caret(); }
    void moveCaret(qsizetype place) override;
    bool apply(const TextEdits &edits) override;
    void beginChange(std::optional<TextRange> taken) override;
    void beginUndoGroup() override;
    void endUndoGroup() override;
    void undo() override;
    void redo() override;
    [[nodiscard]] qsizetype undoSteps() const override;
    void noteChange(qsizetype place) override;
    void forgetLine() override;
    [[nodiscard]] VimTextName name() const override;
    [[nodiscard]] VimMarks &marks() override;
    void setMark(char16_t name, qsizetype place) override;
    void removeMark(char16_t name) override;
    [[nodiscard]] std::vector<VimFileMarks::Mark> marksElsewhere() const override;
    [[nodiscard]] VimPlaces &jumps() override;
    [[nodiscard]] VimPlaces &changes() override;
    [[nodiscard]] const VimRegisters &registers() const override;
    void keep(const VimRegisterContents &contents, std::optional<char16_t> name, VimRegisters::Taken taken) override;
    bool runNormal(const QString &keys, bool usesMappings) override;
    [[nodiscard]] VimRunning &running() override { return m_engine.m_view; }
    [[nodiscard]] std::optional<VimSearch> &lastSearch() override;
    [[nodiscard]] VimSubstituteMemory &lastSubstitution() override { return m_substitution; }
    [[nodiscard]] Indentation indentation() const override;
    [[nodiscard]] const VimOptions &options() const override;
    void hideHits() override;
    void say(const QString &message) override;
    void list(const QString &title, const QString &text) override;
    void perform(const Action &action, const QString &argument) override;
    bool substituteElsewhere(const VimSubstituteJob &job) override;
    bool confirm(const VimSubstituteJob &job) override;
    void ask();

    VimSubstituteMemory m_substitution;
    std::unique_ptr<VimSubstituteJob> m_job;
    std::unique_ptr<VimSubstituteConfirmation> m_confirmation;
};

class VimEngine::Exact final {
public:
    explicit Exact(VimEngine &owner);

    /// The range that a command line begins with: what was selected, or as many lines as the count says.
    [[nodiscard]] QString linesToCommand();
    /// Ends what waits for a key, else the mode.
    void escape();
    void enterCommandLine(const VimCommandLine &line);
    void followChange(const TextChange &change);
    /// What `~` stands for in a pattern.
    [[nodiscard]] std::optional<QString> lastSubstitute() const { return commanding.lastReplacement(); }
    [[nodiscard]] VimRegisterContents contents(std::optional<char16_t> name) const;
    void keep(VimRegisterContents contents, std::optional<char16_t> name, VimRegisters::Taken taken) const;
    /// Whether nothing of the text is to be kept when the program ends.
    [[nodiscard]] bool isPrivate() const;
    /// The line that ends with the last break is the last one again.
    void terminate() { m_isUnterminated = false; }
    /// What came into a text that was emptied, also if it is gone again when it `wasTyped`, gets the break at its end that the text had;
    /// whether it did. Part of the same change.
    bool restoreLastBreak(bool wasTyped = false);
    /// The same of what brought one of its own, which goes where the text `wasUnterminated`.
    void settleLastBreak(bool wasUnterminated);
    [[nodiscard]] bool isUnterminated() const { return m_isUnterminated; }
    /// Whether a text that is empty has a line nonetheless, which has nothing in it. It has none at first and when its lines were deleted.
    [[nodiscard]] bool hasEmptyLine() const { return m_hasEmptyLine && !m_isEmptied && engine.m_view.text().isEmpty(); }
    void setHasEmptyLine(bool hasEmptyLine) { m_hasEmptyLine = hasEmptyLine; }
    /// Something was put there, be it nothing.
    [[nodiscard]] bool isSet(std::optional<char16_t> name) const;
    /// After a step was undone: the marks that went with their lines are back, and what was selected before it.
    void restoreMarks();
    /// Of the step that was undone or redone last; null where nothing is known of it.
    [[nodiscard]] const VimStepCaret *replayedStep(VimStepCaret::Replay replay);

    VimEngine &engine;
    VimMarks marks;
    VimPlaces jumps{VimPlaces::Kind::jumps};
    VimPlaces changes{VimPlaces::Kind::changes};
    /// Cells, kept by `j` and `k` where it is not the caret's; `VimLines::endless` behind `$`.
    std::optional<qsizetype> column;
    /// Where the column was kept.
    qsizetype columnPlace = 0;
    QString lastCommandLine;

    Repeating repeating{*this};
    Inserting inserting{*this};
    Changing changing{*this};
    Operating operating{*this};
    Selecting selecting{*this};
    Going going{*this};
    Marking marking{*this};
    Commanding commanding{*this};

private:
    /// The last line has no break, so that there is a line behind the last break even where it is empty.
    bool m_isUnterminated = false;
    /// All of the text was deleted, with the break at its end.
    bool m_isEmptied = false;
    bool m_hasEmptyLine = false;
    enum class ChangedBy { others, keys };
    void rememberStep(const TextChange &change, ChangedBy by);
    /// A step of undo, the first of which is 1, with what there was before it.
    struct Step {
        qsizetype number = 0;
        VimMarks marks;
        std::optional<Selecting::Selected> selected;
        VimStepCaret caret;
        bool isUndone = false;
    };
    [[nodiscard]] Step *step(qsizetype number);
    /// The oldest first.
    std::deque<Step> m_steps;
};
