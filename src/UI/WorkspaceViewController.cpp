// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/WorkspaceViewController.h"

#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Commands/FirstResponder.h"
#include "Editor/EditorVim.h"
#include "Model/DocumentStore.h"
#include "Model/RecentDocuments.h"
#include "Session/SessionKeeper.h"
#include "Settings/Preferences.h"
#include "Text/LineRange.h"
#include "UI/PaneSplitter.h"
#include "UI/SubstitutionRunner.h"
#include "UI/WindowPlacement.h"
#include "Widgets/AlertPresenter.h"

#include <QPointer>
#include <QVBoxLayout>

namespace {

constexpr QSize startSize(1000, 680);
/// No divider comes closer to another one, or to the window's edge, as long as there is room.
constexpr int leastPaneExtent = 180;

std::optional<StatusBarView::VimState> vimStateOf(EditorViewController &editor)
{
    if (!editor.vim()) {
        return std::nullopt;
    }
    const VimEngine &engine = editor.vim()->engine();
    const QString &preedit = editor.vim()->preedit();
    const bool hasLine = engine.mode() == VimEngine::Mode::commandLine;
    return StatusBarView::VimState{
        .mode = displayName(engine.mode()),
        .pending = engine.pendingDescription() + preedit,
        .commandLine = hasLine ? std::optional(QChar(engine.commandLinePrefix()) + engine.commandLineText() + preedit) : std::nullopt,
        .isInsert = engine.mode() == VimEngine::Mode::insert};
}

} // namespace

WorkspaceViewController::WorkspaceViewController(const WorkspaceServices &services, WorkspaceHost &host, QWidget *parent)
    : FileDropView(parent), m_services(services), m_host(host), m_splitView(new PaneSplitter(this)),
      m_statusBar(new StatusBarView(services.scheduler, services.notifications, this))
{
    resize(startSize);
    setAcceptDrops(true);
    onDropFiles = [this](const QStringList &paths) { open(paths); };
    m_statusBar->setDelegate(this);
    keepFirstResponderBehind(*m_statusBar);
    auto *stack = new QVBoxLayout(this);
    stack->setContentsMargins({});
    stack->setSpacing(0);
    stack->addWidget(m_splitView, 1);
    stack->addWidget(m_statusBar);
    applyTheme();
    m_observers.push_back(m_services.notifications.observe(Preferences::didChange, nullptr, [this] {
        applyTheme();
        updateStatusBar();
    }));
    m_observers.push_back(
        m_services.notifications.observe(TextDocument::didFailToArrive, nullptr, [this] { dropDocumentsThatCannotBeRead(); }));
    m_observers.push_back(m_services.notifications.observe(Localization::didChangeNotification, nullptr, [this] { updateState(); }));
}

WorkspaceViewController::~WorkspaceViewController()
{
    m_statusBar->setDelegate(nullptr);
    m_activePane = nullptr;
    for (PaneViewController *pane : std::exchange(m_panes, {})) {
        delete pane;
    }
}

Qt::Orientation WorkspaceViewController::orientation() const
{
    return m_splitView->orientation();
}

PaneViewController::Documents WorkspaceViewController::documents() const
{
    PaneViewController::Documents all;
    for (const PaneViewController *pane : m_panes) {
        for (const auto &document : pane->documents()) {
            if (std::ranges::find(all, document) == all.end()) {
                all.push_back(document);
            }
        }
    }
    return all;
}

void WorkspaceViewController::applyTheme()
{
    m_services.documents.refreshAppearance();
    m_statusBar->setTheme(m_services.documents.theme());
    m_splitView->setDividerColor(QColor::fromRgb(m_services.documents.theme().gutterSeparator));
}

// Opening

std::shared_ptr<TextDocument> WorkspaceViewController::placeholder() const
{
    if (!m_activePane || m_activePane->count() != 1) {
        return nullptr;
    }
    const auto &only = m_activePane->documents().front();
    const bool isEmpty = only->isUntitled() && only->storage().length() == 0 && !only->isDirty();
    return isEmpty ? only : nullptr;
}

void WorkspaceViewController::removePlaceholder(const TextDocument &document)
{
    removeFromAllPanes(document);
    m_services.documents.remove(document);
}

void WorkspaceViewController::dropDocumentsThatCannotBeRead()
{
    for (const auto &document : documents()) {
        if (document->arrivalError()) {
            m_services.documents.remove(*document);
            removeFromAllPanes(*document);
        }
    }
}

void WorkspaceViewController::removeFromAllPanes(const TextDocument &document)
{
    for (WorkspaceViewController *workspace : m_host.workspaces()) {
        // A pane may go with its last tab.
        for (PaneViewController *pane : std::vector(workspace->m_panes)) {
            pane->removeDocument(pane->indexOf(document));
        }
    }
}

