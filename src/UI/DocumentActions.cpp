// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/DocumentActions.h"

#include "Base/Administrator.h"
#include "Base/FilePath.h"
#include "Base/HomePath.h"
#include "Base/Pasteboard.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Desktop/Desktop.h"
#include "Files/CharacterSet.h"
#include "Highlighting/LanguageRegistry.h"
#include "Model/DocumentStore.h"
#include "Model/FirstLine.h"
#include "Model/RecentDocuments.h"
#include "Session/SessionKeeper.h"
#include "Session/SessionStore.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
#include "UI/MissingCharactersPanel.h"
#include "Widgets/AlertPresenter.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

#include <array>
#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

constexpr auto lastFolderKey = "io.panels.lastDirectory"_L1;
constexpr std::chrono::seconds shortFlash{2};

QString folderOf(const QString &path)
{
    return QFileInfo(path).path();
}

QString changedElsewhere(const TextDocument &document)
{
    return formatted(localized(u"“%@” was not saved, because another program changed it. Its tab says what can be done."),
                     document.displayName());
}

/// Empty for a file that was replaced as a whole, by the user.
QString remarkOn(AtomicFile::InPlace inPlace, DocumentFile::Authority authority)
{
    using InPlace = AtomicFile::InPlace;
    if (authority == DocumentFile::Authority::administrator) {
        return localized(u"Saved as administrator");
    }
    switch (inPlace) {
    case InPlace::no:
        return {};
    case InPlace::hardLinks:
        return localized(u"Saved in place, so that the file keeps its other names (hard links)");
    case InPlace::folder:
        return localized(u"Saved in place, because the folder of the file cannot be written to");
    case InPlace::owner:
        return localized(u"Saved in place, so that the file keeps its owner");
    case InPlace::attributes:
        return localized(u"Saved in place, so that the file keeps its permissions");
    case InPlace::mount:
        return localized(u"Saved in place, because the file cannot be replaced where it is");
    }
    Q_UNREACHABLE();
}

} // namespace

QString nameOfFile(const QString &path)
{
    return shownPath(QFileInfo(path).fileName());
}

DocumentActions::DocumentActions(const WorkspaceServices &services, const PaneLayout &layout, QWidget &widget)
    : m_services(services), m_layout(layout), m_widget(widget)
{}

const ActionRow *DocumentActions::actionFor(const Action &wanted) const
{
    using Self = DocumentActions;
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&Self::openDocument>(Actions::openDocument),
        action<&Self::askForFileAndEncoding>(Actions::openWithEncoding),
        action<&Self::reopenWithEncoding, &Self::canReopen>(Actions::reopenWithEncoding),
        action<&Self::saveDocument, &Self::hasDocument>(Actions::saveDocument),
        action<&Self::saveDocumentAs, &Self::hasDocument>(Actions::saveDocumentAs),
        action<&Self::saveAllDocuments, &Self::hasUnsavedDocuments>(Actions::saveAllDocuments),
        action<&Self::revertDocumentToSaved, &Self::canRevert>(Actions::revertDocumentToSaved),
        action<&Self::revertWithoutAsking, &Self::hasFile>(Actions::revertWithoutAsking),
        action<&Self::makeBackup, &Self::hasFile>(Actions::makeBackup),
        action<&Self::openInTerminal, &Self::hasFile>(Actions::openInTerminal),
        action<&Self::moveDocumentToTrash, &Self::hasFile>(Actions::moveDocumentToTrash),
        action<&Self::revealInFinder, &Self::hasFileInTab>(Actions::revealInFinder),
        action<&Self::copyFilePath, &Self::hasFileInTab>(Actions::copyFilePath),
        action<&Self::showVimKeyReference>(Actions::showVimKeyReference),
        action<&Self::showUserGuide>(Actions::showUserGuide),
        action<&Self::compareWithFileOnDisk, &Self::hasFile>(Actions::compareWithFileOnDisk),
        action<&Self::compareWithFile, &Self::hasDocument>(Actions::compareWithFile),
        action<&Self::compareWithOrigin, &Self::hasOrigin>(Actions::compareWithOrigin),
        action<&Self::compareWithOpenDocument, &Self::hasSeveralDocuments>(Actions::compareWithOpenDocument),
        action<&Self::selectLanguageFromMenu, &Self::languageState>(Actions::selectLanguage),
    });
    return findAction(rows, wanted);
}

