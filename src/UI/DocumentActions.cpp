// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/DocumentActions.h"

#include "Base/Pasteboard.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Desktop/Desktop.h"
#include "Highlighting/LanguageRegistry.h"
#include "Model/DocumentStore.h"
#include "Model/RecentDocuments.h"
#include "Session/SessionKeeper.h"
#include "Session/SessionStore.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
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

DocumentActions::DocumentActions(const WorkspaceServices &services, const PaneLayout &layout, QWidget &widget)
    : m_services(services), m_layout(layout), m_widget(widget)
{}

const ActionRow *DocumentActions::actionFor(const Action &wanted) const
{
    using Self = DocumentActions;
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&Self::openDocument>(Actions::openDocument),
        action<&Self::saveDocument, &Self::hasDocument>(Actions::saveDocument),
        action<&Self::saveDocumentAs, &Self::hasDocument>(Actions::saveDocumentAs),
        action<&Self::revertDocumentToSaved, &Self::canRevert>(Actions::revertDocumentToSaved),
        action<&Self::revertWithoutAsking, &Self::hasFile>(Actions::revertWithoutAsking),
        action<&Self::makeBackup, &Self::hasFile>(Actions::makeBackup),
        action<&Self::openInTerminal, &Self::hasFile>(Actions::openInTerminal),
        action<&Self::moveDocumentToTrash, &Self::hasFile>(Actions::moveDocumentToTrash),
        action<&Self::revealInFinder, &Self::hasFile>(Actions::revealInFinder),
        action<&Self::copyFilePath, &Self::hasFile>(Actions::copyFilePath),
        action<&Self::showVimKeyReference>(Actions::showVimKeyReference),
        action<&Self::showUserGuide>(Actions::showUserGuide),
        action<&Self::compareWithFileOnDisk, &Self::hasFile>(Actions::compareWithFileOnDisk),
        action<&Self::compareWithFile, &Self::hasDocument>(Actions::compareWithFile),
        action<&Self::compareWithOpenDocument, &Self::hasSeveralDocuments>(Actions::compareWithOpenDocument),
        action<&Self::selectLanguageFromMenu, &Self::languageState>(Actions::selectLanguage),
    });
    return findAction(rows, wanted);
}

// Enabling

bool DocumentActions::hasFile() const
{
    const TextDocument *document = currentDocument();
    return document && !document->isUntitled();
}

bool DocumentActions::canRevert() const
{
    return hasFile() && currentDocument()->hasUnsavedText();
}

ActionState DocumentActions::languageState(const ActionSender &sender) const
{
    const TextDocument *document = currentDocument();
    const bool isOn = document && document->language().id() == sender.represented.toString();
    return {.isEnabled = document != nullptr, .checkMark = isOn ? CheckMark::on : CheckMark::none};
}

// Questions and answers

void DocumentActions::beep()
{
    m_services.presenter.beep();
}

void DocumentActions::presentError(const QString &description, const QString &recoverySuggestion)
{
    m_services.presenter.present(Alert::forError(description, recoverySuggestion), window(), {});
}

void DocumentActions::presentError(const TextFile::ReadError &error)
{
    presentError(error.description(), error.recoverySuggestion().value_or(QString()));
}

void DocumentActions::present(const Alert &alert, std::function<void(int button)> completion)
{
    m_services.presenter.present(alert, window(),
                                 [completion = std::move(completion)](const AlertReply &reply) { completion(reply.button); });
}

// Opening and saving

QString DocumentActions::panelFolder() const
{
    QString last = m_services.defaults.string(lastFolderKey);
    if (!last.isEmpty() && QFileInfo::exists(last)) {
        return last;
    }
    return hasFile() ? folderOf(currentDocument()->path()) : QDir::homePath();
}

void DocumentActions::rememberPanelFolder(const QString &path)
{
    m_services.defaults.set(lastFolderKey, folderOf(path));
}

void DocumentActions::openDocument()
{
    m_services.presenter.present(OpenPanel{.choice = OpenPanel::Choice::files, .startFolder = panelFolder()}, window(),
                                 [this](const QStringList &paths) {
                                     if (!paths.isEmpty()) {
                                         rememberPanelFolder(paths.first());
                                         emit filesChosen(paths);
                                     }
                                 });
}

void DocumentActions::saveDocument()
{
    if (TextDocument *document = currentDocument()) {
        save(*document, [](bool) {});
    }
}

void DocumentActions::saveDocumentAs()
{
    if (TextDocument *document = currentDocument()) {
        saveAs(*document, [](bool) {});
    }
}

