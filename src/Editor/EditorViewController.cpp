// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/EditorViewController.h"

#include "Base/FilePath.h"
#include "Base/Localization.h"
#include "Commands/Actions.h"
#include "Editor/AutoPairs.h"
#include "Editor/BracketMarker.h"
#include "Editor/ChangeNavigator.h"
#include "Editor/ConflictNavigator.h"
#include "Editor/EditorExCommands.h"
#include "Editor/EditorFont.h"
#include "Editor/EditorVim.h"
#include "Editor/ExternalChangeBanner.h"
#include "Editor/LineCommands.h"
#include "Editor/LineNumberRulerView.h"
#include "Editor/OccurrenceMarker.h"
#include "Editor/SpellingController.h"
#include "Editor/SpellingPanel.h"
#include "Editor/TextCounter.h"
#include "Files/CharacterSet.h"
#include "Files/TextFile.h"
#include "Find/FindBar.h"
#include "Find/FindState.h"
#include "Find/TextFinder.h"
#include "Model/DocumentStore.h"
#include "Model/FileMemory.h"
#include "Settings/Preferences.h"
#include "Spelling/SpellChecker.h"
#include "Text/LineIndex.h"
#include "Text/LineRange.h"
#include "Vim/VimConfiguration.h"
#include "Widgets/AccessibleRole.h"
#include "Widgets/AlertPresenter.h"

#include <QJsonArray>
#include <QMenu>
#include <QVBoxLayout>

#include <array>
#include <cerrno>

namespace {

constexpr QSize startSize(800, 600);
constexpr Scheduler::Milliseconds messageTime{5000};

} // namespace

std::function<void()> EditorServices::beep() const
{
    return [&presenter = presenter] { presenter.beep(); };
}

EditorViewController::EditorViewController(const EditorServices &services, TextDocument &document, QWidget *parent)
    : QWidget(parent), m_services(services), m_document(document.shared_from_this()), m_stack(new QVBoxLayout(this)),
      m_textView(new EditorTextView(document.storage(), document.undoManager(), {services.scheduler, services.pasteboard, services.beep()},
                                    editorFont(services.preferences), this)),
      m_finder(new TextFinder(*m_textView, {commandServices(), services.find, [this] { return historyKept(); }}, this)),
      m_occurrences(*m_textView, commandServices()), m_counter(new TextCounter(*m_textView, {services.scheduler, services.workers}, this)),
      m_brackets(new BracketMarker(*m_textView, document, commandServices())),
      m_wordMarks(new OccurrenceMarker(*m_textView, services.scheduler, services.workers)),
      m_conflicts(new ConflictNavigator(*m_textView, commandServices())),
      m_changes(std::make_unique<ChangeNavigator>(
          *m_textView, document,
          ChangeNavigator::Services{
              {services.scheduler, services.workers, services.notifications, services.preferences}, services.pasteboard, services.beep()}))
{
    setAccessibleRole(*this, QAccessible::Grouping);
    resize(startSize);
    m_stack->setContentsMargins({});
    m_stack->setSpacing(0);
    m_stack->addWidget(m_textView, 1);
    applyAccess();
    m_awaitsText = m_document->arrival().isPending();
    m_textView->setLanguage(document.language());
    setFocusProxy(m_textView);
    m_lineCommands = std::make_unique<LineCommands>(*m_textView, commandServices(), this);
    m_exCommands = std::make_unique<EditorExCommands>(*this, m_services, commandServices());
    connect(m_lineCommands.get(), &LineCommands::converted, this, [this](Indentation::Unit unit) {
        Indentation indentation = m_textView->indentation();
        indentation.unit = unit;
        m_document->conventions.choose(indentation);
    });
    makeSpelling();
    markMissingCharacters();
    applyPreferences();
    observe();
    restoreViewState();
    updateBanner();
    highlightVisibleRange();
    // Nobody listens yet.
    m_reporting = services.scheduler.after(Scheduler::Milliseconds(0), [this] { reportProblem(); });
}

CommandServices EditorViewController::commandServices()
{
    return {m_services.scheduler, m_services.workers, m_services.beep(),
            [this](const QString &message, Scheduler::Milliseconds duration) { emit messageShown(message, duration); }};
}