// Enabling

bool DocumentActions::hasFileInTab(const ActionSender &sender) const
{
    const auto document = documentOf(m_layout, sender);
    return document && !document->isUntitled();
}

bool DocumentActions::canRevert() const
{
    return hasFile() && currentDocument()->hasUnsavedText();
}

PaneLayout::Documents DocumentActions::unsavedDocuments() const
{
    PaneLayout::Documents unsaved = m_layout.documents();
    std::erase_if(unsaved, [](const auto &document) { return !document->hasUnsavedText(); });
    return unsaved;
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

TextDocument::ReadCompletion DocumentActions::errorPresenter()
{
    return [self = QPointer(this)](const Result<void, TextFile::ReadError> &read) {
        if (self && !read) {
            self->presentError(read.error());
        }
    };
}

void DocumentActions::present(const Alert &alert, std::function<void(int button)> completion)
{
    m_services.presenter.present(alert, window(),
                                 [completion = std::move(completion)](const AlertReply &reply) { completion(reply.button); });
}

// Opening and saving

QString DocumentActions::panelFolder() const
{
    const QString last = m_services.defaults.string(lastFolderKey);
    const QString own = hasFile() ? folderOf(currentDocument()->path()) : QString();
    for (const QString &folder : {last, own}) {
        if (isFolderThere(folder)) {
            return folder;
        }
    }
    return QDir::homePath();
}

/// The document's own, if there is one.
QString DocumentActions::folderBeside(const TextDocument &document) const
{
    const QString own = document.isUntitled() ? QString() : folderOf(document.path());
    return isFolderThere(own) ? own : panelFolder();
}

/// A panel in a folder that does not answer would hang.
bool DocumentActions::isFolderThere(const QString &folder) const
{
    bool isFound = false;
    if (!folder.isEmpty()) {
        auto looking = BackgroundTask::start(
            m_services.workers, [folder](const std::stop_token &) { return isThere(folder); }, [&isFound](bool found) { isFound = found; });
        std::ignore = looking.waitUntil(std::chrono::steady_clock::now() + m_services.documents.services().timeout);
    }
    return isFound;
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

/// Or writes the text to the file that the command names.
void DocumentActions::saveDocument(const ActionSender &sender)
{
    TextDocument *document = currentDocument();
    const QString name = sender.represented.toString().trimmed();
    if (document && name.isEmpty()) {
        save(*document, [](bool) {});
    } else if (document) {
        const auto existing = sender.tag == Actions::writeOver.tag ? Existing::replaced : Existing::kept;
        writeTo(absoluteFilePath(name, workingFolder()), *document, existing);
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
    if (document.isUntitled() && document.saves().isActive()) {
        // It is getting its file.
        document.saves().whenOver([self = QPointer(this), &document, completion](bool isWritten) {
            if (self && isWritten) {
                self->save(document, completion);
            } else if (self) {
                completion(false);
            }
        });
        return;
    }
    if (document.isUntitled()) {
        saveAs(document, completion);
        return;
    }
    attempt({.document = document, .completion = completion});
}

void DocumentActions::attempt(const Attempt &attempt)
{
    const bool isNew = attempt.path || attempt.document.file().isNew();
    const auto take = [self = QPointer(this), attempt, isNew](const Result<AtomicFile::InPlace> &saved) {
        if (self && saved) {
            self->handleSaved(attempt, *saved, isNew);
        } else if (self) {
            self->handleSaveError(attempt, saved.error());
        }
    };
    attempt.document.save(attempt.path.value_or(attempt.document.path()), take, attempt.manner);
}

void DocumentActions::handleSaved(const Attempt &done, AtomicFile::InPlace inPlace, bool isNew)
{
    const QString path = done.document.path();
    if (done.path) {
        // Until the session knows its file, it would not come back.
        m_services.keeper.keep();
    }
    if (isNew) {
        m_services.recent.note({path});
    }
    const QString remark = done.path ? QString() : remarkOn(inPlace, done.manner.authority);
    const QString plain = done.path ? formatted(localized(u"Saved as “%@”"), nameOfFile(path)) : localized(u"Saved");
    emit messageShown(remark.isEmpty() ? plain : remark, remark.isEmpty() ? shortFlash : longFlash);
    done.completion(true);
}

void DocumentActions::handleSaveError(const Attempt &failed, const Error &error)
{
    using Authority = DocumentFile::Authority;
    const auto document = failed.document.shared_from_this();
    const bool isOfUser = failed.manner.authority == Authority::user;
    if (error.code == TextFile::missingCharactersError) {
        askAboutMissingCharacters(*document, [this, document, failed](MissingCharactersAnswer answer) {
            if (answer == MissingCharactersAnswer::cancel) {
                failed.completion(false);
                return;
            }
            if (answer == MissingCharactersAnswer::saveInUtf8) {
                document->setEncoding(TextEncoding::utf8);
            } else {
                document->encodingDetails().replaceMissing();
            }
            attempt(failed);
        });
    } else if (error.code == ENOENT && !failed.path && failed.manner.missingFolder == DocumentFile::MissingFolder::isError &&
               (document->file().isNew() || !isFolderThere(folderOf(document->path())))) {
        askForFolder(failed);
    } else if ((error.code == EACCES || error.code == EPERM) && isOfUser) {
        offerOtherWays(failed, error);
    } else if (error.code == AtomicFile::changedError || error.code == Administrator::dismissedError) {
        // What the banner says at the same time, or the user has just chosen, needs no dialog.
        emit messageShown(error.message, longFlash);
        failed.completion(false);
    } else if (!isOfUser) {
        presentError(error.message);
        failed.completion(false);
    } else {
        Alert report = Alert::forError(error.message, localized(u"The text is as it was and can be saved somewhere else."));
        report.buttons = {{localized(u"OK"), AlertButtonRole::cancel}, {localized(u"Save As…")}};
        present(report, [this, document, completion = failed.completion](int button) {
            if (button == AlertReply::secondButton) {
                saveAs(*document, completion);
            } else {
                completion(false);
            }
        });
    }
}

/// Nothing is written before somebody has said what is to become of them.
void DocumentActions::askAboutMissingCharacters(TextDocument &document, std::function<void(MissingCharactersAnswer answer)> completion)
{
    constexpr size_t mostNamed = 3;
    const QString encoding = displayName(document.encoding());
    const CharacterSet *characters = document.encodingDetails().missing().characters();
    const Rope &text = document.storage().text();
    const qsizetype count = characters ? characters->countMissing(text, {0, text.length()}) : 0;
    QStringList named;
    if (characters) {
        for (const MissingCharacter &missing : missingCharactersOf(text, *characters, mostNamed)) {
            named << formatted(localized(u"“%@” in line %d"), text.toString(missing.range), qsizetype(missing.line));
        }
    }
    if (count > qsizetype(mostNamed)) {
        named << u"…"_s;
    }
    const Alert question{
        .messageText =
            count == 1 ? formatted(localized(u"“%@” has a character that %@ does not have."), document.displayName(), encoding)
                       : formatted(localized(u"“%@” has %d characters that %@ does not have."), document.displayName(), count, encoding),
        .informativeText =
            named.join(u", "_s) + u"\n\n"_s +
            localized(u"In UTF-8 all characters are kept; the file is in UTF-8 from then on. Replacing them puts “?” in their "
                      u"place, in the text and in the file."),
        .buttons = {{localized(u"Save in UTF-8")},
                    {localized(u"Cancel"), AlertButtonRole::cancel},
                    {localized(u"Replace with “?”"), AlertButtonRole::destructive}}};
    present(question, [completion = std::move(completion)](int button) {
        completion(button == AlertReply::firstButton   ? MissingCharactersAnswer::saveInUtf8
                   : button == AlertReply::thirdButton ? MissingCharactersAnswer::replace
                                                       : MissingCharactersAnswer::cancel);
    });
}

void DocumentActions::offerOtherWays(const Attempt &failed, const Error &error)
{
    const Administrator *administrator = m_services.documents.services().administrator;
    const bool canBeAuthorized = administrator && administrator->isAvailable();
    Alert question{.style = AlertStyle::critical, .messageText = error.message};
    if (canBeAuthorized) {
        question.informativeText = localized(u"To save it as administrator, the password of one is needed.");
        question.buttons.append({localized(u"Save as Administrator…")});
    }
    question.buttons.append({localized(u"Save As…")});
    question.buttons.append({localized(u"Cancel"), AlertButtonRole::cancel});
    const int saveAsButton = canBeAuthorized ? AlertReply::secondButton : AlertReply::firstButton;
    present(question, [this, document = failed.document.shared_from_this(), failed, canBeAuthorized, saveAsButton](int button) {
        if (button == saveAsButton) {
            saveAs(*document, failed.completion);
        } else if (canBeAuthorized && button == AlertReply::firstButton) {
            Attempt next = failed;
            next.manner.authority = DocumentFile::Authority::administrator;
            attempt(next);
        } else {
            failed.completion(false);
        }
    });
}

/// The file's folder does not exist either, or no longer.
void DocumentActions::askForFolder(const Attempt &failed)
{
    const auto document = failed.document.shared_from_this();
    const Alert question{
        .messageText = formatted(localized(u"The folder “%@” does not exist. Do you want to create it?"),
                                 shownPath(abbreviatedPath(folderOf(document->path())))),
        .informativeText = formatted(localized(u"“%@” is saved there."), document->displayName()),
        .buttons = {{localized(u"Create Folder")}, {localized(u"Cancel"), AlertButtonRole::cancel}, {localized(u"Save As…")}}};
    present(question, [this, document, failed](int button) {
        if (button == AlertReply::firstButton) {
            Attempt next = failed;
            next.manner.missingFolder = DocumentFile::MissingFolder::isMade;
            attempt(next);
        } else if (button == AlertReply::thirdButton) {
            saveAs(*document, failed.completion);
        } else {
            failed.completion(false);
        }
    });
}

void DocumentActions::saveAs(TextDocument &document, const Completion &completion)
{
    QString name = document.displayName();
    if (document.isUntitled() && !document.isGenerated() && !document.origin && m_services.preferences.value(Settings::nameByFirstLine)) {
        const QString proposed = fileNameFor(document.storage().text());
        name = proposed.isEmpty() ? localized(u"Untitled") : proposed;
    }
    const SavePanel panel{.startFolder = folderBeside(document), .suggestedName = name};
    m_services.presenter.present(panel, window(),
                                 [this, document = document.shared_from_this(), completion](const std::optional<QString> &path) {
                                     if (path) {
                                         rememberPanelFolder(*path);
                                         attempt({.document = *document, .path = *path, .completion = completion});
                                     } else {
                                         completion(false);
                                     }
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
            save(*document, [this, document, completion](bool isSaved) {
                if (isSaved && document->hasUnsavedText()) {
                    confirmClose(*document, completion); // of what was typed meanwhile
                } else {
                    completion(isSaved);
                }
            });
        } else {
            completion(button == AlertReply::thirdButton);
        }
    });
}

void DocumentActions::confirmClosing(const PaneLayout::Documents &documents, const std::function<void(Closing closing)> &completion)
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
            saveAll(documents, [completion](bool areSaved) { completion(areSaved ? Closing::saved : Closing::refused); });
        } else {
            completion(reply.button == AlertReply::thirdButton ? Closing::withoutSaving : Closing::refused);
        }
    });
}

