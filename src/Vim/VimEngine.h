// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineNumber.h"
#include "Vim/VimCommandLine.h"
#include "Vim/VimDigraphs.h"
#include "Vim/VimHistory.h"
#include "Vim/VimKeyHelp.h"
#include "Vim/VimKeymap.h"
#include "Vim/VimMotion.h"
#include "Vim/VimOptions.h"
#include "Vim/VimRegisters.h"
#include "Vim/VimSearch.h"
#include "Vim/VimTextObject.h"
#include "Vim/VimTextView.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <variant>

class VimConfiguration;
class VimEngine;
struct VimSubstituteJob;
struct VimTypedSubstitution;

/// What an engine notifies the editor that has it of.
class VimEngineDelegate {
public:
    /// A command line was entered; without its ":".
    virtual void vimEngineRunsCommand(VimEngine &engine, const QString &command) = 0;
    /// In the language of the interface.
    virtual void vimEngineSays(VimEngine &engine, const QString &message) = 0;
    /// Several lines, to be read at leisure; in the language of the interface.
    virtual void vimEngineLists(VimEngine &engine, const QString &title, const QString &text) = 0;
    /// A command of the window that was entered behind ":", with what was written behind its name. It may be the end of the engine, and so
    /// has to wait till that is done with the key.
    virtual void vimEnginePerforms(VimEngine &engine, const Action &action, const QString &argument) = 0;
    /// A substitution in so large a text that it is to be looked for on a worker.
    virtual void vimEngineSubstitutes(VimEngine &engine, const VimSubstituteJob &job) = 0;
    /// Mode, pending keys or command line are others.
    virtual void vimEngineDidChangeState(VimEngine &engine) = 0;

protected:
    ~VimEngineDelegate() = default;
};

/// Turns keys into modal editing of one text view. It reads and changes the text through that view alone, so undo, colours and other views
/// follow. The caret is the moving end of a visual selection, else where the view's selection begins; every position is in UTF-16 units.
///
/// A command is what was typed since the last reset: count, register, operator, its count, motion or object. Whatever ends it, done or
/// cancelled, ends in resetPending(), which also keeps the keys of one that changed the text, for ".". Marks are plain offsets.
/// Main thread only.
class VimEngine final {
public:
    enum class Mode { normal, insert, visual, visualLine, commandLine, visualBlock };
    enum class OperatorKind {
        remove,
        change,
        yank,
        indent,
        outdent,
        lowercase,
        uppercase,
        toggleCase,
        toggleComment,
        rotate,
        format,
        formatInPlace,
        filter,
    };

    /// All must outlive the engine.
    VimEngine(VimTextView &view, VimEngineDelegate &delegate, VimRegisters &registers, const VimOptions &options);
    ~VimEngine();
    Q_DISABLE_COPY_MOVE(VimEngine)

    /// True when the key is done with; false leaves it to the view.
    bool handle(const VimKeyEvent &event);
    /// Whether handle() has a use for a key, which otherwise is a shortcut's.
    [[nodiscard]] bool wants(const VimKeyEvent &event) const;

    /// The next key goes on with what was begun, chord or not.
    [[nodiscard]] bool awaitsChord() const;

    [[nodiscard]] Mode mode() const { return m_mode; }
    /// The next key is taken as the character that it types, composed or of any script, rather than as a command.
    [[nodiscard]] bool awaitsCharacter() const;
    [[nodiscard]] bool takesText() const { return m_mode == Mode::insert || m_mode == Mode::commandLine; }
    /// Of a key map's, else of a command's keys so far.
    [[nodiscard]] QString pendingDescription() const;
    /// What may follow the keys of mappings so far.
    [[nodiscard]] std::vector<VimKeymap::Mapping> continuations() const { return m_keymap.continuations(table()); }
    [[nodiscard]] const VimCommandLine &commandLine() const { return m_commandLine; }
    /// What the command line recalls, and whether it keeps lines of this text; must outlive the engine.
    void setHistory(VimHistory &history, std::function<VimHistory::Kept()> kept) { m_history = &history, m_historyKept = std::move(kept); }
    /// Those that the command line awaits.
    void completeFiles(const QStringList &names);
    /// What the substitution that is typed behind ":" would do, in exact modal editing; none while there is nothing of it to be shown.
    [[nodiscard]] std::optional<VimTypedSubstitution> typedSubstitution() const;
    /// None before the first search.
    [[nodiscard]] const std::optional<VimSearch> &lastSearch() const { return m_lastSearch; }
    /// Whether its hits are to be marked, if they are to be at all: not from hideHits() on till the next search.
    [[nodiscard]] bool showsHits() const { return m_showsHits; }
    void hideHits();
    /// Where the search that is typed begins instead of at the caret; none takes it back.
    void setSearchOrigin(std::optional<qsizetype> place) { m_searchOrigin = place; }

