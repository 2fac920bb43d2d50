// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Editor/DeferredView.h"
#include "Editor/KeyRun.h"
#include "Editor/SearchPreview.h"
#include "Editor/SearchRunner.h"
#include "Editor/SubstitutionPreview.h"
#include "Vim/VimChords.h"
#include "Vim/VimEngine.h"

#include <functional>
#include <memory>

class CompletionPanel;
class EditorTextView;
class ForeignKeyboard;
class PendingKeysPanel;
class QInputMethodEvent;
class QKeyEvent;

/// The modal editing of one text view: what the view's keys are to the engine, and what the engine does to the view.
///
/// In normal and visual modes keys of a keyboard of another script are those in the same places of a US keyboard, so that nobody needs to
/// switch, dead keys are the signs that they stand for, and input methods are off, but for the character that `f`, `t` and `r` wait for.
/// Control chords that the engine has no use for, or that the user wants to have their other meaning, stay shortcuts. Main thread only.
class EditorVim final : private VimTextView, private VimEngineDelegate {
public:
    struct Callbacks {
        /// Mode, pending keys or command line are others.
        std::function<void()> stateChanged;
        /// A command line was entered.
        std::function<void(const QString &command)> runCommand;
        std::function<void(const QString &message)> say;
        std::function<void(const QString &title, const QString &text)> list;
        /// A command of the window, with what was written behind its name.
        std::function<void(const Action &action, const QString &argument)> performCommand;
        std::function<void(const VimSubstituteJob &job)> substitute;
    };

    /// All must outlive it.
    struct Services {
        CommandServices commands;
        VimRegisters &registers;
        ForeignKeyboard &keyboard;
        /// Null keeps none.
        VimHistory *history = nullptr;
        /// Null when nobody sets up modal editing.
        VimConfiguration *configuration = nullptr;
        /// Of what is typed for this text.
        std::function<VimHistory::Kept()> historyKept = {};
        /// Of the text.
        std::function<VimTextName()> name = {};
        /// Others that are open.
        std::function<std::vector<Rope>()> otherTexts = {};
    };

    /// `view` must outlive it.
    EditorVim(EditorTextView &view, const Services &services, const VimOptions &options, Callbacks callbacks);
    ~EditorVim();
    Q_DISABLE_COPY_MOVE(EditorVim)

    void setChords(const VimChords &chords) { m_chords = chords; }
    [[nodiscard]] VimEngine &engine() { return *m_engine; }
    [[nodiscard]] const VimEngine &engine() const { return *m_engine; }

    /// What an input method composes for the command line, or as the character that is waited for.
    [[nodiscard]] const QString &preedit() const { return m_preedit; }

    [[nodiscard]] bool wantsKey(const QKeyEvent &event) const;
    /// True when the key is done with.
    bool handleKey(const QKeyEvent &event);
    /// True when what an input method typed is done with.
    bool handleInputMethod(const QInputMethodEvent &event);
    /// What was typed takes effect where it was typed: no key follows those that wait for one of a mapping.
    void settleMapping();
    /// The view loses the keyboard, or something is undone in it: what is typed after that is another step of undo.
    void breakInsertSession();
    /// Stops what runs by itself, as a macro does, and says so unless a command of it has asked for that. Harmless when nothing does.
    void stop();
    /// Options are others.
    void configure(const VimOptions &options);
    /// The view has another selection. Only what is typed in insert mode goes to several carets; what was selected by others becomes the
    /// mode's, at once, or as soon as it is whole.
    void selectionChanged();
    /// It is, for instance because the pointer lets go.
    void takeSelection();

private:
    void keepOneCaret();
    [[nodiscard]] bool engineWants(const VimKeyEvent &key) const;
    [[nodiscard]] VimKeyEvent translated(const QKeyEvent &event) const;
    bool carryOut(std::function<bool()> keys);
    void keysDone(bool isStopped);
    void runEnteredCommand();
    void completeFiles();
    void updateInputMethod();
    void setPreedit(const QString &text);
    [[nodiscard]] bool takesCharacters() const;