void DocumentActions::save(TextDocument &document, const Completion &completion)
{
    if (document.isUntitled()) {
        saveAs(document, completion);
        return;
    }
    const Result<void> saved = document.save(document.path());
    if (saved) {
        emit messageShown(localized(u"Saved"), shortFlash);
    } else {
        presentError(saved.error().message);
    }
    completion(saved.has_value());
}

void DocumentActions::saveAs(TextDocument &document, const Completion &completion)
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
                                         emit messageShown(formatted(localized(u"Saved as “%@”"), nameOf(*path)), shortFlash);
                                     } else {
                                         presentError(saved.error().message);
                                     }
                                     completion(saved.has_value());
                                 });
}

void DocumentActions::confirmClose(TextDocument &document, const Completion &completion)
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

void DocumentActions::confirmClosing(const PaneLayout::Documents &documents, const Completion &completion)
{
    QStringList names;
    for (const auto &document : documents) {
        names << document->displayName();
    }
    const bool isOne = documents.size() == 1;
    const QString consequence =
        !isOne && m_services.session.keepsUnsavedText()
            ? localized(u"Unsaved changes are kept as local drafts and will be restored the next time you open Quillet.")
            : localized(u"Your changes will be lost if you don’t save them.");
    const Alert question{.messageText = isOne ? formatted(localized(u"Do you want to save the changes made to “%@”?"), names.first())
                                              : formatted(localized(u"You have %d documents with unsaved changes."), int(documents.size())),
                         .informativeText = isOne ? consequence : names.join(u", "_s) + u"\n\n"_s + consequence,
                         .buttons = {{localized(isOne ? u"Save" : u"Save All")},
                                     {localized(u"Cancel"), AlertButtonRole::cancel},
                                     {localized(u"Close Without Saving"), AlertButtonRole::destructive}}};
    m_services.presenter.present(question, window(), [this, documents, completion](const AlertReply &reply) {
        if (reply.button == AlertReply::firstButton) {
            saveAll(documents, completion);
        } else {
            completion(reply.button == AlertReply::thirdButton);
        }
    });
}

void DocumentActions::saveAll(const PaneLayout::Documents &documents, const Completion &completion)
{
    if (documents.empty()) {
        completion(true);
        return;
    }
    save(*documents.front(), [this, documents, completion](bool isSaved) {
        if (isSaved) {
            saveAll(PaneLayout::Documents(documents.begin() + 1, documents.end()), completion);
        } else {
            completion(false);
        }
    });
}

void DocumentActions::revertDocumentToSaved()
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

/// A file that cannot be read leaves the text as it is.
void DocumentActions::revertWithoutAsking()
{
    if (!hasFile()) {
        return;
    }
    if (const auto reverted = currentDocument()->revertToFileOnDisk(); !reverted) {
        presentError(reverted.error());
    }
}

// Files

void DocumentActions::makeBackup()
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
    emit messageShown(formatted(localized(u"Copied to “%@”"), nameOf(*copy)), longFlash);
}

void DocumentActions::openInTerminal()
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

void DocumentActions::moveDocumentToTrash()
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

void DocumentActions::trash(TextDocument &document)
{
    if (const Result<void> moved = m_services.desktop.moveToTrash(document.path()); !moved) {
        presentError(moved.error().message);
        return;
    }
    m_services.documents.remove(document);
}

void DocumentActions::revealInFinder()
{
    if (hasFile()) {
        m_services.desktop.reveal(currentDocument()->path(), [self = QPointer(this)](const QString &problem) {
            if (self) {
                self->presentError(problem);
            }
        });
    } else {
        beep();
    }
}

void DocumentActions::copyFilePath()
{
    if (hasFile()) {
        m_services.pasteboard.setText(currentDocument()->path());
    } else {
        beep();
    }
}

// The text

void DocumentActions::chooseLanguage(const Language &language)
{
    if (TextDocument *document = currentDocument()) {
        document->languageWasChosenManually = true;
        document->setLanguage(language);
    }
}

void DocumentActions::selectLanguageFromMenu(const ActionSender &sender)
{
    if (const auto language = LanguageRegistry::withID(sender.represented.toString())) {
        chooseLanguage(*language);
    }
}

void DocumentActions::chooseEncoding(TextEncoding encoding)
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

void DocumentActions::chooseLineEnding(LineEnding lineEnding)
{
    if (TextDocument *document = currentDocument()) {
        document->setLineEnding(lineEnding);
    }
}
