// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/PaneViewController.h"

#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Commands/KeyboardChords.h"
#include "Editor/TextCounter.h"
#include "Model/DocumentStore.h"
#include "Settings/Preferences.h"
#include "View/FirstResponder.h"

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

QString activityOf(TextDocument &document)
{
    switch (document.requests().activity()) {
    case FileRequests::Activity::opening:
        return localized(u"Opening…");
    case FileRequests::Activity::saving:
        return localized(u"Saving…");
    case FileRequests::Activity::authorizing:
        return localized(u"Waiting for the password…");
    case FileRequests::Activity::none:
        break;
    }
    return {};
}

} // namespace

PaneViewController::PaneViewController(const WorkspaceServices &services, int id, QWidget *parent)
    : QWidget(parent), m_services(services), m_content{.id = id}, m_tabBar(new TabBarView(this)), m_container(new QWidget(this))
{
    resize(startSize);
    auto *stack = new QVBoxLayout(this);
    stack->setContentsMargins({});
    stack->setSpacing(0);
    stack->addWidget(m_tabBar);
    stack->addWidget(m_container, 1);
    auto *place = new QVBoxLayout(m_container);
    place->setContentsMargins({});
    FirstResponder::setBar(*m_tabBar);
    m_tabBar->setActivePane(PaneActivity::inactive);
    applyTheme();

    m_observers.push_back(m_services.notifications.observe(TextDocument::didChangeMetadata, nullptr, [this](const void *object) {
        const bool isOurs = std::ranges::any_of(documents(), [object](const auto &document) { return document.get() == object; });
        if (isOurs) {
            refreshTabs();
            emit stateChanged();
        }
    }));
    connect(&m_services.documents, &DocumentStore::themeChanged, this, &PaneViewController::applyTheme);
    for (const NotificationName name : {Localization::didChangeNotification, KeyboardChords::didChangeNotification}) {
        m_observers.push_back(m_services.notifications.observe(name, nullptr, [this] {
            m_tabBar->retranslate();
            refreshTabs();
        }));
    }
}

PaneViewController::~PaneViewController()
{
    blockSignals(true);
    for (const auto &[document, editor] : m_editors) {
        delete editor;
    }
}

void PaneViewController::setContent(const PaneLayout::Pane &pane)
{
    if (pane == m_content) {
        return;
    }
    m_content = pane;
    showEditor(*pane.selectedTab());
    dropEditorsOfClosedTabs();
    refreshTabs();
}

void PaneViewController::setTabDetails(const TabDetails &details)
{
    m_tabDetails = details;
    refreshTabs();
}

void PaneViewController::setActive(bool isActive)
{
    if (m_isActive != isActive) {
        m_isActive = isActive;
        m_tabBar->setActivePane(isActive ? PaneActivity::active : PaneActivity::inactive);
    }
}

void PaneViewController::refreshTabs()
{
    std::vector<TabDescriptor> tabs;
    for (const auto &document : documents()) {
        const auto detail = m_tabDetails.find(document.get());
        tabs.push_back(
            {.title = document->displayName(),
             .tooltip = displayPath(*document),
             .detail = detail == m_tabDetails.end() ? QString() : detail->second,
             .activity = activityOf(*document),
             .isReadOnly = document->file().isReadOnly(),
             .isDirty = document->isDirty() || document->hasUnsavedText(),
             .hasExternalChange = !document->arrival().isPending() && document->externalState() != TextDocument::ExternalState::none});
    }
    if (m_currentEditor) {
        updateName(*m_currentEditor);
    }
    m_tabBar->setTabs(tabs, selectedIndex());
    m_tabBar->scrollSelectedTabIntoView();
}

void PaneViewController::applyTheme()
{
    m_tabBar->setTheme(m_services.documents.theme());
}

// Editors

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
    if (m_currentEditor && m_content.holds(m_currentEditor->document())) {
        m_currentEditor->saveViewState();
    }
    const bool hadFocus = editorHasFocus();
    if (!editor) {
        editor = makeEditor(document);
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

EditorViewController *PaneViewController::makeEditor(TextDocument &document)
{
    auto *editor = new EditorViewController(m_services, document, m_container);
    connect(editor, &EditorViewController::activated, this, &PaneViewController::activated);
    connect(editor, &EditorViewController::filesDropped, this, &PaneViewController::filesDropped);
    connect(editor, &EditorViewController::messageShown, this, &PaneViewController::messageShown);
    connect(&editor->counter(), &TextCounter::changed, this, &PaneViewController::countsChanged);
    connect(editor, &EditorViewController::stateChanged, this, [this, editor] {
        if (editor == m_currentEditor) {
            emit stateChanged();
        }
    });
    updateName(*editor);
    m_container->layout()->addWidget(editor);
    return editor;
}

void PaneViewController::dropEditorsOfClosedTabs()
{
    std::erase_if(m_editors, [this](const auto &entry) {
        if (m_content.holds(*entry.first)) {
            return false;
        }
        // The command that closes it may be a key of its own text.
        EditorViewController *editor = entry.second;
        editor->blockSignals(true);
        editor->hide();
        editor->deleteLater();
        return true;
    });
}

void PaneViewController::saveViewState()
{
    if (m_currentEditor) {
        m_currentEditor->saveViewState();
    }
}

void PaneViewController::focusEditor()
{
    if (m_currentEditor) {
        m_currentEditor->textView().setFocus();
    }
}