EditorViewController::~EditorViewController()
{
    // The view may still report losing the focus while it goes.
    m_textView->disconnect(this);
    blockSignals(true);
    m_exCommands.reset();
    m_lineCommands.reset();
    m_vim.reset();
    m_spelling.reset();
    m_changes.reset();
    delete m_textView;
}

const ActionRow *EditorViewController::actionFor(const Action &wanted) const
{
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&EditorViewController::performTextFinderAction, &EditorViewController::textFinderActionState>(Actions::find),
        action<&EditorViewController::clearFindHistory, &EditorViewController::hasFindHistory>(Actions::clearFindHistory),
        action<&EditorViewController::selectNextOccurrence>(Actions::selectNextOccurrence),
        action<&EditorViewController::skipOccurrence>(Actions::skipOccurrence),
        action<&EditorViewController::selectAllOccurrences>(Actions::selectAllOccurrences),
        action<&EditorViewController::goToMatchingBracket>(Actions::goToMatchingBracket),
        action<&EditorViewController::selectEnclosingBrackets>(Actions::selectEnclosingBrackets),
        action<&EditorViewController::goToNextOccurrence>(Actions::goToNextOccurrence),
        action<&EditorViewController::goToNextChange, &EditorViewController::hasChanges>(Actions::goToNextChange),
        action<&EditorViewController::goToPreviousChange, &EditorViewController::hasChanges>(Actions::goToPreviousChange),
        action<&EditorViewController::showChange, &EditorViewController::hasChanges>(Actions::showChange),
        action<&EditorViewController::goToNextConflict, &EditorViewController::hasConflicts>(Actions::goToNextConflict),
        action<&EditorViewController::goToPreviousConflict, &EditorViewController::hasConflicts>(Actions::goToPreviousConflict),
        action<&EditorViewController::toggleSpelling, &EditorViewController::spellingState>(Actions::toggleContinuousSpellChecking),
        action<&EditorViewController::checkSpelling, &EditorViewController::canCheckSpelling>(Actions::checkSpelling),
        action<&EditorViewController::showSpellingPanel, &EditorViewController::hasSpelling>(Actions::showGuessPanel),
        action<&EditorViewController::insertFile>(Actions::insertFile),
        action<&EditorViewController::sourceFile>(Actions::sourceFile),
    });
    return findAction(rows, wanted);
}

void EditorViewController::goToNextConflict()
{
    m_conflicts->goToNext();
}

void EditorViewController::goToPreviousConflict()
{
    m_conflicts->goToPrevious();
}

bool EditorViewController::hasConflicts() const
{
    return m_conflicts->hasConflicts();
}

void EditorViewController::goToMatchingBracket()
{
    m_brackets->goToMatch();
}

void EditorViewController::selectEnclosingBrackets()
{
    m_brackets->selectEnclosing();
}

void EditorViewController::goToNextOccurrence()
{
    m_occurrences.goToNext(m_wordMarks->word());
}

void EditorViewController::performTextFinderAction(const ActionSender &sender)
{
    if (!m_findBar) {
        m_findBar = new FindBar(*m_finder, m_services.scheduler, this);
        m_stack->insertWidget(m_stack->indexOf(m_textView), m_findBar);
        m_findBar->comeAfter(*m_textView);
    }
    m_findBar->performTextFinderAction(sender);
}

ActionState EditorViewController::textFinderActionState(const ActionSender &sender) const
{
    return FindBar::textFinderActionState(*m_finder, sender);
}

EntryHistory::Kept EditorViewController::historyKept() const
{
    return m_document->file().isPrivate() ? EntryHistory::Kept::whileRunning : EntryHistory::Kept::forNextRun;
}

void EditorViewController::clearFindHistory()
{
    m_services.find.history().clear();
    if (m_services.vimHistory) {
        m_services.vimHistory->clear();
    }
}

bool EditorViewController::hasFindHistory() const
{
    return !m_services.find.history().isEmpty() || (m_services.vimHistory && !m_services.vimHistory->isEmpty());
}

void EditorViewController::goToNextChange()
{
    m_changes->goToNext();
    m_exCommands->settleCaret();
}

void EditorViewController::goToPreviousChange()
{
    m_changes->goToPrevious();
    m_exCommands->settleCaret();
}