    [[nodiscard]] const Rope &text() const override;
    [[nodiscard]] VimTextName name() const override;
    [[nodiscard]] TextRange selectedRange() const override;
    void select(TextRange range, qsizetype caret) override;
    void selectSeveral(const std::vector<TextRange> &ranges, size_t primary, std::optional<qsizetype> caret) override;
    bool apply(const TextEdits &edits) override;
    void insertText(const QString &text) override;
    void putText(const QString &text) override;
    void deleteBackward(VimDeletion what) override;
    void typeAgain(const QString &keys);
    void undo() override;
    void redo() override;
    [[nodiscard]] qsizetype undoSteps() const override;
    void beginUndoGroup() override;
    void endUndoGroup() override;
    [[nodiscard]] qsizetype visibleLineCount() const override;
    [[nodiscard]] TextRange visibleRange() const override;
    void centerSelection() override;
    void revealSelection() override;
    void revealAt(Edge edge) override;
    [[nodiscard]] std::optional<RowPlace> movedByRows(const RowPlace &from, qsizetype rows) const override;
    [[nodiscard]] TextRange rowAt(qsizetype place) const override;
    void scrollRows(qsizetype rows) override;
    void beginRun() override { m_text.begin(); }
    void endRun() override { m_text.end(); }
    void showRun() override { m_text.flush(); }
    [[nodiscard]] bool goesOn() override { return m_run.goesOn(); }
    [[nodiscard]] bool compute(const Computing &computing) override { return m_run.compute(computing); }
    void seek(std::function<Seeking()> prepare, std::function<void(TextRange hit)> arrive) override;
    void showIndicator(TextRange range) override;
    [[nodiscard]] Indentation indentation() const override;
    void toggleComment() override;
    void setCaretLook(VimCaret look) override;
    [[nodiscard]] std::vector<Rope> otherTexts() const override;
    void showOffer(const std::optional<VimOffer> &offer) override;
    void perform(const Action &action) override;
    void beep() override;

    void vimEngineRunsCommand(VimEngine &engine, const QString &command) override;
    void vimEngineSays(VimEngine &engine, const QString &message) override;
    void vimEngineLists(VimEngine &engine, const QString &title, const QString &text) override;
    void vimEnginePerforms(VimEngine &engine, const Action &action, const QString &argument) override;
    void vimEngineSubstitutes(VimEngine &engine, const VimSubstituteJob &job) override;
    void awaitMapping();
    void vimEngineDidChangeState(VimEngine &engine) override;

    EditorTextView &m_view;
    ForeignKeyboard &m_keyboard;
    Workers &m_workers;
    Callbacks m_callbacks;
    std::function<VimTextName()> m_name;
    std::function<std::vector<Rope>()> m_otherTexts;
    std::function<void()> m_beep;
    VimChords m_chords;
    /// Questions bring the view up to date, too.
    mutable DeferredView m_text;
    std::unique_ptr<VimEngine> m_engine;
    KeyRun m_run;
    /// What was said last while keys run: of hundreds of lines nobody could read it.
    QString m_lastSaid;
    int m_undoGroups = 0;
    /// Steps that could be undone when the outermost of these began.
    qsizetype m_stepsBefore = 0;
    SearchRunner m_search;
    SearchPreview m_preview;
    SubstitutionPreview m_substitution;
    std::unique_ptr<PendingKeysPanel> m_panel;
    /// Made when it is needed first.
    std::unique_ptr<CompletionPanel> m_completions;
    /// Looks for those that the command line awaits.
    BackgroundTask m_files;
    std::optional<QString> m_enteredCommand;
    struct EnteredAction {
        const Action *action;
        QString argument;
    };
    /// To be done when the engine is done with the key.
    std::vector<EnteredAction> m_enteredActions;
    Scheduler &m_scheduler;
    DelayedTask m_mappingTimeout;
    QString m_preedit;
    /// A dead key was taken as its sign; the space bar behind it would say just that.
    bool m_isAfterDeadKey = false;
    /// The engine selects, or handles a key.
    bool m_isOwn = false;
    bool m_isStoppedFromWithin = false;
    /// Something else is about to happen, and commands are to wait for its end.
    bool m_isSettling = false;
    /// What somebody else did to the selection, to be taken before the next key at the latest.
    enum class Foreign { nothing, moved, edited };
    Foreign m_foreign = Foreign::nothing;
    quint64 m_revision = 0;
    /// For calls that are not to come when this is gone.
    QObject m_context;
};
