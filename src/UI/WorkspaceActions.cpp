// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// The commands of a window that concern its panes, its tabs and the look of its texts, and when each can be used.

#include "Base/FilePath.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Model/TextDocument.h"
#include "Settings/Preferences.h"
#include "Text/LineEditing.h"
#include "Text/LineIndex.h"
#include "UI/MissingCharactersPanel.h"
#include "UI/TextIndentationMenu.h"
#include "UI/WorkspaceViewController.h"
#include "Widgets/AlertPresenter.h"

#include <QPointer>

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr Scheduler::Milliseconds messageTime{8000};

} // namespace

template<const Setting<bool> &setting>
void WorkspaceViewController::toggle()
{
    m_services.preferences.toggle(setting);
}

template<const Setting<bool> &setting>
ActionState WorkspaceViewController::stateOf() const
{
    return {.checkMark = m_services.preferences.value(setting) ? CheckMark::on : CheckMark::none};
}

template<const Setting<bool> &setting>
constexpr ActionRow WorkspaceViewController::toggleRow(const Action &toggled)
{
    return action<&WorkspaceViewController::toggle<setting>, &WorkspaceViewController::stateOf<setting>>(toggled);
}

const ActionRow *WorkspaceViewController::actionFor(const Action &wanted) const
{
    using Self = WorkspaceViewController;
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&Self::newDocument>(Actions::newDocument),
        action<&Self::editFile>(Actions::editFile),
        action<&Self::showTab>(Actions::showTab),
        action<&Self::listTabs>(Actions::listTabs),
        action<&Self::goToPlace>(Actions::goToPlace),
        action<&Self::showFindInterface, &Self::hasEditor>(Actions::showFindInterface),
        action<&Self::closeWindowFromVim>(Actions::closeWindowFromVim),
        action<&Self::goToLine, &Self::hasEditor>(Actions::goToLine),
        action<&Self::listMissingCharacters, &Self::hasMissingCharacters>(Actions::listMissingCharacters),
        action<&Self::splitEditorRight>(Actions::splitEditorRight),
        action<&Self::splitEditorDown>(Actions::splitEditorDown),
        action<&Self::closeSplit, &Self::hasSeveralPanes>(Actions::closeSplit),
        action<&Self::closeOtherSplits, &Self::hasSeveralPanes>(Actions::closeOtherSplits),
        action<&Self::focusNextPane, &Self::hasSeveralPanes>(Actions::focusNextPane),
        action<&Self::focusPreviousPane, &Self::hasSeveralPanes>(Actions::focusPreviousPane),
        action<&Self::toggleSplitOrientation, &Self::hasSeveralPanes>(Actions::toggleSplitOrientation),
        action<&Self::moveTabToNewWindow, &Self::hasSeveralTabsInAll>(Actions::moveTabToNewWindow),
        action<&Self::selectNextTab, &Self::hasSeveralTabs>(Actions::selectNextTab),
        action<&Self::selectPreviousTab, &Self::hasSeveralTabs>(Actions::selectPreviousTab),
        action<&Self::selectTabByNumber>(Actions::selectTab1),
        action<&Self::selectTheme, &Self::themeState>(Actions::selectTheme),
        toggleRow<Settings::showLineNumbers>(Actions::toggleLineNumbers),
        toggleRow<Settings::wrapLines>(Actions::toggleLineWrap),
        toggleRow<Settings::showInvisibles>(Actions::toggleInvisibles),
        toggleRow<Settings::highlightCurrentLine>(Actions::toggleCurrentLineHighlight),
        action<&Self::increaseFontSize>(Actions::increaseFontSize),
        action<&Self::decreaseFontSize>(Actions::decreaseFontSize),
        action<&Self::resetFontSize>(Actions::resetFontSize),
    });
    return findAction(rows, wanted);
}

ActionState WorkspaceViewController::themeState(const ActionSender &sender) const
{
    return {.checkMark =
                sender.represented.toString() == m_services.preferences.value(Settings::themeName) ? CheckMark::on : CheckMark::none};
}

void WorkspaceViewController::beep()
{
    m_services.presenter.beep();
}

/// Opens the file of that name, or without one reads the document's own again, without a question.
void WorkspaceViewController::editFile(const ActionSender &sender)
{
    if (const QString name = sender.represented.toString(); name.isEmpty()) {
        perform(Actions::revertWithoutAsking);
    } else {
        open({absoluteFilePath(name, workingFolder())});
    }
}

/// What is represented is its number, from 1, or a part of the name of the only one that has it.
void WorkspaceViewController::showTab(const ActionSender &sender)
{
    const QString wanted = sender.represented.toString();
    const PaneLayout::Documents tabs = m_layout.isEmpty() ? PaneLayout::Documents() : m_layout.active()->tabs;
    bool isNumber = false;
    int tab = wanted.toInt(&isNumber) - 1;
    if (!isNumber) {
        const auto isMeant = [&wanted](const PaneLayout::Document &document) { return document->displayName().contains(wanted); };
        const auto found = std::ranges::find_if(tabs, isMeant);
        tab = std::ranges::count_if(tabs, isMeant) == 1 ? int(found - tabs.begin()) : -1;
    }
    if (tab < 0 || tab >= int(tabs.size())) {
        m_statusBar->flash(formatted(localized(u"No such tab: %@"), wanted), messageTime);
        return;
    }
    selectTab(tab);
}

