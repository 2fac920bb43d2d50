// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// The commands of a window's menus and tool bar that concern its current document, and when each can be used.

#include "Base/Pasteboard.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Desktop/Desktop.h"
#include "Highlighting/LanguageRegistry.h"
#include "Model/DocumentStore.h"
#include "Model/RecentDocuments.h"
#include "Session/SessionKeeper.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
#include "UI/WorkspaceViewController.h"
#include "Widgets/AlertPresenter.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr auto lastFolderKey = "io.panels.lastDirectory"_L1;
constexpr std::chrono::seconds shortFlash{2};
constexpr std::chrono::seconds longFlash{5};

QString folderOf(const QString &path)
{
    return QFileInfo(path).path();
}

QString nameOf(const QString &path)
{
    return QFileInfo(path).fileName();
}

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
        action<&Self::openDocument>(Actions::openDocument),
        action<&Self::saveDocument, &Self::hasDocument>(Actions::saveDocument),
        action<&Self::saveDocumentAs, &Self::hasDocument>(Actions::saveDocumentAs),
        action<&Self::closeTab, &Self::hasDocument>(Actions::closeTab),
        action<&Self::finishWaiting, &Self::hasDocument>(Actions::finishWaiting),
        action<&Self::abortWaiting, &Self::hasDocument>(Actions::abortWaiting),
        action<&Self::revertDocumentToSaved, &Self::canRevert>(Actions::revertDocumentToSaved),
        action<&Self::makeBackup, &Self::hasFile>(Actions::makeBackup),
        action<&Self::openInTerminal, &Self::hasFile>(Actions::openInTerminal),
        action<&Self::moveDocumentToTrash, &Self::hasFile>(Actions::moveDocumentToTrash),
        action<&Self::revealInFinder, &Self::hasFile>(Actions::revealInFinder),
        action<&Self::copyFilePath, &Self::hasFile>(Actions::copyFilePath),
        action<&Self::showFindInterface, &Self::hasEditor>(Actions::showFindInterface),
        action<&Self::closeWindowFromVim>(Actions::closeWindowFromVim),
        action<&Self::goToLine, &Self::hasEditor>(Actions::goToLine),
        action<&Self::showVimKeyReference>(Actions::showVimKeyReference),
        action<&Self::showUserGuide>(Actions::showUserGuide),
        action<&Self::compareWithFileOnDisk, &Self::hasFile>(Actions::compareWithFileOnDisk),
        action<&Self::compareWithFile, &Self::hasDocument>(Actions::compareWithFile),
        action<&Self::compareWithOpenDocument, &Self::hasSeveralDocuments>(Actions::compareWithOpenDocument),
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
        action<&Self::selectLanguageFromMenu, &Self::languageState>(Actions::selectLanguage),
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

// Enabling

bool WorkspaceViewController::hasFile() const
{
    const TextDocument *document = currentDocument();
    return document && !document->isUntitled();
}

bool WorkspaceViewController::canRevert() const
{
    return hasFile() && currentDocument()->hasUnsavedText();
}

bool WorkspaceViewController::hasSeveralTabs() const
{
    return m_activePane && m_activePane->count() > 1;
}

bool WorkspaceViewController::hasSeveralTabsInAll() const
{
    int count = 0;
    for (const PaneViewController *pane : m_panes) {
        count += pane->count();
    }
    return count > 1;
}

ActionState WorkspaceViewController::themeState(const ActionSender &sender) const
{
    return {.checkMark =
                sender.represented.toString() == m_services.preferences.value(Settings::themeName) ? CheckMark::on : CheckMark::none};
}

ActionState WorkspaceViewController::languageState(const ActionSender &sender) const
{
    const TextDocument *document = currentDocument();
    const bool isOn = document && document->language().id() == sender.represented.toString();
    return {.isEnabled = document != nullptr, .checkMark = isOn ? CheckMark::on : CheckMark::none};
}

// Questions and answers

void WorkspaceViewController::beep()
{
    m_services.presenter.beep();
}

void WorkspaceViewController::presentError(const QString &description, const QString &recoverySuggestion)
{
    m_services.presenter.present(Alert::forError(description, recoverySuggestion), window(), {});
}

void WorkspaceViewController::presentError(const TextFile::ReadError &error)
{
    presentError(error.description(), error.recoverySuggestion().value_or(QString()));
}

void WorkspaceViewController::present(const Alert &alert, std::function<void(int button)> completion)
{
    m_services.presenter.present(alert, window(),
                                 [completion = std::move(completion)](const AlertReply &reply) { completion(reply.button); });
}

// Opening and saving