    void configure(const VimOptions &options);
    /// Where exact modal editing has its mappings and sets what it sets; it must outlive the engine. Without it commands behind ":" are the
    /// default ones.
    void setConfiguration(VimConfiguration *configuration);
    /// The user's mapping that waits for its next key has waited long enough.
    void expireMapping();
    /// No key follows those that wait for one of a mapping of the user: they are now what they are without it.
    void settleMapping();
    [[nodiscard]] bool awaitsMapping() const { return m_exact && m_keymap.isWaiting(); }
    /// The text was read from its file anew, and nothing of before can be brought back.
    void textReloaded();
    /// Keys or commands are being carried out.
    [[nodiscard]] bool isBusy() const { return m_isHandling; }
    [[nodiscard]] const VimOptions &options() const { return m_options; }
    /// What Escape does.
    void leaveToNormal();
    /// Something else moved the caret or changed the text: puts it on a character.
    void settleCaret();
    /// Something else selects another text: that is what the visual mode has from now on, and a caret alone ends it. In the modes that
    /// take text the view has it.
    void takeSelection(TextSelection selection);
    /// An input method typed `text` while in insert mode.
    void noteInsertedText(const QString &text);
    /// The text of the view is another, whoever changed it.
    void textChanged(const TextChange &change);
    /// Carries out keys as text (VimKeys); false when one failed, and the rest was dropped.
    bool run(const QString &keys);
    /// The name of the register that a macro is being recorded into.
    [[nodiscard]] std::optional<char16_t> recording() const;
    [[nodiscard]] bool isReplacing() const;
    /// What is asked about a hit of `:s`, until it is answered; empty when nothing is.
    [[nodiscard]] QString question() const;
    /// Both ends of what a visual mode selects, which it has both.
    [[nodiscard]] TextSelection visualEnds() const { return {m_visualAnchor, m_visualHead}; }
    /// The changes of an insert session are one step of undo, until the view loses the keyboard, the caret is moved, or somebody undoes
    /// in between.
    void pauseInsertSession();
    void resumeInsertSession();

    void toggleCommentFromKeymap();
    void moveLinesDown() { moveLines(1); }
    void moveLinesUp() { moveLines(-1); }

    /// What there is to say about its keys, without those of key maps; in exact modal editing its own come first.
    [[nodiscard]] static VimKeyHelpEntries keyHelp(const VimOptions &options);
    /// The Control chords that it has a use for, without those of key maps.
    [[nodiscard]] static std::vector<VimChordUse> controlChords(const VimOptions &options);

private:
    /// Units. What one key puts into the text is not more: it would come from a mistyped count.
    static constexpr qsizetype longestInsertion = qsizetype(16) << 20;

    enum class Awaiting {
        findCharacter,
        gotoMark,
        textObject,
        replaceCharacter,
        setMark,
        registerName,
        insertedRegister,
        gPrefix,
        zPrefix,
        windowPrefix,
        // Of exact modal editing alone.
        openBracketPrefix,
        closeBracketPrefix,
        capitalZPrefix,
        recordedRegister,
        macroRegister,
        literal,
    };
    struct Awaited {
        Awaiting what = Awaiting::gPrefix;
        VimMotion::FindKind find = VimMotion::FindKind::forwardTo;
        /// Of a mark: its place rather than its line. Of a register: its characters rather than its keys.
        bool isExact = false;
        VimTextObject::Extent extent = VimTextObject::Extent::inner;
        /// Behind Ctrl+K: two characters stand for the one that is awaited.
        std::optional<VimDigraph> digraph = std::nullopt;

        [[nodiscard]] bool mayBeDigraph() const
        {
            return !digraph && (what == Awaiting::findCharacter || what == Awaiting::replaceCharacter);
        }
    };
    enum class Span { characters, lines };
    /// How much an operator of a visual mode took: so many lines or, of the last one, units from the start of what was taken in it.
    struct Extent {
        Mode mode = Mode::visual;
        qsizetype lines = 1;
        qsizetype units = 0;
        /// To the ends of lines.
        bool isEndless = false;
    };
    enum class Keep { nothing, desiredColumn };
    enum class Side { before, after };
    using SearchDirection = VimSearch::Direction;
    enum class VisibleLine { first, middle, last };
    /// Where a key may come: where commands begin, with Control, behind another one, in whatever mode, or with Control in insert mode.
    enum class KeyPlace {
        plain,
        withControl,
        afterG,
        afterZ,
        afterWindow,
        anyMode,
        whileInserting,
        // Of exact modal editing alone.
        afterOpenBracket,
        afterCloseBracket,
        afterCapitalZ,
        withGAndControl,
    };
    struct KeyRow;
    struct NavigationRow;
    class Part;
    class Moving;
    class Editing;
    class Exact;
    class ExactPart;
    class Repeating;
    class Inserting;
    class Changing;
    class Operating;
    class Selecting;
    class Going;
    class Marking;
    class Commanding;

