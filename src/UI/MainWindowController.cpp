// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/MainWindowController.h"

#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Model/DocumentStore.h"
#include "Session/SessionStore.h"
#include "Settings/DefaultsStore.h"
#include "UI/EditorToolbarController.h"
#include "UI/WindowAccessible.h"
#include "Widgets/AlertPresenter.h"
#include "Widgets/WindowSize.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QMenuBar>
#include <QScreen>
#include <QShortcut>

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize startSize(1040, 700);
constexpr QSize leastSize(480, 300);
constexpr auto frameKey = "window.frame.QuilletMainWindow"_L1;

/// The first widget in `region` that the Tab key reaches; null when there is none.
QWidget *firstStop(QWidget &region)
{
    if (region.focusPolicy() & Qt::TabFocus) {
        return &region;
    }
    for (QWidget *next = region.nextInFocusChain(); next != &region; next = next->nextInFocusChain()) {
        if (region.isAncestorOf(next) && (next->focusPolicy() & Qt::TabFocus) && next->isVisible() && next->isEnabled()) {
            return next;
        }
    }
    return nullptr;
}

} // namespace

MainWindowController::MainWindowController(const WorkspaceServices &services, PaneLayouts &layouts)
    : m_services(services), m_firstResponder(*this, services.presenter, [this] { return mainFocus(); }),
      m_workspace(new WorkspaceViewController(services, layouts, this)),
      m_toolbar(new EditorToolbarController(*this, {services.scheduler, services.notifications, services.preferences, m_firstResponder}))
{
    WindowAccessible::install();
    setMinimumSize(leastSize);
    restoreFrame();
    setCentralWidget(m_workspace);
    connect(m_workspace, &WorkspaceViewController::currentDocumentChanged, this, &MainWindowController::updateTitle);
    connect(m_workspace, &WorkspaceViewController::currentDocumentChanged, m_toolbar, &EditorToolbarController::validateSoon);
    connect(new QShortcut(Qt::Key_F6, this), &QShortcut::activated, this, [this] { focusNextRegion(1); });
    connect(new QShortcut(Qt::SHIFT | Qt::Key_F6, this), &QShortcut::activated, this, [this] { focusNextRegion(-1); });
    connect(new QShortcut(Qt::Key_F10, this), &QShortcut::activated, this, &MainWindowController::openFirstMenu);
}

MainWindowController::~MainWindowController()
{
    disconnect(m_workspace, nullptr, this, nullptr);
    delete std::exchange(m_workspace, nullptr);
}

const ActionRow *MainWindowController::actionFor(const Action &wanted) const
{
    using Self = MainWindowController;
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&Self::performClose>(Actions::performClose),
        action<&Self::performMiniaturize>(Actions::performMiniaturize),
        action<&Self::performZoom>(Actions::performZoom),
        action<&Self::toggleFullScreen>(Actions::toggleFullScreen),
    });
    return findAction(rows, wanted);
}

QWidget *MainWindowController::mainFocus() const
{
    EditorViewController *editor = m_workspace ? m_workspace->currentEditor() : nullptr;
    return editor ? &editor->textView() : nullptr;
}

void MainWindowController::comeToFront()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void MainWindowController::updateTitle()
{
    const TextDocument *document = m_workspace->currentDocument();
    // Doubled, the mark's placeholder stands for itself.
    setWindowTitle(document ? document->displayName().replace("[*]"_L1, "[*][*]"_L1) + u"[*]"_s : u"Quillet"_s);
    setWindowFilePath(document ? document->path() : QString());
    // The toolkit would tell the window manager at each key, which answers before the letter is seen.
    if (const bool isModified = document && (document->isDirty() || document->hasUnsavedText()); isModified != isWindowModified()) {
        setWindowModified(isModified);
    }
}

/// The size it was left with; where it stands is the window manager's affair.
void MainWindowController::restoreFrame()
{
    const QStringList sides = m_services.defaults.string(frameKey).split(u'x');
    QSize size = startSize;
    if (sides.size() == 2 && sides[0].toInt() > 0 && sides[1].toInt() > 0) {
        size = {sides[0].toInt(), sides[1].toInt()};
    }
    resize(sizeOnScreen(*this, size).expandedTo(leastSize));
}

void MainWindowController::performZoom()
{
    setWindowState(windowState() ^ Qt::WindowMaximized);
}

void MainWindowController::toggleFullScreen()
{
    setWindowState(windowState() ^ Qt::WindowFullScreen);
}

