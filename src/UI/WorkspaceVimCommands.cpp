// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What the ex commands of modal editing do in a window.

#include "Base/FilePath.h"
#include "Editor/EditorVim.h"
#include "Model/DocumentStore.h"
#include "UI/SubstitutionRunner.h"
#include "UI/WorkspaceViewController.h"

#include <QDir>

namespace {

/// Behind a change or a jump: on a character, where a key would have left it.
void settleCaret(EditorViewController *editor)
{
    if (editor && editor->vim() && editor->vim()->engine().mode() == VimEngine::Mode::normal) {
        editor->vim()->engine().settleCaret();
    }
}

} // namespace

void WorkspaceViewController::runVimCommand(const QString &command)
{
    VimExCommand::run(command, *this, m_services.preferences);
    settleCaret(currentEditor());
}

void WorkspaceViewController::showVimMessage(const QString &message)
{
    m_statusBar->flash(message, std::chrono::seconds(5));
}

void WorkspaceViewController::scrollToLine(qsizetype number)
{
    if (EditorViewController *editor = currentEditor()) {
        editor->scrollToLine(number);
    }
}

void WorkspaceViewController::substitute(const VimSubstitution &substitution)
{
    EditorViewController *editor = currentEditor();
    if (!editor) {
        return;
    }
    if (!m_substitutions) {
        m_substitutions = std::make_unique<SubstitutionRunner>(SubstitutionRunner::Services{
            .scheduler = m_services.scheduler,
            .workers = m_services.workers,
            .tell = [this](const QString &message, Scheduler::Milliseconds duration) { m_statusBar->flash(message, duration); },
            .changed =
                [this](const TextView &view) {
                    if (EditorViewController *current = currentEditor(); current && &current->textView() == &view) {
                        settleCaret(current);
                    }
                }});
    }
    m_substitutions->run(editor->textView(), substitution);
}

void WorkspaceViewController::saveAndClose()
{
    TextDocument *document = currentDocument();
    if (!document) {
        return;
    }
    save(*document, [pane = QPointer(m_activePane), document = document->shared_from_this()](bool isSaved) {
        if (isSaved && pane) {
            pane->requestClose(pane->indexOf(*document));
        }
    });
}

void WorkspaceViewController::forceCloseCurrentTab()
{
    if (!currentDocument()) {
        return;
    }
    PaneViewController &pane = *m_activePane;
    const auto document = currentDocument()->shared_from_this();
    // Where it is shown beside, nothing of it is given up yet.
    if (!isShownBeside(&pane, *document)) {
        m_services.documents.remove(*document);
    }
    pane.removeDocument(pane.indexOf(*document));
}

void WorkspaceViewController::editFile(const QString &name)
{
    if (name.isEmpty()) {
        revertWithoutAsking();
    } else {
        open({absoluteFilePath(name, QDir::currentPath())});
    }
}

void WorkspaceViewController::revertWithoutAsking()
{
    if (hasFile()) {
        // A file that cannot be read leaves the text as it is.
        (void)currentDocument()->revertToFileOnDisk();
    }
}