/// A file is opened if it is not.
void WorkspaceViewController::goToPlace(const ActionSender &sender)
{
    const QString represented = sender.represented.toString();
    const auto line = static_cast<LineNumber>(represented.section(u' ', 0, 0).toLongLong());
    const qsizetype column = represented.section(u' ', 1, 1).toLongLong();
    const QString name = represented.section(u' ', 2);
    const auto &documents = m_services.documents.documents();
    const auto text = std::ranges::find(documents, name, [](const auto &document) { return document->id().toString(); });
    const PaneLayout::Document document = text != documents.end() ? *text : name.startsWith(u'/') ? open({name}).front() : nullptr;
    if (!document) {
        beep();
        return;
    }
    showDocument(*document);
    document->arrival().whenOver([workspace = QPointer(this), shown = document.get(), line, column] {
        if (workspace) {
            const auto twin = shown->arrival().failure().twin;
            workspace->goToColumn(twin ? *twin : *shown, line, column);
        }
    });
}

void WorkspaceViewController::goToColumn(TextDocument &document, LineNumber line, qsizetype column)
{
    const Rope &text = document.storage().text();
    goTo(document, line, column > 0 ? column : LineEditing::leadingBlanks(text, LineIndex::startOfLine(line, text)).size() + 1);
    focusEditor();
}

/// With their numbers; "+" marks those with unsaved changes.
void WorkspaceViewController::listTabs()
{
    QStringList names;
    if (!m_layout.isEmpty()) {
        for (const PaneLayout::Document &document : m_layout.active()->tabs) {
            names << u"%1 %2%3"_s.arg(names.size() + 1).arg(document->displayName(), document->isDirty() ? u" +"_s : QString());
        }
    }
    m_statusBar->flash(names.join(u" │ "_s), messageTime);
}

// The text

void WorkspaceViewController::showFindInterface()
{
    if (EditorViewController *editor = currentEditor()) {
        editor->textView().setFocus();
        editor->perform(Actions::find);
    } else {
        beep();
    }
}

void WorkspaceViewController::goToLine()
{
    if (!currentEditor()) {
        return;
    }
    const qsizetype lines = currentDocument()->storage().text().lineCount();
    const Alert question{.style = AlertStyle::informational,
                         .messageText = localized(u"Go to Line"),
                         .informativeText = formatted(localized(u"A line number from 1 to %d:"), lines),
                         .buttons = {{localized(u"Go")}, {localized(u"Cancel"), AlertButtonRole::cancel}},
                         .textField = Alert::TextField{.placeholder = localized(u"Line number")}};
    m_services.presenter.present(question, window(), [editor = QPointer(currentEditor())](const AlertReply &reply) {
        bool isNumber = false;
        const qint64 line = reply.text.trimmed().toLongLong(&isNumber, 10);
        if (editor && reply.button == AlertReply::firstButton && isNumber && line > 0) {
            editor->scrollToLine(static_cast<LineNumber>(line));
            editor->textView().setFocus();
        }
    });
}

bool WorkspaceViewController::hasMissingCharacters() const
{
    const TextDocument *document = currentDocument();
    return document && document->encodingDetails().missing().count() != 0;
}

void WorkspaceViewController::listMissingCharacters()
{
    EditorViewController *editor = currentEditor();
    if (!editor || !hasMissingCharacters()) {
        beep();
        return;
    }
    if (!m_missingCharacters) {
        m_missingCharacters = new MissingCharactersPanel(m_services.scheduler, m_services.notifications, this);
    }
    m_missingCharacters->showFor(*editor);
}

void WorkspaceViewController::selectTheme(const ActionSender &sender)
{
    const QString name = sender.represented.toString();
    if (!name.isEmpty()) {
        m_services.preferences.set(Settings::themeName, name);
    }
}

void WorkspaceViewController::changeFontSize(int steps)
{
    m_services.preferences.set(Settings::fontSize, m_services.preferences.value(Settings::fontSize) + steps);
}

void WorkspaceViewController::resetFontSize()
{
    m_services.preferences.unset(Settings::fontSize);
}

void WorkspaceViewController::chooseIndentation(Indentation indentation)
{
    m_services.preferences.set(Settings::tabWidth, indentation.width);
    m_services.preferences.set(Settings::insertSpaces, indentation.unit == Indentation::Unit::spaces);
    if (const TextDocument *document = currentDocument(); document && document->conventions.indentation() != indentation) {
        const auto &conventions = document->conventions;
        m_statusBar->flash(formatted(localized(u"This text stays with %@ (%@). “This Text” in the same menu changes it."),
                                     titleOf(conventions.indentation()), titleOf(conventions.source(), document->language())),
                           messageTime);
    }
}
