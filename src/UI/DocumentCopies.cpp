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
                self->attempt({.document = *document});
            } else if (target.exists && existing == Existing::kept) {
                emit self->messageShown(alreadyThere(path), longFlash);
            } else if (document->isUntitled()) {
                self->attempt({.document = *document, .path = path});
            } else {
                DocumentFile::Snapshot snapshot = snapshotOf(*document, path);
                snapshot.rescueFolder = self->m_services.documents.services().rescueFolder;
                snapshot.expected = existing == Existing::kept ? std::optional(AtomicFile::Expectation{}) : std::nullopt;
                self->writeCopy(*document, snapshot, Copy::named);
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
    writeCopy(document, snapshotOf(document, document.path()), Copy::backup);
}

/// The document keeps its encoding.
void DocumentActions::askHowToWrite(TextDocument &document, const DocumentFile::Snapshot &snapshot, Copy copy)
{
    askAboutMissingCharacters(document, [self = QPointer(this), kept = document.shared_from_this(), copy,
                                         other = DocumentFile::Snapshot(snapshot)](MissingCharactersAnswer answer) mutable {
        if (answer == MissingCharactersAnswer::saveInUtf8) {
            other.encoding = TextEncoding::utf8;
        } else {
            other.manner.missingCharacters = TextFile::MissingCharacters::substituted;
        }
        if (self && answer != MissingCharactersAnswer::cancel) {
            self->writeCopy(*kept, other, copy);
        }
    });
}

void DocumentActions::writeCopy(TextDocument &document, const DocumentFile::Snapshot &snapshot, Copy copy)
{
    const DocumentServices &services = m_services.documents.services();
    document.requests().start(
        FileRequests::Kind::copying, services.timeout,
        [snapshot, copy, &files = services.files](const std::stop_token &stop) -> Result<QString> {
            if (copy == Copy::backup) {
                return DocumentFile::copy(snapshot, files);
            }
            const DocumentFile::WriteResult written = DocumentFile::write(snapshot, files, nullptr, stop);
            return written ? Result<QString>(snapshot.path) : tl::make_unexpected(written.error());
        },
        [self = QPointer(this), &document, snapshot, copy](const Result<QString> &written) {
            if (!self) {
                return;
            }
            if (written) {
                const QString message = copy == Copy::backup ? localized(u"Copied to “%@”") : localized(u"Written to “%@”");
                emit self->messageShown(formatted(message, nameOfFile(*written)), longFlash);
            } else if (copy == Copy::named && written.error().code == AtomicFile::changedError) {
                emit self->messageShown(alreadyThere(snapshot.path), longFlash);
            } else if (written.error().code == TextFile::missingCharactersError) {
                self->askHowToWrite(document, snapshot, copy);
            } else {
                self->presentError(written.error().message);
            }
        });
}
