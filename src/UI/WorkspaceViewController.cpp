// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/WorkspaceViewController.h"

#include "Base/BackgroundTask.h"
#include "Base/FilePath.h"
#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Editor/EditorVim.h"
#include "Editor/LineCommands.h"
#include "Editor/SpellingController.h"
#include "Editor/TextCounter.h"
#include "Model/DocumentStore.h"
#include "Model/RecentDocuments.h"
#include "Session/ClosedTabs.h"
#include "Session/SessionKeeper.h"
#include "Settings/Preferences.h"
#include "Spelling/SpellChecker.h"
#include "Text/LineIndex.h"
#include "Text/LineRange.h"
#include "UI/CaretHint.h"
#include "UI/PaneSplitter.h"
#include "UI/TabMenu.h"
#include "UI/WindowPlacement.h"
#include "View/FirstResponder.h"
#include "Widgets/AlertPresenter.h"

#include <QPointer>
#include <QVBoxLayout>

#include <cerrno>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds broughtBackFlash{5};
/// After what may have changed a first line.
constexpr Scheduler::Milliseconds detailsDelay{400};

constexpr QSize startSize(1000, 680);
/// No divider comes closer to another one, or to the window's edge, as long as there is room.
constexpr int leastPaneExtent = 180;

std::optional<StatusBarView::VimState> vimStateOf(EditorViewController &editor)
{
    if (!editor.vim()) {
        const bool overwrites = editor.textView().typingMode() == EditorTextView::TypingMode::overwrites;
        return overwrites ? std::optional(StatusBarView::VimState{.mode = localized(u"OVERWRITE")}) : std::nullopt;
    }
    const VimEngine &engine = editor.vim()->engine();
    const QString &preedit = editor.vim()->preedit();
    const auto recording = engine.recording();
    StatusBarView::VimState state{.mode = engine.isReplacing() ? u"REPLACE"_s : displayName(engine.mode()),
                                  .note = recording ? formatted(localized(u"recording @%@"), QString(QChar(*recording))) : QString(),
                                  .question = engine.question(),
                                  .pending = engine.pendingDescription() + preedit,
                                  .commandLine = std::nullopt,
                                  .isInsert = engine.mode() == VimEngine::Mode::insert};
    if (engine.mode() == VimEngine::Mode::commandLine) {
        const VimCommandLine &line = engine.commandLine();
        const qsizetype cursor = 1 + line.cursor();
        state.commandLine = QString(QChar(line.prefix()) + line.text()).insert(cursor, preedit);
        state.cursor = engine.options().isExact ? std::optional(cursor + preedit.size()) : std::nullopt;
    }
    return state;
}

std::optional<StatusBarView::SpellingState> spellingOf(EditorViewController &editor)
{
    SpellingController *spelling = editor.spelling();
    if (!spelling || !spelling->isContinuous()) {
        return std::nullopt;
    }
    return StatusBarView::SpellingState{spelling->dictionaries(), spelling->chosenDictionaries(), spelling->checker().installed()};
}

TextStatistics statisticsOf(EditorViewController &editor)
{
    const Rope &text = editor.document().storage().text();
    const TextRange selected = editor.textView().selection().range();
    const TextCounter::Counts counts = editor.counter().counts();
    TextStatistics statistics{.text = {counts.text, text.lineCount()}};
    if (!selected.isEmpty()) {
        statistics.selection = TextStatistics::Column{counts.selection, text.lineAt(selected.end()) - text.lineAt(selected.location) + 1};
    }
    return statistics;
}

} // namespace

