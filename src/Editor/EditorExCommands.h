// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "View/CommandServices.h"
#include "Vim/VimExCommands.h"

#include <QPointer>

#include <memory>

class EditorViewController;
class SubstitutionRunner;
class VimListPanel;
struct EditorServices;
struct VimSubstituteJob;

/// What commands behind ":" do to one editor and its text, those that are not the engine's own. Main thread only.
class EditorExCommands final : public VimCommandHost {
public:
    /// Both must outlive it.
    EditorExCommands(EditorViewController &editor, const EditorServices &services, CommandServices commands);
    ~EditorExCommands();
    Q_DISABLE_COPY_MOVE(EditorExCommands)

    /// Not of exact modal editing.
    void run(const QString &command);
    /// Behind a change or a jump: on a character, where a key would have left it.
    void settleCaret();
    void substitute(const VimSubstituteJob &job);
    /// For reading at leisure.
    void showList(const QString &title, const QString &text);
    /// `wanted` is the number of a line, a space, and the name of the file that is put behind it.
    void insertFile(const QString &wanted);
    /// "%" is the editor's own file.
    void sourceFile(const QString &name);

    void showVimMessage(const QString &message) override;
    void performCommand(const Action &action, const QString &argument) override;

private:
    void scrollToLine(LineNumber number) override;
    void substitute(const VimSubstitution &substitution) override;
    void hideSearchHits() override;
    [[nodiscard]] SubstitutionRunner &substitutions();

    EditorViewController &m_editor;
    const EditorServices &m_services;
    CommandServices m_commands;
    /// Made when it is needed first.
    std::unique_ptr<SubstitutionRunner> m_substitutions;
    QPointer<VimListPanel> m_list;
    /// A file that is to be put into the text.
    BackgroundTask m_reading;
};