PaneViewController &WorkspaceViewController::targetPane()
{
    return m_activePane ? *m_activePane : addPane({}, 0);
}

PaneViewController *WorkspaceViewController::paneShowing(const TextDocument &document) const
{
    const auto found = std::ranges::find_if(m_panes, [&](const PaneViewController *pane) { return pane->holds(document); });
    return found == m_panes.end() ? nullptr : *found;
}

bool WorkspaceViewController::isShownBeside(const PaneViewController *except, const TextDocument &document) const
{
    for (const WorkspaceViewController *workspace : m_host.workspaces()) {
        for (const PaneViewController *pane : workspace->m_panes) {
            if (pane != except && pane->holds(document)) {
                return true;
            }
        }
    }
    return false;
}

/// Gives the document a tab if it has none, in the pane that is active then.
PaneViewController &WorkspaceViewController::place(TextDocument &document)
{
    if (PaneViewController *pane = paneShowing(document)) {
        setActivePane(*pane);
        return *pane;
    }
    PaneViewController &pane = targetPane();
    pane.add(document, PaneViewController::Select::no);
    return pane;
}

void WorkspaceViewController::open(const QStringList &paths)
{
    const std::shared_ptr<TextDocument> empty = placeholder();
    std::optional<TextFile::ReadError> firstError;
    TextDocument *last = nullptr;
    QStringList readPaths;
    // Only what stays in front gets an editor: twenty files need one.
    std::unordered_map<PaneViewController *, TextDocument *> selected;
    // New ones get their tabs together, or a thousand files would have their tabs laid out a thousand times.
    PaneViewController::Documents fresh;
    const auto placeFresh = [&] {
        if (!fresh.empty()) {
            PaneViewController &pane = targetPane();
            selected[&pane] = fresh.back().get();
            pane.append(std::exchange(fresh, {}));
        }
    };
    for (const QString &path : paths) {
        TextDocument *document = m_services.documents.documentAt(path);
        if (document) {
            placeFresh();
            selected[&place(*document)] = document;
        } else {
            auto contents = TextFile::read(path);
            if (!contents) {
                firstError = firstError ? firstError : std::optional(contents.error());
                continue;
            }
            document = &m_services.documents.add(std::make_unique<TextDocument>(m_services.documents.services(), path, *contents));
            fresh.push_back(document->shared_from_this());
            readPaths << path;
        }
        last = document;
    }
    placeFresh();
    for (const auto &[pane, document] : selected) {
        pane->selectDocument(pane->indexOf(*document));
    }
    if (last) {
        if (empty) {
            removePlaceholder(*empty);
        }
        focusPaneShowing(*last);
    }
    m_services.recent.note(readPaths);
    if (firstError) {
        presentError(*firstError);
    }
}

void WorkspaceViewController::adopt(TextDocument &document)
{
    const std::shared_ptr<TextDocument> empty = placeholder();
    PaneViewController &pane = targetPane();
    pane.add(document, PaneViewController::Select::yes);
    if (empty && empty.get() != &document) {
        removePlaceholder(*empty);
    }
    pane.focusEditor();
}

TextDocument &WorkspaceViewController::openUntitled()
{
    TextDocument &document =
        m_services.documents.add(std::make_unique<TextDocument>(m_services.documents.services(), QString(), std::nullopt));
    PaneViewController &pane = targetPane();
    pane.add(document, PaneViewController::Select::yes);
    pane.focusEditor();
    return document;
}

void WorkspaceViewController::goTo(TextDocument &document, qsizetype line, qsizetype column)
{
    if (!paneShowing(document)) {
        return;
    }
    focusPaneShowing(document);
    const Rope &text = document.storage().text();
    const qsizetype start = LineIndex::startOfLine(std::min(line, text.lineCount()), text);
    const TextRange whole = lineRange(text, {start, 0});
    const char16_t last = whole.isEmpty() ? u' ' : text.at(whole.end() - 1);
    const qsizetype end = whole.end() - (last == u'\n' || isLineSeparator(last) ? 1 : 0);
    const qsizetype place = start + std::clamp<qsizetype>(column - 1, 0, std::max<qsizetype>(end - start, 0));
    currentEditor()->textView().setSelection(TextSelection::at(place), TextView::Reveal::center);
}

// Panes

qsizetype WorkspaceViewController::indexOf(const PaneViewController &pane) const
{
    return std::ranges::find(m_panes, &pane) - m_panes.begin();
}