WorkspaceViewController::WorkspaceViewController(const WorkspaceServices &services, PaneLayouts &layouts, QWidget *parent)
    : FileDropView(parent), m_services(services), m_layouts(&layouts), m_tabActions(services, *this),
      m_documentActions(services, m_layout, *this), m_printActions(
                                                        services, m_documentActions, [this] { return currentEditor(); }, *this),
      m_typedDestinations(services, *this), m_splitView(new PaneSplitter(this)),
      m_statusBar(new StatusBarView(services.scheduler, services.notifications, this))
{
    resize(startSize);
    setAcceptDrops(true);
    onDropFiles = [this](const QStringList &paths) { open(paths); };
    connectParts();
    FirstResponder::setBar(*m_statusBar);
    auto *stack = new QVBoxLayout(this);
    stack->setContentsMargins({});
    stack->setSpacing(0);
    stack->addWidget(m_splitView, 1);
    stack->addWidget(m_statusBar);
    applyTheme();
    connect(&m_services.documents, &DocumentStore::themeChanged, this, &WorkspaceViewController::applyTheme);
    m_observers.push_back(m_services.notifications.observe(Preferences::didChange, nullptr, [this] { updateStatusBar(); }));
    m_observers.push_back(
        m_services.notifications.observe(TextDocument::didFailToArrive, nullptr, [this] { dropDocumentsThatCannotBeRead(); }));
    m_observers.push_back(m_services.notifications.observe(Localization::didChangeNotification, nullptr, [this] { updateState(); }));
}

WorkspaceViewController::~WorkspaceViewController()
{
    retire();
    m_layout = {};
    for (PaneViewController *pane : std::exchange(m_panes, {})) {
        delete pane;
    }
}

void WorkspaceViewController::connectParts()
{
    m_layouts->add(m_layout);
    connect(&m_services.documents, &DocumentStore::removed, this, &WorkspaceViewController::takeTabs);
    // Commands that are about the current document go on from here to where they are carried out.
    setNextResponder(&m_typedDestinations);
    m_typedDestinations.setNextResponder(&m_tabActions);
    m_tabActions.setNextResponder(&m_documentActions);
    m_documentActions.setNextResponder(&m_printActions);
    m_printActions.setNextResponder(nearestResponder(parent()));
    connect(&m_documentActions, &DocumentActions::filesChosen, this, [this](const QStringList &paths) { open(paths); });
    connect(&m_documentActions, &DocumentActions::documentMade, this, &WorkspaceViewController::showDocument);
    connect(&m_documentActions, &DocumentActions::messageShown, m_statusBar, &StatusBarView::flash);
    connect(&m_printActions, &PrintActions::messageShown, m_statusBar, &StatusBarView::flash);
    connect(m_statusBar, &StatusBarView::languageChosen, &m_documentActions, &DocumentActions::chooseLanguage);
    connect(m_statusBar, &StatusBarView::encodingChosen, &m_documentActions, &DocumentActions::chooseEncoding);
    connect(m_statusBar, &StatusBarView::reopenWithEncodingChosen, &m_documentActions, &DocumentActions::reopenWithEncoding);
    connect(m_statusBar, &StatusBarView::lineEndingChosen, &m_documentActions, &DocumentActions::chooseLineEnding);
    connect(m_statusBar, &StatusBarView::indentationChosen, this, &WorkspaceViewController::chooseIndentation);
    connect(m_statusBar, &StatusBarView::textIndentationChosen, this, [this](std::optional<Indentation> indentation) {
        if (TextDocument *document = currentDocument()) {
            document->conventions.choose(indentation);
        }
    });
    connect(m_statusBar, &StatusBarView::conversionChosen, this, [this](Indentation::Unit unit) {
        if (EditorViewController *editor = currentEditor()) {
            editor->lineCommands().convertIndentation(unit);
        }
    });
    connect(m_statusBar, &StatusBarView::dictionariesChosen, this, [this](const QStringList &names) {
        if (EditorViewController *editor = currentEditor()) {
            editor->chooseDictionaries(names);
        }
    });
    connect(m_statusBar, &StatusBarView::positionClicked, this, &WorkspaceViewController::goToLine);
    connect(m_statusBar, &StatusBarView::missingCharactersClicked, this, &WorkspaceViewController::listMissingCharacters);
}

void WorkspaceViewController::retire()
{
    if (PaneLayouts *layouts = std::exchange(m_layouts, nullptr)) {
        layouts->remove(m_layout);
        disconnect(&m_services.documents, nullptr, this, nullptr);
    }
}

void WorkspaceViewController::applyTheme()
{
    m_statusBar->setTheme(m_services.documents.theme());
    m_splitView->setDividerColor(QColor::fromRgb(m_services.documents.theme().gutterSeparator));
}

// Panes

PaneViewController *WorkspaceViewController::activePane() const
{
    return m_layout.isEmpty() ? nullptr : m_panes[size_t(m_layout.activeIndex())];
}

