// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What a window shows of other texts than those that are edited: comparisons, and what the program says about itself.

#include "Base/FilePath.h"
#include "Base/HomePath.h"
#include "Base/Translation.h"
#include "Highlighting/LanguageRegistry.h"
#include "Model/DocumentStore.h"
#include "Settings/Preferences.h"
#include "UI/DocumentActions.h"
#include "UI/UserGuide.h"
#include "Vim/VimOptions.h"
#include "Vim/VimReference.h"
#include "Widgets/AlertPresenter.h"

#include <QFileInfo>

namespace {

DiffViewController::Side editorSide(const TextDocument &document)
{
    return {document.displayName(), document.isDirty() ? localized(u"in the editor (unsaved)") : localized(u"in the editor"),
            document.storage().text()};
}

} // namespace

bool DocumentActions::hasSeveralDocuments() const
{
    return m_services.documents.documents().size() > 1;
}

/// With the current document on the right.
void DocumentActions::compare(const Side &left)
{
    const TextDocument &document = *currentDocument();
    emit comparisonRequested(left, editorSide(document), document.language());
}

/// The document's tab says that it is being read; when the tab closes first nothing comes of it.
void DocumentActions::readForComparison(TextDocument &document, const QString &path, std::function<void(const Rope &text)> then)
{
    const DocumentServices &services = m_services.documents.services();
    document.requests().start(
        FileRequests::Kind::comparison, services.timeout,
        [path, &files = services.files](const std::stop_token &) { return TextFile::read(path, std::nullopt, files); },
        [self = QPointer(this), then = std::move(then)](const TextFile::ReadResult &read) {
            if (self && read) {
                then(read->text);
            } else if (self) {
                self->presentError(read.error());
            }
        });
}

void DocumentActions::compareWithFileOnDisk()
{
    if (!hasFile()) {
        beep();
        return;
    }
    TextDocument &document = *currentDocument();
    readForComparison(document, document.path(), [this, &document](const Rope &text) {
        emit comparisonRequested({document.displayName(), localized(u"on disk"), text}, editorSide(document), document.language());
    });
}

void DocumentActions::compareWithFile()
{
    if (!currentDocument()) {
        beep();
        return;
    }
    const auto document = currentDocument()->shared_from_this();
    const OpenPanel panel{.choice = OpenPanel::Choice::file,
                          .title = formatted(localized(u"Choose a file to compare with “%@”."), document->displayName()),
                          .startFolder = folderBeside(*document),
                          .prompt = localized(u"Compare")};
    m_services.presenter.present(panel, window(), [this, document](const QStringList &paths) {
        if (paths.isEmpty()) {
            return;
        }
        readForComparison(*document, paths.first(), [this, document = document.get(), file = QFileInfo(paths.first())](const Rope &text) {
            emit comparisonRequested({shownPath(file.fileName()), shownPath(abbreviatedPath(file.path())), text}, editorSide(*document),
                                     document->language());
        });
    });
}

bool DocumentActions::hasOrigin() const
{
    return currentDocument() && currentDocument()->origin && !currentDocument()->origin->path.isEmpty();
}

/// With what it is another version of, as it is in its tab or else on disk.
void DocumentActions::compareWithOrigin()
{
    TextDocument &document = *currentDocument();
    const QString path = document.origin->path;
    if (const auto open = m_services.documents.documentAt(path)) {
        compare(editorSide(*open));
        return;
    }
    readForComparison(document, path, [this, &document, path](const Rope &text) {
        emit comparisonRequested({shownPath(QFileInfo(path).fileName()), localized(u"on disk"), text}, editorSide(document),
                                 document.language());
    });
}

void DocumentActions::compareWithOpenDocument(const ActionSender &sender)
{
    const auto &open = m_services.documents.documents();
    const QUuid id(sender.represented.toString());
    const auto found = std::ranges::find_if(open, [&id](const auto &document) { return !id.isNull() && document->id() == id; });
    if (found == open.end() || !currentDocument()) {
        beep();
        return;
    }
    compare(editorSide(**found));
}

void DocumentActions::showVimKeyReference()
{
    showGenerated(VimReference::title, VimReference::markdown(VimOptions::of(m_services.preferences)));
}

void DocumentActions::showUserGuide()
{
    showGenerated(UserGuide::title, UserGuide::markdown());
}

/// Markdown that nobody edits, in the tab that has it already if there is one.
void DocumentActions::showGenerated(const QString &title, const QString &text)
{
    const auto &open = m_services.documents.documents();
    const auto found = std::ranges::find_if(
        open, [name = localized(title)](const auto &document) { return document->isGenerated() && document->displayName() == name; });
    if (found != open.end()) {
        const std::shared_ptr<TextDocument> document = *found;
        document->setGeneratedText(text);
        emit documentMade(*document);
        return;
    }
    emit documentMade(m_services.documents.add(
        TextDocument::generated(m_services.documents.services(), title, text, *LanguageRegistry::withID(u"markdown"))));
}
