// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/PaneViewController.h"

#include "Base/Localization.h"
#include "Commands/FirstResponder.h"
#include "Model/DocumentStore.h"
#include "Settings/Preferences.h"

#include <QApplication>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize startSize(600, 400);

/// Screen readers call a text as its tab does.
void updateName(EditorViewController &editor)
{
    const QString name = editor.document().displayName();
    if (name != editor.textView().accessibleName()) {
        editor.textView().setAccessibleName(name);
    }
}

} // namespace

PaneViewController::PaneViewController(const WorkspaceServices &services, PaneViewControllerDelegate &delegate, QWidget *parent)
    : QWidget(parent), m_services(services), m_delegate(delegate), m_tabBar(new TabBarView(this)), m_container(new QWidget(this))
{
    resize(startSize);
    auto *stack = new QVBoxLayout(this);
    stack->setContentsMargins({});
    stack->setSpacing(0);
    stack->addWidget(m_tabBar);
    stack->addWidget(m_container, 1);
    auto *place = new QVBoxLayout(m_container);
    place->setContentsMargins({});
    m_tabBar->setDelegate(this);
    keepFirstResponderBehind(*m_tabBar);
    m_tabBar->setActivePane(PaneActivity::inactive);
    applyTheme();

    m_observers.push_back(m_services.notifications.observe(TextDocument::didChangeMetadata, nullptr, [this](const void *object) {
        const bool isOurs = std::ranges::any_of(m_documents, [object](const auto &document) { return document.get() == object; });
        if (isOurs) {
            refreshTabs();
            m_delegate.paneDidChangeState(*this);
        }
    }));
    m_observers.push_back(m_services.notifications.observe(Preferences::didChange, nullptr, [this] { applyTheme(); }));
    m_observers.push_back(m_services.notifications.observe(Localization::didChangeNotification, nullptr, [this] {
        m_tabBar->retranslate();
        refreshTabs();
    }));
}

PaneViewController::~PaneViewController()
{
    for (const auto &[document, editor] : m_editors) {
        editor->setDelegate(nullptr);
        delete editor;
    }
    m_tabBar->setDelegate(nullptr);
}

int PaneViewController::indexOf(const TextDocument &document) const
{
    const auto found = std::ranges::find(m_documents, &document, [](const auto &held) { return held.get(); });
    return found == m_documents.end() ? -1 : int(found - m_documents.begin());
}

TextDocument *PaneViewController::currentDocument() const
{
    return m_selectedIndex < count() ? m_documents[size_t(m_selectedIndex)].get() : nullptr;
}

void PaneViewController::setActive(bool isActive)
{
    if (m_isActive != isActive) {
        m_isActive = isActive;
        m_tabBar->setActivePane(isActive ? PaneActivity::active : PaneActivity::inactive);
    }
}

// Tabs

void PaneViewController::refreshTabs()
{
    std::vector<TabDescriptor> tabs;
    for (const auto &document : m_documents) {
        const bool isWaiting = document->isWaiting();
        tabs.push_back({.title = isWaiting ? document->displayName() + u" …"_s : document->displayName(),
                        .tooltip = document->displayPath(),
                        .isDirty = document->isDirty(),
                        .hasExternalChange = !isWaiting && document->externalState() != TextDocument::ExternalState::none});
    }
    if (m_currentEditor) {
        updateName(*m_currentEditor);
    }
    m_tabBar->setTabs(tabs, m_selectedIndex);
    m_tabBar->scrollSelectedTabIntoView();
}

void PaneViewController::applyTheme()
{
    m_tabBar->setTheme(m_services.documents.theme());
    refreshTabs();
}

void PaneViewController::add(TextDocument &document, Select select, std::optional<int> index)
{
    if (const int here = indexOf(document); here >= 0) {
        if (select == Select::yes) {
            selectDocument(here);
        }
        return;
    }
    const int place = index ? std::clamp(*index, 0, count()) : count();
    m_documents.insert(m_documents.begin() + place, document.shared_from_this());
    if (select == Select::yes) {
        selectDocument(place);
    } else {
        if (place <= m_selectedIndex && m_currentEditor) {
            ++m_selectedIndex;
        }
        refreshTabs();
        m_delegate.paneDidChangeState(*this);
    }
}

void PaneViewController::append(const Documents &documents)
{
    m_documents.insert(m_documents.end(), documents.begin(), documents.end());
    refreshTabs();
    m_delegate.paneDidChangeState(*this);
}

void PaneViewController::selectDocument(int index)
{
    if (index < 0 || index >= count()) {
        return;
    }
    m_selectedIndex = index;
    showEditor(*m_documents[size_t(index)]);
    refreshTabs();
    m_delegate.paneDidChangeState(*this);
}

