// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TypedDestinations.h"

#include "Base/FilePath.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Editor/EditorExCommands.h"
#include "Editor/EditorViewController.h"
#include "Settings/Preferences.h"
#include "Settings/Settings.h"
#include "Text/LineEditing.h"
#include "Text/LineIndex.h"
#include "UI/WorkspaceViewController.h"
#include "Vim/VimConfiguration.h"
#include "Widgets/AlertPresenter.h"

#include <QPointer>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr Scheduler::Milliseconds messageTime{8000};

PaneLayout::Documents activeTabs(const PaneLayout &layout)
{
    return layout.isEmpty() ? PaneLayout::Documents() : layout.active()->tabs;
}

} // namespace

TypedDestinations::TypedDestinations(const WorkspaceServices &services, WorkspaceViewController &workspace)
    : m_services(services), m_workspace(workspace)
{
    connect(&workspace, &WorkspaceViewController::currentDocumentChanged, this, &TypedDestinations::noteCurrent);
}

void TypedDestinations::noteCurrent()
{
    const TextDocument *document = m_workspace.currentDocument();
    if (!document) {
        return;
    }
    if (document->id() != m_current.id) {
        m_other = m_current;
    }
    m_current = {document->id(), document->path()};
    if (VimConfiguration *configuration = m_services.vimConfiguration) {
        configuration->setAlternateFile(m_other.path);
    }
}

/// A file that was closed is opened again.
void TypedDestinations::showOther()
{
    const auto &documents = m_services.documents.documents();
    const auto open = std::ranges::find(documents, m_other.id, [](const auto &document) { return document->id(); });
    if (open != documents.end()) {
        m_workspace.showDocument(**open);
    } else if (!m_other.path.isEmpty()) {
        m_workspace.open({m_other.path});
    } else {
        m_workspace.statusBar().flash(localized(u"There was no other text before this one"), messageTime);
    }
}

const ActionRow *TypedDestinations::actionFor(const Action &wanted) const
{
    using Self = TypedDestinations;
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&Self::editFile>(Actions::editFile),
        action<&Self::showTab>(Actions::showTab),
        action<&Self::listTabs>(Actions::listTabs),
        action<&Self::goToPlace>(Actions::goToPlace),
        action<&Self::closeWindow>(Actions::closeWindowFromVim),
    });
    return findAction(rows, wanted);
}

/// Opens the file of that name, or without one reads the document's own again, without a question.
void TypedDestinations::editFile(const ActionSender &sender)
{
    if (const QString name = sender.represented.toString(); name.isEmpty()) {
        perform(Actions::revertWithoutAsking);
    } else if (name == u"#") {
        showOther();
    } else {
        // As in Vim, a file that is not there is one to be written.
        const bool isExact = m_services.preferences.value(Settings::vimExact);
        m_workspace.open({absoluteFilePath(name, workingFolder())},
                         isExact ? TextDocument::MissingFile::isMade : TextDocument::MissingFile::isError);
    }
}

/// What is represented is its number, from 1, or a part of the name of the only one that has it, or "#" for the one before.
void TypedDestinations::showTab(const ActionSender &sender)
{
    const QString wanted = sender.represented.toString();
    if (wanted == u"#") {
        showOther();
        return;
    }
    const PaneLayout::Documents tabs = activeTabs(m_workspace.paneLayout());
    bool isNumber = false;
    int tab = wanted.toInt(&isNumber) - 1;
    if (!isNumber) {
        const auto isMeant = [&wanted](const PaneLayout::Document &document) { return document->displayName().contains(wanted); };
        const auto found = std::ranges::find_if(tabs, isMeant);
        tab = std::ranges::count_if(tabs, isMeant) == 1 ? int(found - tabs.begin()) : -1;
    }
    if (tab < 0 || tab >= int(tabs.size())) {
        m_workspace.statusBar().flash(formatted(localized(u"No such tab: %@"), wanted), messageTime);
        return;
    }
    m_workspace.selectTab(tab);
}

/// With their numbers; "%" marks the one in front, "#" the one before, and "+" those with unsaved changes.
void TypedDestinations::listTabs()
{
    constexpr int numberWidth = 3;
    QStringList rows;
    for (const PaneLayout::Document &document : activeTabs(m_workspace.paneLayout())) {
        const QChar place = document->id() == m_current.id ? u'%' : document->id() == m_other.id ? u'#' : u' ';
        const QString name = document->isUntitled() ? document->displayName() : shownPath(document->path());
        const QChar edited = document->isDirty() ? u'+' : u' ';
        rows << u"%1 %2 %3 %4"_s.arg(QString::number(rows.size() + 1).rightJustified(numberWidth), QString(place), QString(edited), name);
    }
    if (EditorViewController *editor = m_workspace.currentEditor()) {
        editor->exCommands().showList(localized(u"Tabs"), rows.join(u'\n'));
    }
}

/// A file is opened if it is not.
void TypedDestinations::goToPlace(const ActionSender &sender)
{
    const QString represented = sender.represented.toString();
    const auto line = static_cast<LineNumber>(represented.section(u' ', 0, 0).toLongLong());
    const qsizetype column = represented.section(u' ', 1, 1).toLongLong();
    const QString name = represented.section(u' ', 2);
    const auto &documents = m_services.documents.documents();
    const auto text = std::ranges::find(documents, name, [](const auto &document) { return document->id().toString(); });
    const PaneLayout::Document document = text != documents.end() ? *text
                                          : name.startsWith(u'/') ? m_workspace.open({name}).front()
                                                                  : nullptr;
    if (!document) {
        m_services.presenter.beep();
        return;
    }
    m_workspace.showDocument(*document);
    document->arrival().whenOver([destinations = QPointer(this), shown = document.get(), line, column] {
        if (destinations) {
            const auto twin = shown->arrival().failure().twin;
            destinations->goToColumn(twin ? *twin : *shown, line, column);
        }
    });
}

void TypedDestinations::goToColumn(TextDocument &document, LineNumber line, qsizetype column)
{
    const Rope &text = document.storage().text();
    m_workspace.goTo(document, line, column > 0 ? column : LineEditing::leadingBlanks(text, LineIndex::startOfLine(line, text)).size() + 1);
    m_workspace.focusEditor();
}

void TypedDestinations::closeWindow()
{
    m_workspace.window()->close();
}