void EditorViewController::showChange()
{
    m_changes->showChange();
}

bool EditorViewController::hasChanges() const
{
    return m_changes->hasChanges();
}

void EditorViewController::retranslate()
{
    if (m_findBar) {
        m_findBar->retranslate();
    }
    updateBanner();
    if (m_services.spellingPanel) {
        m_services.spellingPanel->retranslate();
    }
}

void EditorViewController::observe()
{
    connect(m_textView, &TextView::visibleRowsChanged, this, &EditorViewController::scheduleVisibleHighlight);
    connect(m_textView, &TextView::selectionChanged, this, &EditorViewController::stateChanged);
    connect(m_finder, &TextFinder::allHitsWanted, this, [this] {
        m_textView->setFocus();
        m_occurrences.selectAllHits(m_finder->query());
    });
    connect(m_textView, &EditorTextView::typingModeChanged, this, &EditorViewController::stateChanged);
    connect(m_textView, &EditorTextView::filesDropped, this, &EditorViewController::filesDropped);
    connect(m_textView, &EditorTextView::activated, this, [this] {
        if (m_spelling) {
            m_services.spellingPanel->follow(*m_spelling);
        }
        if (!m_document->arrival().isPending()) {
            m_document->conventions.refresh();
        }
        emit activated();
    });
    connect(m_textView, &TextView::zoomRequested, this, [this](int steps) {
        m_services.preferences.set(Settings::fontSize, m_services.preferences.value(Settings::fontSize) + steps);
    });
    const auto observe = [this](NotificationName name, const void *object, std::function<void()> reaction) {
        m_observers.push_back(m_services.notifications.observe(name, object, std::move(reaction)));
    };
    observe(Preferences::didChange, nullptr, [this] { applyPreferences(); });
    connect(&m_services.documents, &DocumentStore::themeChanged, this, &EditorViewController::applyTheme);
    observe(TextDocument::didChangeMetadata, m_document.get(), [this] {
        applyAccess();
        adoptLanguage();
        applyConventions();
        reportProblem();
        adoptDictionaries();
        if (m_spellingPath != m_document->path()) {
            keepSpelling();
        }
        markMissingCharacters();
        updateBanner();
    });
    observe(Localization::didChangeNotification, nullptr, [this] { retranslate(); });
    observe(TextDocument::didDetectExternalChange, m_document.get(), [this] { updateBanner(); });
    observe(TextDocument::didReloadFromDisk, m_document.get(), [this] {
        applyAccess();
        if (std::exchange(m_awaitsText, false)) {
            restoreViewState();
        }
        followCaret();
        if (m_vim) {
            m_vim->engine().textReloaded();
        }
        m_textView->ruler().update();
        highlightVisibleRange();
        updateBanner();
    });
    if (m_document->highlighter()) {
        observe(SyntaxHighlighter::needsVisibleRefresh, m_document->highlighter(), [this] { scheduleVisibleHighlight(); });
    }
}

/// A log goes on under the eyes of whoever has the caret at its end; a caret that was seen is seen.
void EditorViewController::followCaret()
{
    const auto end = m_document->endBeforeReload();
    if (end && m_textView->selection().range() == TextRange{*end, 0}) {
        m_textView->setSelection(TextSelection::at(m_document->storage().length()), TextView::Reveal::nearest);
    } else if (m_textView->caret().wasSeen) {
        m_textView->revealCaret();
    }
}

// Preferences