/// Those of the window: first what has a file, and what of that cannot be saved is said once; then each of the others in turn.
void DocumentActions::saveAllDocuments()
{
    struct Run {
        PaneLayout::Documents untitled = {};
        bool hasFiles = false;
        size_t left = 0;
        QStringList problems = {};
    };
    const auto run = std::make_shared<Run>();
    const auto finish = [self = QPointer(this), run] {
        if (!self || run->left > 0) {
            return;
        }
        if (run->problems.isEmpty()) {
            if (run->hasFiles) {
                emit self->messageShown(localized(u"Saved"), shortFlash);
            }
            self->saveUntitled(run->untitled);
            return;
        }
        const qsizetype count = run->problems.size();
        const Alert alert =
            Alert::forError(count == 1 ? run->problems.first() : formatted(localized(u"%d files could not be saved."), count),
                            count == 1 ? QString() : run->problems.join(u'\n'));
        self->present(alert, [self, run](int) {
            if (self) {
                self->saveUntitled(run->untitled);
            }
        });
    };
    PaneLayout::Documents files;
    for (const auto &document : unsavedDocuments()) {
        (document->isUntitled() ? run->untitled : files).push_back(document);
    }
    run->hasFiles = !files.empty();
    run->left = files.size() + 1;
    for (const auto &document : files) {
        const auto take = [self = QPointer(this), run, finish, document,
                           isNew = document->file().isNew()](const Result<AtomicFile::InPlace> &saved) {
            if (saved && isNew && self) {
                self->m_services.recent.note({document->path()});
            } else if (!saved) {
                run->problems << (saved.error().code == AtomicFile::changedError ? changedElsewhere(*document) : saved.error().message);
            }
            --run->left;
            finish();
        };
        // It is written over by who looks at it.
        if (document->externalState() == TextDocument::ExternalState::conflicted) {
            take(failure({}, AtomicFile::changedError));
        } else {
            document->save(document->path(), take);
        }
    }
    --run->left;
    finish();
}