EditorViewController *WorkspaceViewController::currentEditor() const
{
    const PaneViewController *pane = activePane();
    return pane ? pane->currentEditor() : nullptr;
}

void WorkspaceViewController::setPaneLayout(PaneLayout layout)
{
    if (layout == m_layout) {
        return;
    }
    const bool isTurned = layout.orientation() != m_layout.orientation();
    if (!m_layout.isEmpty() && !layout.isEmpty() && layout.active()->id != m_layout.active()->id) {
        m_lastPane = m_layout.active()->id;
    }
    m_layout = layout;
    const std::vector<PaneViewController *> before = std::exchange(m_panes, {});
    for (const PaneLayout::Pane &pane : layout.panes()) {
        const auto known = std::ranges::find(before, pane.id, &PaneViewController::id);
        m_panes.push_back(known == before.end() ? makePane(pane.id) : *known);
    }
    std::vector<PaneViewController *> gone;
    std::ranges::copy_if(before, std::back_inserter(gone),
                         [&](const PaneViewController *pane) { return layout.paneWithId(pane->id()) < 0; });
    std::ranges::for_each(gone, &PaneViewController::saveViewState);
    for (const PaneLayout::Pane &pane : layout.panes()) {
        m_panes[size_t(layout.paneWithId(pane.id))]->setContent(pane);
    }
    // A text that came in place of another with the keyboard in it has made its pane the active one.
    m_layout = layout;
    for (PaneViewController *pane : m_panes) {
        pane->setActive(pane == activePane());
    }
    if (!gone.empty()) {
        focusEditor();
    }
    for (PaneViewController *pane : gone) {
        // A key of one of its texts may be what led here.
        pane->hide();
        pane->setParent(this);
        pane->deleteLater();
    }
    if (isTurned || m_panes != before) {
        m_splitView->setOrientation(layout.orientation());
        redistributePanes();
    }
    updateTabDetails();
    updateState();
    m_services.keeper.noteActivity();
}

PaneViewController *WorkspaceViewController::makePane(int id)
{
    auto *pane = new PaneViewController(m_services, id, this);
    m_splitView->addWidget(pane);
    connect(pane, &PaneViewController::activated, this, [this, pane] { activate(*pane); });
    pane->setTabDetails(m_tabDetails);
    connect(pane, &PaneViewController::stateChanged, this, [this, pane] {
        updateTabDetailsSoon();
        if (pane == activePane()) {
            updateState();
            m_services.keeper.noteActivity();
        }
    });
    connect(pane, &PaneViewController::countsChanged, this, &WorkspaceViewController::updateStatusBar);
    connect(pane, &PaneViewController::messageShown, m_statusBar, &StatusBarView::flash);
    connect(pane, &PaneViewController::filesDropped, this, [this, pane](const QStringList &paths) {
        activate(*pane);
        open(paths);
    });
    const TabBarView &tabs = pane->tabBar();
    connect(&tabs, &TabBarView::tabChosen, this, [this, pane](int tab) {
        activate(*pane);
        selectTab(tab);
    });
    connect(&tabs, &TabBarView::closeRequested, this, [this, pane](int tab) { m_tabActions.requestClose(indexOf(*pane), tab); });
    connect(&tabs, &TabBarView::menuRequested, this, [this, pane](int tab, QPoint position) {
        showTabMenu(*pane, *this, {.pane = pane->id(), .document = pane->documents()[size_t(tab)]->id()}, position);
    });
    connect(&tabs, &TabBarView::newTabRequested, this, [this, pane] {
        activate(*pane);
        openUntitled();
    });
    connect(&tabs, &TabBarView::moveRequested, this,
            [this, pane](int from, int to) { setPaneLayout(m_layout.moving(indexOf(*pane), from, to)); });
    return pane;
}

void WorkspaceViewController::redistributePanes()
{
    limitPanes();
    const bool isRow = m_layout.orientation() == Qt::Horizontal;
    const int extent = isRow ? m_splitView->width() : m_splitView->height();
    const int count = m_layout.paneCount();
    // Before it is shown the window has no room to be shared.
    m_isSharedOut = isVisible() && count > 0 && m_splitView->width() > 1 && m_splitView->height() > 1;
    if (!m_isSharedOut) {
        return;
    }
    const int available = extent - m_splitView->handleWidth() * (count - 1);
    QList<int> sizes(count, available / count);
    sizes.back() = available - available / count * (count - 1);
    m_splitView->setSizes(sizes);
}