void EditorViewController::applyPreferences()
{
    const Preferences &preferences = m_services.preferences;
    applyTheme();
    const QFont font = editorFont(preferences);
    if (m_textView->textFont() != font) {
        m_textView->setTextFont(font);
        m_textView->ruler().setEditorFont(font);
    }
    applyConventions();
    m_textView->setAutoIndent(preferences.value(Settings::autoIndent) ? EditorTextView::AutoIndent::on : EditorTextView::AutoIndent::off);
    m_textView->setBareCopy(preferences.value(Settings::copyLineWithoutSelection) ? EditorTextView::BareCopy::line
                                                                                  : EditorTextView::BareCopy::nothing);
    if (preferences.value(Settings::autoPairs) != (m_textView->autoPairs() != nullptr)) {
        m_textView->setAutoPairs(preferences.value(Settings::autoPairs)
                                     ? std::make_unique<AutoPairs>(*m_textView, scopesOf(m_document->highlighter()))
                                     : nullptr);
    }
    const auto visibility = [](bool isShown) { return isShown ? TextView::Visibility::shown : TextView::Visibility::hidden; };
    m_textView->setLook(&TextLooks::invisibles, visibility(preferences.value(Settings::showInvisibles)));
    applyLineNumbers();
    const auto wrapped = preferences.value(Settings::indentWrappedRows) ? TextView::WrapMode::indented : TextView::WrapMode::viewWidth;
    const auto wrapMode = preferences.value(Settings::wrapLines) ? wrapped : TextView::WrapMode::none;
    m_textView->setWrapMode(wrapMode);
    m_wordMarks->setMarking(preferences.value(Settings::markOccurrences));
    applyVimMode();
}

void EditorViewController::applyTheme()
{
    const Theme &theme = m_services.documents.theme();
    m_textView->setTheme(theme, m_services.preferences.value(Settings::highlightCurrentLine) ? EditorTextView::CurrentLine::highlighted
                                                                                             : EditorTextView::CurrentLine::plain);
    m_changes->applyTheme(theme);
    for (ExternalChangeBanner *banner : {m_banner, m_awaitedBanner, m_suggestionBanner}) {
        if (banner) {
            banner->applyTheme(theme);
        }
    }
}

void EditorViewController::applyLineNumbers()
{
    using enum LineNumberRulerView::Numbering;
    const Preferences &preferences = m_services.preferences;
    const bool hasOwn = preferences.value(Settings::showLineNumbers);
    const bool isExact = preferences.value(Settings::vimMode) && preferences.value(Settings::vimExact);
    const bool isRelative = isExact && preferences.value(Settings::vimRelativeNumber);
    m_textView->ruler().setNumbering(!isRelative ? fromFirst : hasOwn ? fromCaretWithOwn : fromCaret);
    m_textView->setLineNumbers(hasOwn || isRelative ? TextView::Visibility::shown : TextView::Visibility::hidden);
    m_textView->setLook(&TextLooks::revealMargin, isExact ? preferences.value(Settings::vimScrollOff) : 0);
}

void EditorViewController::applyVimMode()
{
    VimOptions options = m_services.vimConfiguration ? m_services.vimConfiguration->options() : VimOptions::of(m_services.preferences);
    options.longestLine = int(m_document->conventions.editorConfig().longestLine.value_or(0));
    const bool wasOn = m_vim != nullptr;
    const bool isOn = m_services.preferences.value(Settings::vimMode);
    if (m_vim && (!isOn || options.isExact != m_vim->engine().options().isExact)) {
        m_vim->stop();
    }
    if (m_vim && m_vim->engine().isBusy() && (!isOn || options.isExact != m_vim->engine().options().isExact)) {
        // A command that it carries out has asked for it.
        QMetaObject::invokeMethod(this, &EditorViewController::applyVimMode, Qt::QueuedConnection);
        return;
    }
    if (!m_services.preferences.value(Settings::vimMode)) {
        m_vim.reset();
    } else if (m_vim) {
        m_vim->configure(options);
    } else {
        m_vim = std::make_unique<EditorVim>(
            *m_textView,
            EditorVim::Services{commandServices(), m_services.registers, m_services.keyboard, m_services.vimHistory,
                                m_services.vimConfiguration, [this] { return historyKept(); },
                                [this] {
                                    return VimTextName{.path = m_document->path(),
                                                       .title = m_document->displayName(),
                                                       .id = m_document->id().toString(),
                                                       .isUnsaved = m_document->isDirty() || m_document->hasUnsavedText(),
                                                       .isInConflict =
                                                           m_document->externalState() == TextDocument::ExternalState::conflicted};
                                },
                                [this] { return otherTexts(); }},
            options,
            EditorVim::Callbacks{
                .stateChanged = [this] { emit stateChanged(); },
                .runCommand = [this](const QString &command) { m_exCommands->run(command); },
                .say = [this](const QString &message) { m_exCommands->showVimMessage(message); },
                .list = [this](const QString &title, const QString &text) { m_exCommands->showList(title, text); },
                .performCommand = [this](const Action &action, const QString &argument) { m_exCommands->performCommand(action, argument); },
                .substitute = [this](const VimSubstituteJob &job) { m_exCommands->substitute(job); }});
    }
    if (m_vim) {
        m_vim->setChords(VimChords(m_services.preferences.value(Settings::vimChords)));
    }
    if (wasOn != (m_vim != nullptr)) {
        emit stateChanged();
    }
}