PaneViewController &WorkspaceViewController::addPane(const PaneViewController::Documents &documents, int selectedIndex)
{
    auto *pane = new PaneViewController(m_services, *this, this);
    m_splitView->addWidget(pane);
    m_panes.push_back(pane);
    if (!documents.empty()) {
        pane->append(documents);
        pane->selectDocument(std::min(int(documents.size()) - 1, selectedIndex));
    }
    redistributePanes();
    if (!m_activePane) {
        setActivePane(*pane);
    }
    return *pane;
}

void WorkspaceViewController::setActivePane(PaneViewController &pane)
{
    if (m_activePane == &pane) {
        return;
    }
    if (PaneViewController *before = std::exchange(m_activePane, &pane)) {
        before->setActive(false);
    }
    pane.setActive(true);
    updateState();
}

void WorkspaceViewController::removePane(PaneViewController &pane)
{
    const qsizetype index = indexOf(pane);
    if (m_panes.size() < 2 || index == qsizetype(m_panes.size())) {
        return;
    }
    pane.saveViewState();
    PaneViewController &survivor = *m_panes[size_t(index == 0 ? 1 : index - 1)];
    for (const auto &document : pane.documents()) {
        const bool isElsewhere =
            std::ranges::any_of(m_panes, [&](const PaneViewController *other) { return other != &pane && other->holds(*document); });
        if (!isElsewhere) {
            survivor.add(*document, PaneViewController::Select::no);
        }
    }
    m_panes.erase(m_panes.begin() + index);
    if (m_activePane == &pane) {
        m_activePane = nullptr;
        setActivePane(survivor);
    }
    // A key of one of its texts may be what led here.
    pane.hide();
    pane.setParent(this);
    pane.deleteLater();
    redistributePanes();
    survivor.focusEditor();
}