/// As far apart as dividers have to stay, but never so that the window could not be made small.
void WorkspaceViewController::limitPanes()
{
    const bool isRow = m_layout.orientation() == Qt::Horizontal;
    const int extent = isRow ? m_splitView->width() : m_splitView->height();
    const int count = std::max(m_layout.paneCount(), 1);
    const int least = count == 1 ? 0 : std::clamp((extent - (count - 1)) / count, 0, leastPaneExtent);
    for (PaneViewController *pane : m_panes) {
        pane->setMinimumSize(isRow ? least : 0, isRow ? 0 : least);
    }
    m_splitView->setMinimumSize(1, 1);
}

void WorkspaceViewController::resizeEvent(QResizeEvent *event)
{
    FileDropView::resizeEvent(event);
    limitPanes();
}

void WorkspaceViewController::showEvent(QShowEvent *event)
{
    FileDropView::showEvent(event);
    if (!m_isSharedOut) {
        layout()->activate();
        redistributePanes();
    }
}

void WorkspaceViewController::makeSplit(Qt::Orientation orientation, const ActionSender &sender)
{
    const TabIndex tab = tabOf(m_layout, sender);
    PaneViewController *source = tab.exists() ? m_panes[size_t(tab.pane)] : nullptr;
    if (source) {
        source->saveViewState();
    }
    setPaneLayout(m_layout.activating(tab.pane).selecting(tab.pane, tab.tab).split(orientation));
    // Either has less room than the one before.
    if (EditorViewController *split = source ? source->currentEditor() : nullptr; split && split->textView().caret().wasSeen) {
        split->revealCaretSoon();
        currentEditor()->revealCaretSoon();
    }
    focusEditor();
}

void WorkspaceViewController::toggleSplitOrientation()
{
    setPaneLayout(m_layout.turned(m_layout.orientation() == Qt::Horizontal ? Qt::Vertical : Qt::Horizontal));
}

void WorkspaceViewController::closeSplit()
{
    if (hasSeveralPanes()) {
        setPaneLayout(m_layout.removing(m_layout.activeIndex()));
    } else {
        beep();
    }
}

void WorkspaceViewController::closeOtherSplits()
{
    if (hasSeveralPanes()) {
        setPaneLayout(m_layout.removingOthers());
    } else {
        beep();
    }
}

void WorkspaceViewController::focusPane(int step)
{
    if (hasSeveralPanes()) {
        setPaneLayout(m_layout.activatingNext(step));
        focusEditor();
    }
}

void WorkspaceViewController::focusPaneAt(int index)
{
    if (index >= 0 && index < m_layout.paneCount()) {
        setPaneLayout(m_layout.activating(index));
        focusEditor();
    }
}

void WorkspaceViewController::focusPaneShowing(const TextDocument &document)
{
    if (const int pane = m_layout.paneShowing(document); pane >= 0) {
        setPaneLayout(m_layout.activating(pane));
        selectTab(m_layout.active()->indexOf(document));
    }
}

void WorkspaceViewController::focusEditor()
{
    if (PaneViewController *pane = activePane()) {
        pane->focusEditor();
    }
}

WindowLayout WorkspaceViewController::windowLayout() const
{
    return {m_layout, frameOf(*window())};
}

void WorkspaceViewController::setWindowLayout(const WindowLayout &layout)
{
    setPaneLayout(layout.panes);
    focusEditor();
    if (layout.frame) {
        placeWindow(*window(), *layout.frame);
    }
}

void WorkspaceViewController::rememberPlaces()
{
    std::ranges::for_each(m_panes, &PaneViewController::saveViewState);
    if (PaneViewController *pane = activePane()) {
        pane->saveViewState();
    }
}

void WorkspaceViewController::dropDocumentsThatCannotBeRead()
{
    for (const auto &document : m_layout.documents()) {
        if (const auto twin = document->arrival().failure().twin) {
            const bool isInFront = m_layout.current() == document;
            setPaneLayout(isInFront ? m_layout.showing({twin}) : m_layout.appending({twin}));
        }
        if (document->arrival().failure().twin || document->arrival().failure().error) {
            m_services.documents.remove(*document);
        }
    }
}