std::vector<Rope> EditorViewController::otherTexts() const
{
    std::vector<Rope> texts;
    for (const auto &document : m_services.documents.documents()) {
        if (document != m_document) {
            texts.push_back(document->storage().text());
        }
    }
    return texts;
}

void EditorViewController::applyConventions()
{
    const Indentation indentation = m_document->conventions.indentation();
    const bool isOther = m_textView->indentation() != indentation;
    m_textView->setIndentation(indentation);
    if (const auto column = m_document->conventions.editorConfig().longestLine; m_rulerColumn != column) {
        m_rulerColumn = column;
        m_textView->setLook(&TextLooks::rulerColumn, column);
    }
    // Who shows it may have been notified of the cause before this editor did.
    if (isOther) {
        emit stateChanged();
    }
}

void EditorViewController::reportProblem()
{
    if (const QString problem = m_document->conventions.takeProblem(); !problem.isEmpty()) {
        emit messageShown(problem, messageTime);
    }
}

void EditorViewController::adoptLanguage()
{
    if (m_textView->language() != m_document->language()) {
        m_textView->setLanguage(m_document->language());
        if (m_spelling) {
            m_spelling->setLanguage(m_document->language());
        }
    }
}

/// What would have to become something else when the text is saved is seen while it is typed.
void EditorViewController::markMissingCharacters()
{
    const CharacterSet *characters = m_document->encodingDetails().missing().characters();
    if (std::exchange(m_characters, characters) == characters) {
        return;
    }
    m_textView->setLook(&TextLooks::unsavable, characters ? [characters, &storage = m_document->storage()](
                                                                TextRange seen) { return characters->missingIn(storage.text(), seen); }
                                                          : TextView::MarkProvider());
}

// Colours

void EditorViewController::highlightVisibleRange()
{
    m_visibleHighlightWork.cancel();
    if (m_document->highlighter()) {
        m_document->highlighter()->ensureHighlighted(m_textView->visibleRange());
    }
}

void EditorViewController::scheduleVisibleHighlight()
{
    m_visibleHighlightWork = m_services.scheduler.after(highlightDelay, [this] { highlightVisibleRange(); });
}

// Where the user was

void EditorViewController::applyAccess()
{
    const bool isReadOnly = m_document->isGenerated() || m_document->arrival().isPending();
    m_textView->setAccess(isReadOnly ? TextView::Access::readOnly : TextView::Access::readWrite);
}

void EditorViewController::restoreViewState()
{
    m_textView->setSelection(TextSelection::at(std::min(m_document->storage().length(), m_document->lastSelectedRange.location)));
    if (m_document->lastScrollOffset > 0) {
        // The view has its size by then.
        m_scrolling = m_services.scheduler.after(Scheduler::Milliseconds(0),
                                                 [this, offset = m_document->lastScrollOffset] { m_textView->setScrollOffset(offset); });
    }
}

void EditorViewController::saveViewState()
{
    if (m_document->arrival().isPending()) {
        return; // it remembers where the user was in the text that is to come
    }
    m_document->lastSelectedRange = m_textView->selection().range();
    m_document->lastScrollOffset = m_textView->scrollOffset();
}

void EditorViewController::revealCaretSoon()
{
    const auto offset = m_scrolling.isPending() ? std::optional(m_document->lastScrollOffset) : std::nullopt;
    m_scrolling = m_services.scheduler.after(Scheduler::Milliseconds(0), [this, offset] {
        if (offset) {
            m_textView->setScrollOffset(*offset);
        }
        m_textView->revealCaret();
    });
}

void EditorViewController::scrollToLine(LineNumber line)
{
    const Rope &text = m_document->storage().text();
    const qsizetype offset = std::min(LineIndex::startOfLine(line, text), text.length());
    m_textView->setSelection(TextSelection::at(offset), TextView::Reveal::nearest);
    m_textView->showIndicator(lineRange(text, {offset, 0}));
}