    // Keys
    /// Then changes of the text become a step, and news is told.
    bool carryOut(const std::function<bool()> &keys);
    bool handleKey(const VimKeyEvent &event);
    bool takeOutcome(const VimKeymap::Outcome &outcome, const VimKeyEvent &event);
    /// Where there are mappings of the user.
    void takeExactly(const VimKeymap::Outcome &outcome);
    /// None follow those that wait for a mapping.
    void releaseKeys();
    void feed(const VimKeymap::Fed &fed);
    void handleStrokes(const VimKeymap::Passthrough &strokes);
    bool handleInsert(const VimKeyEvent &event);
    /// Whether so many units may come into the text at once; says so if not.
    bool mayInsert(qsizetype length, qsizetype count);
    bool mayPaste(const VimRegisterContents &contents, qsizetype count);
    void handleCommandLine(const VimKeyEvent &event);
    void rememberCommandLine();
    void leaveCommandLine();
    void handleStroke(const VimKeyStroke &stroke, QStringView key);
    void handleControl(char16_t key);
    /// `key` is one character, of one unit or more.
    void handleNormal(QStringView key);
    void noteKey(QStringView key);
    void failKey();
    bool takeDigit(char16_t key);
    [[nodiscard]] static std::span<const KeyRow> keys();
    /// Those that are exactly Vim's, which go before the others where that is wanted.
    [[nodiscard]] static std::span<const KeyRow> exactKeys();
    /// Null when there is no such key, or it makes no sense now.
    [[nodiscard]] const KeyRow *row(KeyPlace place, char16_t key) const;
    bool takeKey(KeyPlace place, char16_t key);
    bool takeOperator(OperatorKind kind);
    [[nodiscard]] static bool isKeyOf(OperatorKind kind, char16_t key);
    void awaitWindowKey();
    [[nodiscard]] bool awaitsWindowKey() const;
    void perform(const VimKeymapAction &action);
    void complete(const Awaited &awaited, QStringView key);
    bool completeExactly(const Awaited &awaited, QStringView key);
    void takeObject(VimTextObject::Extent extent, char16_t key);

    // State
    void notify();
    void setMode(Mode mode);
    void clearPending();
    void resetPending();
    [[nodiscard]] qsizetype effectiveCount() const;
    [[nodiscard]] bool hasCount() const { return !m_countBuffer.isEmpty() || !m_operatorCountBuffer.isEmpty(); }
    [[nodiscard]] VimKeymap::Table table() const;
    [[nodiscard]] bool isVisual() const { return m_mode == Mode::visual || m_mode == Mode::visualLine || m_mode == Mode::visualBlock; }
    [[nodiscard]] VimBuffer buffer() const { return VimBuffer(m_view.text()); }
    [[nodiscard]] qsizetype caret() const;
    void moveCaret(qsizetype target, Keep keep = Keep::nothing);
    void enterVisual(Mode mode);
    void toggleVisual(Mode mode);
    void updateVisualSelection(qsizetype head);

    // Motions
    enum class Unmoved { fails, succeeds };
    [[nodiscard]] TextRange linewiseRange(qsizetype from, qsizetype to) const;

    // Operators and commands
    bool edit(const TextEdits &edits);
    bool edit(TextRange range, const Rope &text);
    void moveLines(int by);

    // Command line and search
    void beginCommandLine(char16_t prefix);

    VimTextView &m_view;
    VimEngineDelegate &m_delegate;
    VimRegisters &m_registers;
    VimOptions m_options;
    VimKeymap m_keymap;

    Mode m_mode = Mode::normal;
    /// As typed since the last reset.
    QString m_pendingKeys;
    VimCommandLine m_commandLine;
    VimConfiguration *m_configuration = nullptr;
    VimHistory *m_history = nullptr;
    std::function<VimHistory::Kept()> m_historyKept;
    /// Whether nothing of the text is to be kept when the program ends.
    [[nodiscard]] bool isPrivate() const { return m_historyKept && m_historyKept() == VimHistory::Kept::whileRunning; }
    std::optional<qsizetype> m_searchOrigin;
    bool m_showsHits = true;
    /// Where a search's command line leads back to.
    Mode m_modeBefore = Mode::normal;
    QString m_countBuffer;
    QString m_operatorCountBuffer;
    std::optional<OperatorKind> m_pendingOperator;
    std::optional<char16_t> m_pendingRegister;
    std::optional<Awaited> m_awaiting;
    qsizetype m_visualAnchor = 0;
    qsizetype m_visualHead = 0;
    /// Units from the start of the line, for `j` and `k`; of the caret itself when that was moved by others than the engine.
    qsizetype m_desiredColumn = 0;
    qsizetype m_lastPlace = 0;
    /// What was selected last.
    std::optional<Extent> m_visualExtent;

    std::optional<VimSearch> m_lastSearch;

    // By default; with exact modal editing the latter decides.
    std::unique_ptr<Moving> m_moving;
    std::unique_ptr<Editing> m_editing;
    /// Only with exact modal editing.
    std::unique_ptr<Exact> m_exact;

    // For ".".
    /// Of the operator that is being carried out.
    std::optional<Extent> m_extent;
    bool m_changedBuffer = false;
    /// Keys may be those of the user's mappings.
    bool m_usesMappings = true;
    /// How many mappings have led to each other.
    int m_mappingDepth = 0;
    bool m_isInUndoGroup = false;
    /// What is to be reported while a key is handled is reported once, at its end.
    bool m_isHandling = false;
    bool m_hasNews = false;
};

/// As the status bar names it.
[[nodiscard]] QString displayName(VimEngine::Mode mode);