// Opening

/// The window's only, empty text, which goes when there is something to be shown.
std::shared_ptr<TextDocument> WorkspaceViewController::placeholder() const
{
    if (m_layout.isEmpty() || m_layout.active()->count() != 1) {
        return nullptr;
    }
    auto only = m_layout.current();
    const bool isEmpty = only->isUntitled() && only->storage().length() == 0 && !only->hasUnsavedEdits();
    return isEmpty ? only : nullptr;
}

void WorkspaceViewController::removePlaceholder(const std::shared_ptr<TextDocument> &placeholder)
{
    if (placeholder) {
        m_services.documents.remove(*placeholder);
    }
}

PaneLayout::Documents WorkspaceViewController::openWithin(std::chrono::milliseconds timeout, const QStringList &paths,
                                                          MissingFile missingFile)
{
    std::optional<TextFile::ReadError> firstError;
    PaneLayout::Documents all;
    PaneLayout::Documents shown;
    PaneLayout::Documents read;
    for (const DocumentStore::OpenResult &opened : m_services.documents.open(paths, timeout, missingFile)) {
        all.push_back(opened ? opened->document : nullptr);
        if (!opened) {
            firstError = firstError.value_or(opened.error());
            continue;
        }
        shown.push_back(opened->document);
        if (opened->isBroughtBack) {
            m_statusBar->flash(formatted(localized(u"The unsaved changes of “%@” are back"), opened->document->displayName()),
                               broughtBackFlash);
        }
        if (opened->isNew && opened->document->arrival().isPending()) {
            reportWhenArrived(*opened->document);
        } else if (opened->isNew) {
            read.push_back(opened->document);
        }
    }
    if (!shown.empty()) {
        const auto empty = placeholder();
        setPaneLayout(m_layout.showing(shown));
        removePlaceholder(empty);
        focusPaneShowing(*shown.back());
    }
    noteOpened(read);
    if (firstError) {
        presentError(*firstError);
    }
    return all;
}

void WorkspaceViewController::reportWhenArrived(TextDocument &document)
{
    document.arrival().whenOver([workspace = QPointer(this), &document] {
        if (workspace && document.arrival().failure().error) {
            workspace->presentError(*document.arrival().failure().error);
        } else if (workspace) {
            workspace->noteOpened({document.shared_from_this()});
        }
    });
}

void WorkspaceViewController::noteOpened(const PaneLayout::Documents &documents)
{
    constexpr std::chrono::seconds flash{5};
    QStringList files;
    for (const auto &document : documents) {
        if (document->file().isNew()) {
            m_statusBar->flash(formatted(localized(u"“%@” does not exist yet. Saving creates it."), document->displayName()), flash);
        } else {
            files << document->path();
        }
    }
    m_services.recent.note(files);
}

void WorkspaceViewController::presentError(const TextFile::ReadError &error)
{
    Alert report = Alert::forError(error.description(), error.recoverySuggestion().value_or(QString()));
    using Kind = TextFile::ReadError::Kind;
    const bool dependsOnEncoding = error.kind == Kind::binary || error.kind == Kind::undecodable;
    if (dependsOnEncoding) {
        report.buttons = {{localized(u"OK"), AlertButtonRole::cancel}, {localized(Actions::openWithEncoding.title)}};
    }
    if (error.kind == Kind::notReadable && error.found == PathKind::unknown) {
        const auto isForbidden = [path = encodedPath(error.path), &files = m_services.documents.services().files](const std::stop_token &) {
            return files.access(path.constData(), R_OK) != 0 && errno == EACCES;
        };
        BackgroundTask asking = BackgroundTask::start(m_services.workers, isForbidden, [&report](bool answer) {
            report.informativeText = answer ? localized(u"You do not have permission to read it.") : QString();
        });
        std::ignore = asking.waitUntil(std::chrono::steady_clock::now() + m_services.documents.services().timeout);
    }
    m_services.presenter.present(report, window(), [this, dependsOnEncoding, path = error.path](const AlertReply &reply) {
        if (dependsOnEncoding && reply.button == AlertReply::secondButton) {
            m_documentActions.openWithEncoding(path);
        }
    });
}