/// Each is seen when its name is asked for; who cancels is asked no more.
void DocumentActions::saveUntitled(PaneLayout::Documents documents)
{
    std::erase_if(documents, [](const auto &document) { return !document->isUntitled() || !document->hasUnsavedText(); });
    if (documents.empty()) {
        return;
    }
    const auto document = documents.front();
    documents.erase(documents.begin());
    emit documentMade(*document);
    saveAs(*document, [this, documents](bool isSaved) {
        if (isSaved) {
            saveUntitled(documents);
        }
    });
}

void DocumentActions::saveAll(const PaneLayout::Documents &documents, const Completion &completion)
{
    if (documents.empty()) {
        completion(true);
        return;
    }
    if (documents.front()->isUntitled()) {
        emit documentMade(*documents.front());
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
        document->revertToFileOnDisk(errorPresenter());
    });
}

/// A file that cannot be read leaves the text as it is, which is no reason to interrupt who asked for it without a question.
void DocumentActions::revertWithoutAsking()
{
    if (!hasFile()) {
        return;
    }
    currentDocument()->revertToFileOnDisk([self = QPointer(this)](const Result<void, TextFile::ReadError> &read) {
        if (self && !read) {
            emit self->messageShown(read.error().description(), longFlash);
        }
    });
}

// Files

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
    // What is being written would be there again.
    document.saves().whenOver([self = QPointer(this), &document](bool /*isWritten*/) {
        if (!self) {
            return;
        }
        const WorkspaceServices &services = self->m_services;
        document.requests().start(
            FileRequests::Kind::moving, services.documents.services().timeout,
            [&desktop = services.desktop, path = document.path()](const std::stop_token &) { return desktop.moveToTrash(path); },
            [self, &document](const Result<void> &moved) {
                if (!self) {
                    return;
                }
                if (!moved) {
                    self->presentError(moved.error().message);
                    return;
                }
                self->m_services.documents.remove(document);
            });
    });
}

void DocumentActions::revealInFinder(const ActionSender &sender)
{
    if (hasFileInTab(sender)) {
        m_services.desktop.reveal(documentOf(m_layout, sender)->path(), [self = QPointer(this)](const QString &problem) {
            if (self) {
                self->presentError(problem);
            }
        });
    } else {
        beep();
    }
}

void DocumentActions::copyFilePath(const ActionSender &sender)
{
    if (hasFileInTab(sender)) {
        m_services.pasteboard.setText(documentOf(m_layout, sender)->path());
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
    if (document->isUntitled() || document->file().isNew() || document->hasUnsavedText()) {
        document->setEncoding(encoding);
        return;
    }
    document->reinterpret(encoding, errorPresenter());
}

void DocumentActions::chooseLineEnding(LineEnding lineEnding)
{
    if (TextDocument *document = currentDocument()) {
        document->setLineEnding(lineEnding);
    }
}
