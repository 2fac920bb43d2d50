// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/EditorExCommands.h"

#include "Base/FilePath.h"
#include "Editor/EditorTextView.h"
#include "Editor/EditorViewController.h"
#include "Editor/EditorVim.h"
#include "Editor/SubstitutionRunner.h"
#include "Editor/VimListPanel.h"
#include "Files/TextFile.h"
#include "Model/DocumentStore.h"
#include "Vim/VimConfiguration.h"
#include "Vim/VimExEdits.h"
#include "Widgets/AlertPresenter.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr Scheduler::Milliseconds messageTime{5000};

} // namespace

EditorExCommands::EditorExCommands(EditorViewController &editor, const EditorServices &services, CommandServices commands)
    : m_editor(editor), m_services(services), m_commands(std::move(commands))
{}

EditorExCommands::~EditorExCommands() = default;

void EditorExCommands::scrollToLine(LineNumber number)
{
    m_editor.scrollToLine(number);
}

void EditorExCommands::insertFile(const QString &wanted)
{
    const qsizetype line = wanted.section(u' ', 0, 0).toLongLong();
    const QString path = absoluteFilePath(wanted.section(u' ', 1), workingFolder());
    m_reading = BackgroundTask::start(
        m_services.workers,
        [path, &files = m_services.documents.services().files](const std::stop_token &) {
            return TextFile::read(path, std::nullopt, files);
        },
        [this, line](const TextFile::ReadResult &read) {
            if (!read) {
                showVimMessage(read.error().description());
                return;
            }
            EditorTextView &view = m_editor.textView();
            const Rope &text = view.storage().text();
            const qsizetype after = std::min(line, VimLines(text).count());
            if (read->text.isEmpty() || view.isReadOnly()) {
                return;
            }
            const TextEdits edits = VimExEdits::inserted(text, after, VimExEdits::content(read->text, {1, VimLines(read->text).count()}));
            view.apply(edits, GroupKind::other, TextSelection::at(edits.newRange(0).location));
            settleCaret();
        });
}

void EditorExCommands::sourceFile(const QString &name)
{
    VimConfiguration *configuration = m_services.vimConfiguration;
    const QString path = name == u"%" ? m_editor.document().path() : absoluteFilePath(name, workingFolder());
    if (!configuration || name.isEmpty() || path.isEmpty()) {
        m_services.presenter.beep();
        return;
    }
    const auto text = VimConfiguration::textOf(path);
    const QStringList problems = text ? configuration->read(*text, QFileInfo(path).fileName()) : QStringList(text.error().message);
    if (!problems.isEmpty()) {
        showVimMessage(problems.front());
    }
}

void EditorExCommands::run(const QString &command)
{
    VimExCommand::run(command, *this, m_services.preferences);
    settleCaret();
}

void EditorExCommands::settleCaret()
{
    if (EditorVim *vim = m_editor.vim(); vim && vim->engine().mode() == VimEngine::Mode::normal) {
        vim->engine().settleCaret();
    }
}

void EditorExCommands::showVimMessage(const QString &message)
{
    m_commands.showMessage(message, messageTime);
}

void EditorExCommands::showList(const QString &title, const QString &text)
{
    if (!m_list) {
        m_list = new VimListPanel(m_editor.textView());
    }
    m_list->showList(title, text);
}

SubstitutionRunner &EditorExCommands::substitutions()
{
    if (!m_substitutions) {
        m_substitutions = std::make_unique<SubstitutionRunner>(m_commands, [this](const TextView & /*view*/) { settleCaret(); });
    }
    return *m_substitutions;
}

void EditorExCommands::substitute(const VimSubstitution &substitution)
{
    substitutions().run(m_editor.textView(), substitution);
}

void EditorExCommands::substitute(const VimSubstituteJob &job)
{
    substitutions().run(m_editor.textView(), job);
}

void EditorExCommands::hideSearchHits()
{
    if (EditorVim *vim = m_editor.vim()) {
        vim->engine().hideHits();
    }
}

void EditorExCommands::performCommand(const Action &action, const QString &argument)
{
    if (!m_editor.carryOut(action, argument)) {
        m_services.presenter.beep();
    }
}