void WorkspaceViewController::adopt(TextDocument &document)
{
    const auto empty = placeholder();
    setPaneLayout(m_layout.adding(document.shared_from_this()));
    if (empty.get() != &document) {
        removePlaceholder(empty);
    }
    focusEditor();
}

void WorkspaceViewController::showDocument(TextDocument &document)
{
    if (m_layout.paneShowing(document) < 0) {
        adopt(document);
    }
    focusPaneShowing(document);
}

TextDocument &WorkspaceViewController::openUntitled()
{
    TextDocument &document =
        m_services.documents.add(std::make_unique<TextDocument>(m_services.documents.services(), QString(), std::nullopt));
    setPaneLayout(m_layout.adding(document.shared_from_this()));
    focusEditor();
    return document;
}

void WorkspaceViewController::goTo(TextDocument &document, LineNumber line, qsizetype column)
{
    if (m_layout.paneShowing(document) < 0) {
        return;
    }
    focusPaneShowing(document);
    const Rope &text = document.storage().text();
    const qsizetype start = LineIndex::startOfLine(line, text);
    const TextRange whole = lineRange(text, {start, 0});
    const char16_t last = whole.isEmpty() ? u' ' : text.at(whole.end() - 1);
    const qsizetype end = whole.end() - (last == u'\n' || isLineSeparator(last) ? 1 : 0);
    const qsizetype place = start + std::clamp<qsizetype>(column - 1, 0, std::max<qsizetype>(end - start, 0));
    currentEditor()->textView().setSelection(TextSelection::at(place), TextView::Reveal::center);
}

// Tabs

void WorkspaceViewController::selectTab(int tab)
{
    if (PaneViewController *pane = activePane()) {
        setPaneLayout(m_layout.selecting(m_layout.activeIndex(), tab));
        pane->tabBar().scrollSelectedTabIntoView();
        pane->focusEditor();
    }
}

void WorkspaceViewController::selectNextTab()
{
    setPaneLayout(m_layout.selectingNext(1));
    focusEditor();
}

void WorkspaceViewController::selectPreviousTab()
{
    setPaneLayout(m_layout.selectingNext(-1));
    focusEditor();
}

void WorkspaceViewController::selectTabByNumber(const ActionSender &sender)
{
    constexpr int lastTab = 9;
    const int count = m_layout.isEmpty() ? 0 : m_layout.active()->count();
    const int index = sender.tag == lastTab ? count - 1 : sender.tag - 1;
    if (index < 0 || index >= count) {
        beep();
        return;
    }
    selectTab(index);
}

bool WorkspaceViewController::isShownBeside(int pane, const TextDocument &document) const
{
    const bool isHere = pane >= 0 && m_layout.panes()[size_t(pane)].holds(document);
    return m_layouts && m_layouts->countOf(document) > (isHere ? 1 : 0);
}

void WorkspaceViewController::takeTab(int pane, const TextDocument &document)
{
    // Another window may have opened it while the user was asked.
    if (!isShownBeside(pane, document)) {
        noteClosed(document);
        m_services.documents.remove(document);
        return;
    }
    if (pane < 0 || !m_layout.panes()[size_t(pane)].holds(document)) {
        return;
    }
    if (m_layout.tabCount() == 1) {
        openUntitled();
    }
    setPaneLayout(m_layout.closing(pane, m_layout.panes()[size_t(pane)].indexOf(document), keptSelection()));
}

void WorkspaceViewController::noteClosed(const TextDocument &document)
{
    const int pane = m_layout.paneShowing(document);
    if (pane < 0) {
        return;
    }
    const PaneLayout::Pane &shown = m_layout.panes()[size_t(pane)];
    const int tab = shown.indexOf(document);
    if (tab == shown.selected) {
        m_panes[size_t(pane)]->saveViewState();
    }
    m_services.closedTabs.note(shown.tabs[size_t(tab)], {.paneId = shown.id, .pane = pane, .tab = tab});
}