void WorkspaceViewController::redistributePanes()
{
    limitPanes();
    const int extent = orientation() == Qt::Horizontal ? m_splitView->width() : m_splitView->height();
    const int count = int(m_panes.size());
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
    const bool isRow = orientation() == Qt::Horizontal;
    const int extent = isRow ? m_splitView->width() : m_splitView->height();
    const int count = std::max(int(m_panes.size()), 1);
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

void WorkspaceViewController::setOrientation(Qt::Orientation orientation)
{
    m_splitView->setOrientation(orientation);
    redistributePanes();
}

void WorkspaceViewController::makeSplit(Qt::Orientation orientation)
{
    setOrientation(orientation);
    TextDocument *document = currentDocument();
    if (!document) {
        addPane({}, 0);
        return;
    }
    m_activePane->saveViewState();
    PaneViewController &pane = addPane({document->shared_from_this()}, 0);
    setActivePane(pane);
    pane.focusEditor();
}

void WorkspaceViewController::toggleSplitOrientation()
{
    setOrientation(orientation() == Qt::Horizontal ? Qt::Vertical : Qt::Horizontal);
}

void WorkspaceViewController::closeSplit()
{
    if (m_activePane && hasSeveralPanes()) {
        removePane(*m_activePane);
    } else {
        beep();
    }
}

void WorkspaceViewController::closeOtherSplits()
{
    if (!m_activePane || !hasSeveralPanes()) {
        beep();
        return;
    }
    PaneViewController &kept = *m_activePane;
    for (PaneViewController *pane : std::vector(m_panes)) {
        if (pane != &kept) {
            // Its neighbour gets the focus, and is active by that.
            removePane(*pane);
        }
    }
    setActivePane(kept);
    kept.focusEditor();
}

void WorkspaceViewController::focusPane(int step)
{
    if (!m_activePane || !hasSeveralPanes()) {
        return;
    }
    const auto count = qsizetype(m_panes.size());
    PaneViewController &next = *m_panes[size_t((indexOf(*m_activePane) + step + count) % count)];
    setActivePane(next);
    next.focusEditor();
}

void WorkspaceViewController::focusPaneShowing(const TextDocument &document)
{
    if (PaneViewController *pane = paneShowing(document)) {
        setActivePane(*pane);
        pane->selectDocument(pane->indexOf(document));
        pane->focusEditor();
    }
}

void WorkspaceViewController::focusEditor()
{
    if (m_activePane) {
        m_activePane->focusEditor();
    }
}

WindowLayout WorkspaceViewController::windowLayout() const
{
    WindowLayout layout{.panes = {},
                        .activePane = m_activePane ? size_t(indexOf(*m_activePane)) : 0,
                        .orientation = orientation(),
                        .frame = frameOf(*window())};
    for (const PaneViewController *pane : m_panes) {
        layout.panes.push_back({pane->documents(), pane->selectedIndex()});
    }
    return layout;
}

void WorkspaceViewController::setWindowLayout(const WindowLayout &layout)
{
    setOrientation(layout.orientation);
    for (const WindowLayout::Pane &pane : layout.panes) {
        addPane(pane.documents, pane.selectedIndex);
    }
    setActivePane(*m_panes[layout.activePane]);
    focusEditor();
    if (layout.frame) {
        placeWindow(*window(), *layout.frame);
    }
}

void WorkspaceViewController::rememberPlaces()
{
    std::ranges::for_each(m_panes, &PaneViewController::saveViewState);
    if (m_activePane) {
        m_activePane->saveViewState();
    }
}

// Tabs

void WorkspaceViewController::closeTab()
{
    if (m_activePane && currentDocument()) {
        m_activePane->closeCurrentTab();
    }
}

void WorkspaceViewController::selectNextTab()
{
    if (m_activePane) {
        m_activePane->selectNextTab(1);
        focusEditor();
    }
}

void WorkspaceViewController::selectPreviousTab()
{
    if (m_activePane) {
        m_activePane->selectNextTab(-1);
        focusEditor();
    }
}

void WorkspaceViewController::selectTabByNumber(const ActionSender &sender)
{
    constexpr int lastTab = 9;
    const int count = m_activePane ? m_activePane->count() : 0;
    const int index = sender.tag == lastTab ? count - 1 : sender.tag - 1;
    if (index < 0 || index >= count) {
        beep();
        return;
    }
    m_activePane->selectDocument(index);
    focusEditor();
}

void WorkspaceViewController::moveTabToNewWindow()
{
    TextDocument *document = currentDocument();
    if (!document) {
        beep();
        return;
    }
    m_activePane->saveViewState();
    PaneViewController &source = *m_activePane;
    const std::shared_ptr<TextDocument> moved = document->shared_from_this();
    WorkspaceViewController &other = m_host.openWindow();
    other.adopt(*moved);
    source.removeDocument(source.indexOf(*moved));
    other.window()->raise();
    other.window()->activateWindow();
}

// What is told about the current document

void WorkspaceViewController::updateState()
{
    updateStatusBar();
    emit currentDocumentChanged();
}

void WorkspaceViewController::updateStatusBar()
{
    TextDocument *document = currentDocument();
    EditorViewController *editor = currentEditor();
    if (!document || !editor) {
        m_statusBar->setState(std::nullopt);
        return;
    }
    const Rope &text = document->storage().text();
    const TextRange selected = editor->textView().selection().range();
    const qsizetype line = LineIndex::lineNumber(selected.location, text);
    const qsizetype lastLine = LineIndex::lineNumber(selected.end(), text);
    const Indentation indentation = editor->textView().indentation();
    m_statusBar->setState(StatusBarView::State{
        .path = document->displayPath(),
        .line = line,
        .column = selected.location - LineIndex::startOfLine(line, text) + 1,
        .selectionLength = selected.length,
        .selectedLineCount = selected.isEmpty() ? 0 : lastLine - line + 1,
        .language = document->language(),
        .encoding = document->encoding(),
        .lineEnding = document->lineEnding(),
        .indentWidth = indentation.width,
        .usesSpaces = indentation.unit == Indentation::Unit::spaces,
        .vim = vimStateOf(*editor),
    });
}

// From the panes

void WorkspaceViewController::paneDidBecomeActive(PaneViewController &pane)
{
    setActivePane(pane);
}

void WorkspaceViewController::paneDidChangeState(PaneViewController &pane)
{
    if (&pane == m_activePane) {
        updateState();
        m_services.keeper.noteActivity();
    }
}

void WorkspaceViewController::paneRequestsNewDocument(PaneViewController &pane)
{
    setActivePane(pane);
    openUntitled();
}

void WorkspaceViewController::paneDidDropFiles(PaneViewController &pane, const QStringList &paths)
{
    setActivePane(pane);
    open(paths);
}

void WorkspaceViewController::paneRequestsClose(PaneViewController &pane, TextDocument &document, CloseCompletion completion)
{
    if (isShownBeside(&pane, document)) {
        completion(true);
        return;
    }
    const auto close = [this, pane = QPointer(&pane), document = document.shared_from_this(),
                        completion = std::move(completion)](bool mayClose) {
        // Another window may have opened it while the question was.
        if (mayClose && !isShownBeside(pane, *document)) {
            m_services.documents.remove(*document);
        }
        completion(mayClose);
    };
    if (document.hasUnsavedText()) {
        confirmClose(document, close);
    } else {
        close(true);
    }
}

void WorkspaceViewController::paneDidBecomeEmpty(PaneViewController &pane)
{
    if (m_panes.size() < 2) {
        openUntitled();
    } else {
        removePane(pane);
    }
}