std::vector<QWidget *> MainWindowController::regions() const
{
    std::vector<QWidget *> regions;
    if (EditorViewController *editor = m_workspace->currentEditor()) {
        regions = {&editor->textView(), &m_workspace->activePane()->tabBar(), &m_workspace->statusBar()};
    }
    if (QWidget *banner = regions.empty() ? nullptr : m_workspace->currentEditor()->banner()) {
        regions.insert(regions.begin() + 1, banner);
    }
    if (QWidget *entry = m_toolbar->entry()) {
        regions.push_back(entry);
    }
    return regions;
}

void MainWindowController::focusNextRegion(int step)
{
    const std::vector<QWidget *> all = regions();
    const auto count = std::ssize(all);
    const QWidget *focused = QApplication::focusWidget();
    const auto here =
        std::ranges::find_if(all, [focused](const QWidget *region) { return region == focused || region->isAncestorOf(focused); });
    const auto start = here == all.end() ? -step : here - all.begin();
    for (std::ptrdiff_t tried = 1; tried <= count; ++tried) {
        if (QWidget *target = firstStop(*all[size_t((start + (step * tried) % count + count) % count)])) {
            // As after the Tab key, else some styles do not show where the focus is.
            setAttribute(Qt::WA_KeyboardFocusChange);
            target->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

void MainWindowController::openFirstMenu()
{
    const QList<QAction *> menus = menuBar()->actions();
    if (!menus.isEmpty()) {
        menuBar()->setActiveAction(menus.first());
    }
}

bool MainWindowController::event(QEvent *event)
{
    if (event->type() == QEvent::WindowActivate && !isAncestorOf(QApplication::focusWidget())) {
        m_workspace->focusEditor();
    }
    return QMainWindow::event(event);
}

void MainWindowController::keyPressEvent(QKeyEvent *event)
{
    // What a bar has no use for itself.
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        m_workspace->focusEditor();
        return;
    }
    QMainWindow::keyPressEvent(event);
}

// Closing

void MainWindowController::closeEvent(QCloseEvent *event)
{
    if (PrintActions &printing = m_workspace->printActions(); m_closing < Closing::allowed && printing.isActive()) {
        event->ignore();
        comeToFront();
        printing.whenOver([this](PrintActions::Outcome outcome) {
            if (outcome == PrintActions::Outcome::failed) {
                emit closingRefused();
            } else {
                close();
            }
        });
        return;
    }
    const PaneLayout::Documents dirty = unsavedDocuments();
    PaneLayout::Documents saving = m_workspace->paneLayout().documents();
    std::erase_if(saving, [](const auto &document) { return !document->saves().isActive(); });
    if (m_closing < Closing::allowed && !saving.empty()) {
        event->ignore();
        comeToFront();
        m_writes.await(saving, this, [this](PendingWrites::Outcome outcome) {
            if (outcome == PendingWrites::Outcome::failed) {
                emit closingRefused();
                return;
            }
            m_closing = outcome == PendingWrites::Outcome::abandoned ? Closing::allowed : m_closing;
            close();
        });
        // Answered at once, the closing under way is the one to go through.
        if (m_closing < Closing::allowed) {
            return;
        }
    }
    if (m_closing < Closing::allowed && !dirty.empty()) {
        event->ignore();
        // Where nobody sees it, the question would never be answered.
        comeToFront();
        if (std::exchange(m_closing, Closing::asked) == Closing::asked) {
            for (QDialog *dialog : findChildren<QDialog *>(Qt::FindDirectChildrenOnly)) {
                dialog->activateWindow();
            }
            return;
        }
        using Answer = DocumentActions::Closing;
        m_workspace->documentActions().confirmClosing(dirty, [this](Answer answer) {
            // What was typed while all was saved is asked about as well.
            const bool mayClose = answer == Answer::withoutSaving || (answer == Answer::saved && unsavedDocuments().empty());
            m_closing = mayClose ? Closing::allowed : Closing::notAsked;
            if (answer == Answer::refused) {
                emit closingRefused();
            } else {
                close();
            }
        });
        if (m_closing < Closing::allowed) {
            return;
        }
    }
    event->accept();
    if (!isFullScreen() && !isMaximized()) {
        m_services.defaults.set(frameKey, u"%1x%2"_s.arg(width()).arg(height()));
    }
    if (std::exchange(m_closing, Closing::done) != Closing::done) {
        emit closed();
    }
}

PaneLayout::Documents MainWindowController::unsavedDocuments() const
{
    PaneLayout::Documents unsaved = m_workspace->paneLayout().documents();
    // A text from a draft counts as clean: as long as drafts are kept, it comes back.
    const bool isKept = m_services.session.keepsUnsavedText();
    std::erase_if(unsaved, [isKept](const auto &document) { return isKept ? !document->hasUnsavedEdits() : !document->hasUnsavedText(); });
    return unsaved;
}