/// Where it was, if its pane is there still. An empty tab that is all there is goes.
void WorkspaceViewController::showReopened(TextDocument &document, const ClosedPlace &place)
{
    if (m_layout.paneShowing(document) < 0) {
        const auto empty = placeholder();
        const int byId = m_layout.paneWithId(place.paneId);
        setPaneLayout(m_layout.inserting(document.shared_from_this(), place.paneId > 0 ? byId : place.pane, place.tab));
        removePlaceholder(empty);
    }
    focusPaneShowing(document);
}

PaneLayout::Selected WorkspaceViewController::keptSelection() const
{
    return m_services.preferences.value(Settings::keepCurrentTab) ? PaneLayout::Selected::tab : PaneLayout::Selected::place;
}

/// The document is gone.
void WorkspaceViewController::takeTabs(const TextDocument &document)
{
    if (m_layout.countOf(document) > 0 && m_layout.closing(document).isEmpty()) {
        openUntitled();
    }
    setPaneLayout(m_layout.closing(document, keptSelection()));
}

void WorkspaceViewController::moveTabToNewWindow(const ActionSender &sender)
{
    const auto moved = documentOf(m_layout, sender);
    if (!moved) {
        beep();
        return;
    }
    PaneViewController &source = *m_panes[size_t(tabOf(m_layout, sender).pane)];
    source.saveViewState();
    emit tabDetached(*moved);
    takeTab(indexOf(source), *moved);
}

// What is reported about the current document

void WorkspaceViewController::updateState()
{
    updateStatusBar();
    emit currentDocumentChanged();
}

/// After a pause: another file may have come, or another first line of a text that has none.
void WorkspaceViewController::updateTabDetailsSoon()
{
    if (!m_detailsSoon.isPending()) {
        m_detailsSoon = m_services.scheduler.after(detailsDelay, [this] {
            updateTabDetails();
            if (const TextDocument *current = currentDocument(); current && current->isUntitled()) {
                // Its very title may be its first line.
                std::ranges::for_each(m_panes, &PaneViewController::refreshTabs);
                emit currentDocumentChanged();
            }
        });
    }
}

void WorkspaceViewController::updateTabDetails()
{
    if (TabDetails details = tabDetailsOf(m_layout.documents()); details != m_tabDetails) {
        m_tabDetails = std::move(details);
        std::ranges::for_each(m_panes, [this](PaneViewController *pane) { pane->setTabDetails(m_tabDetails); });
    }
}

void WorkspaceViewController::updateStatusBar()
{
    EditorViewController *editor = currentEditor();
    if (!editor) {
        m_statusBar->setState(std::nullopt);
        return;
    }
    const TextDocument &document = editor->document();
    const Rope &text = document.storage().text();
    const TextRange selected = editor->textView().selection().range();
    const LineNumber line = LineIndex::lineNumber(selected.location, text);
    const LineNumber lastLine = LineIndex::lineNumber(selected.end(), text);
    const Indentation indentation = editor->textView().indentation();
    m_statusBar->setState(StatusBarView::State{
        .path = displayPath(document),
        .isReadOnly = document.file().isReadOnly(),
        .canReopen = m_documentActions.canReopen(),
        .line = line,
        .column = selected.location - LineIndex::startOfLine(line, text) + 1,
        .caretCount = qsizetype(editor->textView().selections().count()),
        .selectionLength = editor->textView().selections().selectedUnits(),
        .selectedLineCount = selected.isEmpty() ? 0 : lineOfNumber(lastLine) - lineOfNumber(line) + 1,
        .language = document.language(),
        .encoding = document.encoding(),
        .isNamedEncoding = document.encodingDetails().remembered() == document.encoding(),
        .hasByteOrderMark = document.form().value().hasByteOrderMark,
        .missingCharacters = document.encodingDetails().missing().count().value_or(0),
        .lineEnding = document.lineEnding(),
        .lineEndingCounts = document.form().value().lineEndings.counts(),
        .indentWidth = indentation.width,
        .usesSpaces = indentation.unit == Indentation::Unit::spaces,
        .indentationSource = document.conventions.source(),
        .chosenIndentation = document.conventions.chosen(),
        .vim = vimStateOf(*editor),
        .spelling = spellingOf(*editor),
        .statistics = statisticsOf(*editor),
        .caretHint = [text, caret = selected.location, encoding = document.encoding(),
                      lineEnding = document.lineEnding()] { return ::caretHint(text, caret, encoding, lineEnding); },
    });
}