/// Or will have it when its window is the active one again.
bool PaneViewController::editorHasFocus() const
{
    return m_currentEditor && m_currentEditor->isAncestorOf(window()->focusWidget());
}

void PaneViewController::showEditor(TextDocument &document)
{
    EditorViewController *&editor = m_editors[&document];
    if (editor && editor == m_currentEditor) {
        return;
    }
    saveViewState();
    const bool hadFocus = editorHasFocus();
    if (!editor) {
        editor = new EditorViewController(m_services, document, m_container);
        editor->setDelegate(this);
        updateName(*editor);
        m_container->layout()->addWidget(editor);
    }
    editor->show();
    if (hadFocus) {
        editor->textView().setFocus();
    }
    if (m_currentEditor) {
        m_currentEditor->hide();
    }
    m_currentEditor = editor;
}

void PaneViewController::saveViewState()
{
    if (m_currentEditor) {
        m_currentEditor->saveViewState();
    }
}

void PaneViewController::dropEditor(const TextDocument &document)
{
    const auto node = m_editors.extract(&document);
    if (!node) {
        return;
    }
    EditorViewController *editor = node.mapped();
    if (m_currentEditor == editor) {
        m_currentEditor = nullptr;
    }
    // The command that closes it may be a key of its own text.
    editor->setDelegate(nullptr);
    editor->hide();
    editor->deleteLater();
}

void PaneViewController::removeDocument(int index)
{
    if (index < 0 || index >= count()) {
        return;
    }
    const std::shared_ptr<TextDocument> removed = m_documents[size_t(index)];
    const int before = m_selectedIndex;
    const bool hadFocus = editorHasFocus();
    m_documents.erase(m_documents.begin() + index);
    dropEditor(*removed);
    m_selectedIndex = std::min(std::max(count() - 1, 0), before);
    if (!m_documents.empty()) {
        selectDocument(m_selectedIndex);
        if (hadFocus && !editorHasFocus()) {
            focusEditor();
        }
        return;
    }
    refreshTabs();
    m_delegate.paneDidChangeState(*this);
    m_delegate.paneDidBecomeEmpty(*this);
}

void PaneViewController::moveTab(int from, int to)
{
    if (from < 0 || from >= count() || to < 0 || to >= count()) {
        return;
    }
    const TextDocument *selected = currentDocument();
    auto moved = std::move(m_documents[size_t(from)]);
    m_documents.erase(m_documents.begin() + from);
    m_documents.insert(m_documents.begin() + to, std::move(moved));
    m_selectedIndex = indexOf(*selected);
    refreshTabs();
}

void PaneViewController::selectNextTab(int step)
{
    if (!m_documents.empty()) {
        selectDocument((m_selectedIndex + step + count()) % count());
    }
}

void PaneViewController::requestClose(int index)
{
    if (index < 0 || index >= count()) {
        return;
    }
    const std::shared_ptr<TextDocument> document = m_documents[size_t(index)];
    m_delegate.paneRequestsClose(*this, *document, [pane = QPointer(this), document](bool mayClose) {
        if (pane && mayClose) {
            pane->removeDocument(pane->indexOf(*document));
        }
    });
}

void PaneViewController::focusEditor()
{
    if (m_currentEditor) {
        m_currentEditor->textView().setFocus();
    }
}

// From editors and tabs

void PaneViewController::editorWantsFocus(EditorViewController & /*editor*/)
{
    m_delegate.paneDidBecomeActive(*this);
}

void PaneViewController::editorDidChangeSelection(EditorViewController &editor)
{
    if (&editor == m_currentEditor) {
        m_delegate.paneDidChangeState(*this);
    }
}

void PaneViewController::editorRunsVimCommand(EditorViewController & /*editor*/, const QString &command)
{
    m_delegate.paneRunsVimCommand(*this, command);
}

void PaneViewController::editorDidDropFiles(EditorViewController & /*editor*/, const QStringList &paths)
{
    m_delegate.paneDidDropFiles(*this, paths);
}

void PaneViewController::tabBarDidSelectTab(TabBarView & /*bar*/, int index)
{
    m_delegate.paneDidBecomeActive(*this);
    selectDocument(index);
    focusEditor();
}

void PaneViewController::tabBarDidRequestClose(TabBarView & /*bar*/, int index)
{
    requestClose(index);
}

void PaneViewController::tabBarDidRequestNewTab(TabBarView & /*bar*/)
{
    m_delegate.paneRequestsNewDocument(*this);
}

void PaneViewController::tabBarDidMoveTab(TabBarView & /*bar*/, int from, int to)
{
    moveTab(from, to);
}