// The file changed elsewhere

void EditorViewController::updateBanner()
{
    updateAwaitedBanner();
    updateSuggestionBanner();
    const TextDocument::ExternalState state = m_document->externalState();
    // What is opened quickly needs no words.
    const bool isQuick = m_document->arrival().isPending() && m_document->requests().activity() == FileRequests::Activity::none;
    const bool isOfFile = state != TextDocument::ExternalState::none && !isQuick;
    if (!isOfFile && !m_document->origin) {
        dropBanner(m_banner);
        return;
    }
    if (!m_banner) {
        m_banner = makeBanner();
        m_banner->onReload = [this] { reload(); };
        m_banner->onKeep = [this] { m_document->clearExternalState(); };
        m_banner->onSave = [this] { saveAgain(); };
        m_banner->onCompare = [this] {
            const bool isConflicted = m_document->externalState() == TextDocument::ExternalState::conflicted;
            performHere(isConflicted ? Actions::compareWithFileOnDisk : Actions::compareWithOrigin);
        };
    }
    if (isOfFile) {
        m_banner->configure(state, m_document->displayName());
    } else {
        m_banner->configure(*m_document->origin);
    }
}

void EditorViewController::updateAwaitedBanner()
{
    if (m_document->awaited() == TextDocument::Awaited::no) {
        dropBanner(m_awaitedBanner);
        return;
    }
    if (!m_awaitedBanner) {
        m_awaitedBanner = makeBanner();
        m_awaitedBanner->onDone = [this] { performHere(Actions::finishWaiting); };
        m_awaitedBanner->onAbort = [this] { performHere(Actions::abortWaiting); };
    }
    m_awaitedBanner->configureAwaited(m_document->displayName());
}

/// Its pane is the one that the command is about.
void EditorViewController::performHere(const Action &action)
{
    m_textView->setFocus();
    perform(action);
}

void EditorViewController::updateSuggestionBanner()
{
    const auto encoding = m_document->encodingDetails().suggested();
    if (!encoding || m_document->arrival().isPending()) {
        dropBanner(m_suggestionBanner);
        return;
    }
    if (!m_suggestionBanner) {
        m_suggestionBanner = makeBanner();
        m_suggestionBanner->onReopen = [this] {
            m_document->reinterpret(m_document->encodingDetails().suggested().value_or(m_document->encoding()), {},
                                    TextDocument::Remembered::yes);
        };
        m_suggestionBanner->onKeep = [this] { m_document->encodingDetails().keep(); };
        m_suggestionBanner->onChoose = [this] { performHere(Actions::reopenWithEncoding); };
    }
    m_suggestionBanner->configureSuggestion(displayName(*encoding));
}

ExternalChangeBanner *EditorViewController::makeBanner()
{
    auto *banner = new ExternalChangeBanner(this);
    banner->applyTheme(m_services.documents.theme());
    m_stack->insertWidget(0, banner);
    return banner;
}

void EditorViewController::dropBanner(ExternalChangeBanner *&banner)
{
    if (ExternalChangeBanner *dropped = std::exchange(banner, nullptr)) {
        if (dropped->isAncestorOf(focusWidget())) {
            m_textView->setFocus();
        }
        dropped->hide();
        dropped->deleteLater(); // one of its buttons may be what led here
    }
}

QWidget *EditorViewController::banner() const
{
    return m_banner ? m_banner : m_awaitedBanner ? m_awaitedBanner : m_suggestionBanner;
}

/// What fails leaves all as it was, the banner too.
void EditorViewController::reload()
{
    m_document->revertToFileOnDisk([editor = QPointer(this)](const Result<void, TextFile::ReadError> &read) {
        if (editor && !read) {
            emit editor->messageShown(read.error().description(), messageTime);
        }
    });
}

