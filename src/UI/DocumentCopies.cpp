// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Files that get a document's text and do not become its own: backups, and what a command line names.

#include "Base/FilePath.h"
#include "Base/Translation.h"
#include "Model/DocumentStore.h"
#include "UI/DocumentActions.h"

#include <QFileInfo>
#include <QPointer>

namespace {

QString alreadyThere(const QString &path)
{
    return formatted(localized(u"“%@” exists already; nothing was written. “:w!” and the name write over it."), nameOfFile(path));
}

} // namespace

/// The file becomes that of a text that has none.
void DocumentActions::writeTo(const QString &path, TextDocument &document, Existing existing)
{
    if (document.arrival().isPending() || document.requests().isPending(FileRequests::Kind::copying)) {
        beep();
        return;
    }
    const DocumentServices &services = m_services.documents.services();
    struct Target {
        bool exists = false;
        QString identity;
    };
    document.requests().start(
        FileRequests::Kind::copying, services.timeout,
        [path, &files = services.files](const std::stop_token &) {
            return Target{files.access(encodedPath(path).constData(), F_OK) == 0, DocumentFile::identityOf(path)};
        },
        [self = QPointer(this), document = &document, path, existing](const Target &target) {
            if (!self) {
                return;
            }
            if (!document->isUntitled() && target.identity == document->file().identity()) {
                self->saveAtPath(*document, [](bool) {});
            } else if (target.exists && existing == Existing::kept) {
                emit self->messageShown(alreadyThere(path), longFlash);
            } else if (document->isUntitled()) {
                self->saveAt(path, *document, [](bool) {});
            } else {
                DocumentFile::Snapshot snapshot = snapshotOf(*document, path);
                snapshot.rescueFolder = self->m_services.documents.services().rescueFolder;
                snapshot.expected = existing == Existing::kept ? std::optional(AtomicFile::Expectation{}) : std::nullopt;
                self->writeFile(*document, snapshot);
            }
        });
}

void DocumentActions::writeFile(TextDocument &document, const DocumentFile::Snapshot &snapshot)
{
    const DocumentServices &services = m_services.documents.services();
    document.requests().start(
        FileRequests::Kind::copying, services.timeout,
        [snapshot, &files = services.files](const std::stop_token &stop) { return DocumentFile::write(snapshot, files, nullptr, stop); },
        [self = QPointer(this), &document, snapshot](const DocumentFile::WriteResult &written) {
            if (self && written) {
                emit self->messageShown(formatted(localized(u"Written to “%@”"), nameOfFile(snapshot.path)), longFlash);
            } else if (self && written.error().code == AtomicFile::changedError) {
                emit self->messageShown(alreadyThere(snapshot.path), longFlash);
            } else if (self && written.error().code == TextFile::missingCharactersError) {
                self->askHowToWrite(document, snapshot, &DocumentActions::writeFile);
            } else if (self) {
                self->presentError(written.error().message);
            }
        });
}

void DocumentActions::makeBackup()
{
    if (!hasFile() || currentDocument()->arrival().isPending()) {
        beep();
        return;
    }
    TextDocument &document = *currentDocument();
    if (document.requests().isPending(FileRequests::Kind::copying)) {
        beep();
        return;
    }
    writeBackup(document, snapshotOf(document, document.path()));
}

/// The document keeps its encoding.
void DocumentActions::askHowToWrite(TextDocument &document, const DocumentFile::Snapshot &snapshot, Write write)
{
    askAboutMissingCharacters(document, [self = QPointer(this), kept = document.shared_from_this(), write,
                                         other = DocumentFile::Snapshot(snapshot)](MissingCharactersAnswer answer) mutable {
        if (answer == MissingCharactersAnswer::saveInUtf8) {
            other.encoding = TextEncoding::utf8;
        } else {
            other.manner.missingCharacters = TextFile::MissingCharacters::substituted;
        }
        if (self && answer != MissingCharactersAnswer::cancel) {
            (self->*write)(*kept, other);
        }
    });
}

void DocumentActions::writeBackup(TextDocument &document, const DocumentFile::Snapshot &snapshot)
{
    const DocumentServices &services = m_services.documents.services();
    document.requests().start(
        FileRequests::Kind::copying, services.timeout,
        [snapshot, &files = services.files](const std::stop_token &) { return DocumentFile::copy(snapshot, files); },
        [self = QPointer(this), &document, snapshot](const Result<QString> &copy) {
            if (self && copy) {
                emit self->messageShown(formatted(localized(u"Copied to “%@”"), nameOfFile(*copy)), longFlash);
            } else if (self && copy.error().code == TextFile::missingCharactersError) {
                self->askHowToWrite(document, snapshot, &DocumentActions::writeBackup);
            } else if (self) {
                self->presentError(copy.error().message);
            }
        });
}