QString WorkspaceViewController::panelFolder() const
{
    QString last = m_services.defaults.string(lastFolderKey);
    if (!last.isEmpty() && QFileInfo::exists(last)) {
        return last;
    }
    return hasFile() ? folderOf(currentDocument()->path()) : QDir::homePath();
}

void WorkspaceViewController::rememberPanelFolder(const QString &path)
{
    m_services.defaults.set(lastFolderKey, folderOf(path));
}

void WorkspaceViewController::openDocument()
{
    m_services.presenter.present(OpenPanel{.choice = OpenPanel::Choice::files, .startFolder = panelFolder()}, window(),
                                 [this](const QStringList &paths) {
                                     if (!paths.isEmpty()) {
                                         rememberPanelFolder(paths.first());
                                         open(paths);
                                     }
                                 });
}

void WorkspaceViewController::saveDocument()
{
    if (TextDocument *document = currentDocument()) {
        save(*document, [](bool) {});
    }
}

void WorkspaceViewController::saveDocumentAs()
{
    if (TextDocument *document = currentDocument()) {
        saveAs(*document, [](bool) {});
    }
}

void WorkspaceViewController::save(TextDocument &document, const Completion &completion)
{
    if (document.isUntitled()) {
        saveAs(document, completion);
        return;
    }
    const Result<void> saved = document.save(document.path());
    if (saved) {
        m_statusBar->flash(localized(u"Saved"), shortFlash);
    } else {
        presentError(saved.error().message);
    }
    completion(saved.has_value());
}

void WorkspaceViewController::saveAs(TextDocument &document, const Completion &completion)
{
    const SavePanel panel{.startFolder = document.isUntitled() ? panelFolder() : folderOf(document.path()),
                          .suggestedName = document.displayName()};
    m_services.presenter.present(panel, window(),
                                 [this, document = document.shared_from_this(), completion](const std::optional<QString> &path) {
                                     if (!path) {
                                         completion(false);
                                         return;
                                     }
                                     rememberPanelFolder(*path);
                                     const Result<void> saved = document->save(*path);
                                     if (saved) {
                                         // Until the session knows its file, it would not come back.
                                         m_services.keeper.keep();
                                         m_services.recent.note({*path});
                                         m_statusBar->flash(formatted(localized(u"Saved as “%@”"), nameOf(*path)), shortFlash);
                                     } else {
                                         presentError(saved.error().message);
                                     }
                                     completion(saved.has_value());
                                 });
}

/// The program that waits for the current document goes on with what was written.
void WorkspaceViewController::finishWaiting()
{
    if (TextDocument *document = currentDocument()) {
        document->setAwaited(TextDocument::Awaited::yes);
        document->hasUnsavedText() ? saveAndClose() : closeTab();
    }
}

/// It is told that nothing came of it.
void WorkspaceViewController::abortWaiting()
{
    if (TextDocument *document = currentDocument()) {
        document->setAwaited(TextDocument::Awaited::aborted);
        closeTab();
    }
}

void WorkspaceViewController::confirmClose(TextDocument &document, const Completion &completion)
{
    const Alert question{.messageText = formatted(localized(u"Do you want to save the changes made to “%@”?"), document.displayName()),
                         .informativeText = localized(u"Your changes will be lost if you don’t save them."),
                         .buttons = {{localized(u"Save")},
                                     {localized(u"Cancel"), AlertButtonRole::cancel},
                                     {localized(u"Don’t Save"), AlertButtonRole::destructive}}};
    present(question, [this, document = document.shared_from_this(), completion](int button) {
        if (button == AlertReply::firstButton) {
            save(*document, completion);
        } else {
            completion(button == AlertReply::thirdButton);
        }
    });
}

void WorkspaceViewController::revertDocumentToSaved()
{
    if (!hasFile()) {
        return;
    }
    const auto document = currentDocument()->shared_from_this();
    const Alert question{.messageText = formatted(localized(u"Revert “%@” to the version on disk?"), document->displayName()),
                         .informativeText = localized(u"Your unsaved changes will be lost."),
                         .buttons = {{localized(u"Revert")}, {localized(u"Cancel"), AlertButtonRole::cancel}}};
    present(question, [this, document](int button) {
        if (button != AlertReply::firstButton) {
            return;
        }
        if (const auto reverted = document->revertToFileOnDisk(); !reverted) {
            presentError(reverted.error());
        }
    });
}

// Files

void WorkspaceViewController::makeBackup()
{
    if (!hasFile() || currentDocument()->isWaiting()) {
        beep();
        return;
    }
    TextDocument &document = *currentDocument();
    const auto copy = TextFile::nextAvailableCopy(document.path());
    if (!copy) {
        presentError(formatted(localized(u"There is no free name for a copy of “%@” in its folder."), document.displayName()));
        return;
    }
    const Result<void> written = TextFile::write(document.storage().text(), *copy, document.encoding(), document.lineEnding());
    if (!written) {
        presentError(written.error().message);
        return;
    }
    m_statusBar->flash(formatted(localized(u"Copied to “%@”"), nameOf(*copy)), longFlash);
}