void EditorViewController::saveAgain()
{
    if (m_document->isUntitled()) {
        return;
    }
    m_document->save(m_document->path(), [editor = QPointer(this)](const Result<AtomicFile::InPlace> &saved) {
        if (editor && !saved && (saved.error().code == TextFile::missingCharactersError || saved.error().code == ENOENT)) {
            editor->textView().setFocus();
            editor->perform(Actions::saveDocument); // who does that asks what is to become of them, or of the missing folder
        } else if (editor && !saved && saved.error().code == AtomicFile::changedError) {
            emit editor->messageShown(saved.error().message, messageTime);
        } else if (editor && !saved) {
            editor->m_services.presenter.present(Alert::forError(saved.error().message), editor->window(), {});
        }
    });
}

// Ex commands

void EditorViewController::insertFile(const ActionSender &sender)
{
    m_exCommands->insertFile(sender.represented.toString());
}

void EditorViewController::sourceFile(const ActionSender &sender)
{
    m_exCommands->sourceFile(sender.represented.toString());
}

// Spelling

void EditorViewController::makeSpelling()
{
    if (!m_services.spellChecker || !m_services.spellingPanel) {
        return;
    }
    AlertPresenter &presenter = m_services.presenter;
    m_spelling = std::make_unique<SpellingController>(
        *m_textView, m_document->highlighter(), m_document->language(),
        SpellingController::Services{
            m_services.scheduler, *m_services.spellChecker, *m_services.spellingPanel, m_services.beep(),
            [this, &presenter](const QString &message) { presenter.present(Alert::forError(message), window(), {}); }});
    connect(m_textView, &TextView::contextMenuRequested, m_spelling.get(),
            [this](QMenu *menu, qsizetype offset) { m_spelling->addCorrections(*menu, offset); });
    connect(m_spelling.get(), &SpellingController::dictionariesChanged, this, &EditorViewController::stateChanged);
    m_spellingPath = m_document->path();
    bool isOn = m_services.preferences.value(Settings::checkSpelling);
    if (const FileMemory *memory = m_services.fileMemory) {
        isOn = memory->value(m_spellingPath, FileMemory::checksSpelling).toBool(isOn);
        const QStringList kept = memory->value(m_spellingPath, FileMemory::dictionaries).toVariant().toStringList();
        if (m_document->spellingDictionaries.isEmpty() && !kept.isEmpty()) {
            const QStringList &installed = m_services.spellChecker->installed();
            std::ranges::copy_if(kept, std::back_inserter(m_document->spellingDictionaries),
                                 [&installed](const QString &name) { return installed.contains(name); });
        }
    }
    adoptDictionaries();
    if (isOn) {
        m_spelling->toggleContinuous();
    }
}

/// For when the file is opened again.
void EditorViewController::keepSpelling()
{
    m_spellingPath = m_document->path();
    if (!m_spelling || !m_services.fileMemory) {
        return;
    }
    const bool isAsUsual = m_spelling->isContinuous() == m_services.preferences.value(Settings::checkSpelling);
    const QStringList &names = m_document->spellingDictionaries;
    const QJsonValue nothing(QJsonValue::Undefined);
    m_services.fileMemory->set(m_spellingPath, FileMemory::checksSpelling, isAsUsual ? nothing : m_spelling->isContinuous());
    m_services.fileMemory->set(m_spellingPath, FileMemory::dictionaries, names.isEmpty() ? nothing : QJsonArray::fromStringList(names));
}

void EditorViewController::toggleSpelling()
{
    if (m_spelling) {
        m_spelling->toggleContinuous();
        keepSpelling();
    }
}

void EditorViewController::chooseDictionaries(const QStringList &names)
{
    m_document->spellingDictionaries = names;
    keepSpelling();
    m_services.notifications.post(TextDocument::didChangeMetadata, m_document.get());
}

void EditorViewController::adoptDictionaries()
{
    if (m_spelling && m_spelling->chosenDictionaries() != m_document->spellingDictionaries) {
        m_spelling->setDictionaries(m_document->spellingDictionaries);
    }
}

ActionState EditorViewController::spellingState() const
{
    return m_spelling ? m_spelling->continuousState() : ActionState{.isEnabled = false};
}

void EditorViewController::checkSpelling()
{
    if (m_spelling) {
        m_spelling->checkSpelling();
    }
}

bool EditorViewController::canCheckSpelling() const
{
    return m_spelling && m_spelling->canCheck();
}

void EditorViewController::showSpellingPanel()
{
    if (m_spelling) {
        m_spelling->showPanel();
    }
}
