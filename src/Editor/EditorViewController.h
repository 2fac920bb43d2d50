// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Base/EntryHistory.h"
#include "Base/NotificationCenter.h"
#include "Commands/Responder.h"
#include "Editor/EditorTextView.h"
#include "Find/OccurrenceSelector.h"
#include "Text/LineNumber.h"

#include "Vim/VimExCommands.h"

#include <QWidget>

#include <memory>
#include <vector>

class AlertPresenter;
class ChangeNavigator;
class CharacterSet;
class ConflictNavigator;
class DocumentStore;
class BracketMarker;
class EditorExCommands;
class EditorVim;
class ExternalChangeBanner;
class FileMemory;
class FindBar;
class FindState;
class ForeignKeyboard;
class LineCommands;
class Preferences;
class QVBoxLayout;
class SpellChecker;
class OccurrenceMarker;
class SpellingController;
class SpellingPanel;
class SubstitutionRunner;
class TextCounter;
class TextDocument;
class TextFinder;
class VimConfiguration;
class VimHistory;
class VimRegisters;
class Workers;

/// What editors use; must outlive them.
struct EditorServices {
    Scheduler &scheduler;
    NotificationCenter &notifications;
    Preferences &preferences;
    Pasteboard &pasteboard;
    AlertPresenter &presenter;
    DocumentStore &documents;
    Workers &workers;
    FindState &find;
    VimRegisters &registers;
    ForeignKeyboard &keyboard;
    /// Both or none: without them no spelling is checked.
    SpellChecker *spellChecker = nullptr;
    SpellingPanel *spellingPanel = nullptr;
    /// None when nothing is to be kept of single files.
    FileMemory *fileMemory = nullptr;
    /// None keeps no history of command lines.
    VimHistory *vimHistory = nullptr;
    /// None when nobody sets up modal editing.
    VimConfiguration *vimConfiguration = nullptr;

    /// The sound for a command that cannot do its work.
    [[nodiscard]] std::function<void()> beep() const;
};

/// One editor for one document: the text with its line numbers, a banner when others changed the file, and everything set as the
/// preferences and the document's language want. Several editors may show a document; they share its text, colours and history, each has
/// its own layout, caret and scroll position. Only what is seen, and half a view around it, is coloured. Main thread only.
class EditorViewController final : public QWidget, public Responder {
    Q_OBJECT

public:
    /// Between the last scrolling or typing and the colouring of what came into view.
    static constexpr Scheduler::Milliseconds highlightDelay{50};

    /// Begins where the document was left, and keeps it alive.
    EditorViewController(const EditorServices &services, TextDocument &document, QWidget *parent = nullptr);
    ~EditorViewController() override;

    [[nodiscard]] TextDocument &document() { return *m_document; }
    [[nodiscard]] EditorTextView &textView() { return *m_textView; }
    /// Null while nothing is to be said of the file.
    [[nodiscard]] QWidget *banner() const;