void WorkspaceViewController::openInTerminal()
{
    if (!hasFile()) {
        beep();
        return;
    }
    const auto opened =
        m_services.desktop.openTerminal(folderOf(currentDocument()->path()), m_services.preferences.value(Settings::terminalIdentifier));
    if (!opened) {
        presentError(opened.error().message);
    }
}

void WorkspaceViewController::moveDocumentToTrash()
{
    if (!hasFile()) {
        beep();
        return;
    }
    const auto document = currentDocument()->shared_from_this();
    const QString consequence = document->hasUnsavedText()
                                    ? localized(u"This file has unsaved changes. They will not be written before it is moved.")
                                    : localized(u"You can put it back from the Trash.");
    const Alert question{.messageText = formatted(localized(u"Move “%@” to the Trash?"), document->displayName()),
                         .informativeText = consequence,
                         .buttons = {{localized(u"Move to Trash")}, {localized(u"Cancel"), AlertButtonRole::cancel}}};
    present(question, [this, document, path = document->path()](int button) {
        if (button != AlertReply::firstButton) {
            return;
        }
        // Another window may have given it a file that nobody was asked about.
        if (document->path() == path) {
            trash(*document);
        } else {
            beep();
        }
    });
}

void WorkspaceViewController::trash(TextDocument &document)
{
    if (const Result<void> moved = m_services.desktop.moveToTrash(document.path()); !moved) {
        presentError(moved.error().message);
        return;
    }
    m_services.documents.remove(document);
    removeFromAllPanes(document);
}

void WorkspaceViewController::revealInFinder()
{
    if (hasFile()) {
        m_services.desktop.reveal(currentDocument()->path(), [workspace = QPointer(this)](const QString &problem) {
            if (workspace) {
                workspace->presentError(problem);
            }
        });
    } else {
        beep();
    }
}

void WorkspaceViewController::copyFilePath()
{
    if (hasFile()) {
        m_services.pasteboard.setText(currentDocument()->path());
    } else {
        beep();
    }
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
    const Alert question{.style = AlertStyle::informational,
                         .messageText = localized(u"Go to Line"),
                         .buttons = {{localized(u"Go")}, {localized(u"Cancel"), AlertButtonRole::cancel}},
                         .textField = Alert::TextField{.placeholder = localized(u"Line number")}};
    m_services.presenter.present(question, window(), [editor = QPointer(currentEditor())](const AlertReply &reply) {
        bool isNumber = false;
        const qint64 line = reply.text.trimmed().toLongLong(&isNumber, 10);
        if (editor && reply.button == AlertReply::firstButton && isNumber && line > 0) {
            editor->scrollToLine(qsizetype(line));
            editor->textView().setFocus();
        }
    });
}

void WorkspaceViewController::chooseLanguage(const Language &language)
{
    if (TextDocument *document = currentDocument()) {
        document->languageWasChosenManually = true;
        document->setLanguage(language);
    }
}

void WorkspaceViewController::selectLanguageFromMenu(const ActionSender &sender)
{
    if (const auto language = LanguageRegistry::withID(sender.represented.toString())) {
        chooseLanguage(*language);
    }
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
    m_services.preferences.reset(Settings::fontSize);
}

// From the status bar

void WorkspaceViewController::statusBarDidChooseLanguage(const Language &language)
{
    chooseLanguage(language);
}

void WorkspaceViewController::statusBarDidChooseEncoding(TextEncoding encoding)
{
    TextDocument *document = currentDocument();
    if (!document) {
        return;
    }
    if (document->isUntitled() || document->hasUnsavedText()) {
        document->setEncoding(encoding);
        return;
    }
    if (const auto read = document->reinterpret(encoding); !read) {
        presentError(read.error());
    }
}

void WorkspaceViewController::statusBarDidChooseLineEnding(int index)
{
    if (TextDocument *document = currentDocument(); document && index >= 0 && size_t(index) < lineEndings.size()) {
        document->setLineEnding(lineEndings[size_t(index)].ending);
    }
}

void WorkspaceViewController::statusBarDidChooseIndentation(Indentation indentation)
{
    m_services.preferences.set(Settings::tabWidth, indentation.width);
    m_services.preferences.set(Settings::insertSpaces, indentation.unit == Indentation::Unit::spaces);
}

void WorkspaceViewController::statusBarDidClickPosition()
{
    goToLine();
}
