// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// The commands of a window that concern its panes, its tabs and the look of its texts, and when each can be used.

#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Model/TextDocument.h"
#include "Settings/Preferences.h"
#include "UI/MissingCharactersPanel.h"
#include "UI/TextIndentationMenu.h"
#include "UI/WorkspaceViewController.h"
#include "Widgets/AlertPresenter.h"

#include <QPointer>

#include <array>

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
        action<&Self::showFindInterface, &Self::hasEditor>(Actions::showFindInterface),
        action<&Self::goToLine, &Self::hasEditor>(Actions::goToLine),
        action<&Self::listMissingCharacters, &Self::hasMissingCharacters>(Actions::listMissingCharacters),
        action<&Self::splitEditorRight>(Actions::splitEditorRight),
        action<&Self::splitEditorDown>(Actions::splitEditorDown),
        action<&Self::closeSplit, &Self::hasSeveralPanes>(Actions::closeSplit),
        action<&Self::closeOtherSplits, &Self::hasSeveralPanes>(Actions::closeOtherSplits),
        action<&Self::focusNextPane, &Self::hasSeveralPanes>(Actions::focusNextPane),
        action<&Self::focusPreviousPane, &Self::hasSeveralPanes>(Actions::focusPreviousPane),
        action<&Self::focusNeighbour<Qt::Horizontal, -1>, &Self::hasSeveralPanes>(Actions::focusPaneLeft),
        action<&Self::focusNeighbour<Qt::Horizontal, 1>, &Self::hasSeveralPanes>(Actions::focusPaneRight),
        action<&Self::focusNeighbour<Qt::Vertical, -1>, &Self::hasSeveralPanes>(Actions::focusPaneAbove),
        action<&Self::focusNeighbour<Qt::Vertical, 1>, &Self::hasSeveralPanes>(Actions::focusPaneBelow),
        action<&Self::focusLastPane, &Self::hasSeveralPanes>(Actions::focusLastPane),
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