    /// Puts the caret at the start of a line, and shows where that is; clamped to the lines there are.
    void scrollToLine(LineNumber line);
    /// Has the document remember caret and scroll position for the next editor of it.
    void saveViewState();
    /// Scrolls to the caret as soon as the view has the size that it is about to get.
    void revealCaretSoon();
    /// Null while modal editing is off.
    [[nodiscard]] EditorVim *vim() { return m_vim.get(); }
    [[nodiscard]] LineCommands &lineCommands() { return *m_lineCommands; }
    [[nodiscard]] EditorExCommands &exCommands() { return *m_exCommands; }
    [[nodiscard]] TextCounter &counter() { return *m_counter; }
    [[nodiscard]] ChangeNavigator &changes() { return *m_changes; }
    /// Null where no spelling is checked.
    [[nodiscard]] SpellingController *spelling() { return m_spelling.get(); }
    /// The text is spelled by these from now on, in all its views and when its file is opened again; none for those that its words tell.
    void chooseDictionaries(const QStringList &names);

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

signals:
    /// Its text got the focus or was clicked.
    void activated();
    /// Its selection, its indentation or the state of its modal editing is another.
    void stateChanged();
    /// Something to be said for so long.
    void messageShown(const QString &message, Scheduler::Milliseconds duration);
    /// Absolute paths of files that exist.
    void filesDropped(const QStringList &paths);

private:
    [[nodiscard]] CommandServices commandServices();
    /// Whether what is typed to search and command this text is for the next run.
    [[nodiscard]] EntryHistory::Kept historyKept() const;
    void observe();
    void retranslate();
    void performTextFinderAction(const ActionSender &sender);
    void goToMatchingBracket();
    void selectEnclosingBrackets();
    void goToNextOccurrence();
    [[nodiscard]] ActionState textFinderActionState(const ActionSender &sender) const;
    void clearFindHistory();
    [[nodiscard]] bool hasFindHistory() const;
    void selectNextOccurrence() { m_occurrences.selectNext(); }
    void skipOccurrence() { m_occurrences.skip(); }
    void selectAllOccurrences() { m_occurrences.selectAll(); }
    void applyPreferences();
    void applyTheme();
    void followCaret();
    void applyConventions();
    void reportProblem();
    void applyLineNumbers();
    void applyVimMode();
    /// Those that are open.
    [[nodiscard]] std::vector<Rope> otherTexts() const;
    void adoptLanguage();
    void markMissingCharacters();
    void restoreViewState();
    void applyAccess();

    void highlightVisibleRange();
    void scheduleVisibleHighlight();

    void updateBanner();
    void updateAwaitedBanner();
    void updateSuggestionBanner();
    void performHere(const Action &action);
    [[nodiscard]] ExternalChangeBanner *makeBanner();
    void dropBanner(ExternalChangeBanner *&banner);
    void reload();
    void saveAgain();

    void insertFile(const ActionSender &sender);
    void sourceFile(const ActionSender &sender);

    void goToNextChange();
    void goToPreviousChange();
    void showChange();
    [[nodiscard]] bool hasChanges() const;
    void goToNextConflict();
    void goToPreviousConflict();
    [[nodiscard]] bool hasConflicts() const;

    void makeSpelling();
    void adoptDictionaries();
    void keepSpelling();
    void toggleSpelling();
    [[nodiscard]] ActionState spellingState() const;
    void checkSpelling();
    [[nodiscard]] bool canCheckSpelling() const;
    void showSpellingPanel();
    [[nodiscard]] bool hasSpelling() const { return m_spelling != nullptr; }

    EditorServices m_services;
    std::shared_ptr<TextDocument> m_document;
    QVBoxLayout *m_stack;
    EditorTextView *m_textView;
    ExternalChangeBanner *m_banner = nullptr;
    /// While a program waits for the document.
    ExternalChangeBanner *m_awaitedBanner = nullptr;
    /// While the text looks like one in another encoding.
    ExternalChangeBanner *m_suggestionBanner = nullptr;
    TextFinder *m_finder;
    /// None until something is to be found.
    FindBar *m_findBar = nullptr;
    OccurrenceSelector m_occurrences;
    TextCounter *m_counter;
    BracketMarker *m_brackets;
    OccurrenceMarker *m_wordMarks;
    ConflictNavigator *m_conflicts;
    std::unique_ptr<ChangeNavigator> m_changes;
    std::unique_ptr<SpellingController> m_spelling;
    /// The file that it was last kept for.
    QString m_spellingPath;
    std::unique_ptr<EditorVim> m_vim;
    std::unique_ptr<EditorExCommands> m_exCommands;
    std::unique_ptr<LineCommands> m_lineCommands;
    /// What of the text is underlined, null for nothing.
    const CharacterSet *m_characters = nullptr;
    /// The user's place is still to be shown, in a text that has not come.
    bool m_awaitsText = false;
    DelayedTask m_visibleHighlightWork;
    DelayedTask m_scrolling;
    DelayedTask m_reporting;
    /// As it is shown.
    std::optional<int> m_rulerColumn;
    std::vector<NotificationCenter::Token> m_observers;
};
