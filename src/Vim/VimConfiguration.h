// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"
#include "Vim/VimFileMarks.h"
#include "Vim/VimMappings.h"
#include "Vim/VimOptions.h"

#include <QStringList>

#include <memory>

class Preferences;

/// What users of exact modal editing have set up for all editors of the process: mappings, the leader of them, and options of a file of
/// commands, which hold as long as the program runs. Main thread only.
class VimConfiguration final {
public:
    /// Bytes of a file of commands.
    static constexpr qint64 largestFile = 1'000'000;

    /// `preferences` must outlive it.
    explicit VimConfiguration(Preferences &preferences) : m_preferences(preferences) {}

    /// Where the user's file of commands is: in $XDG_CONFIG_HOME if that is absolute, else in ~/.config.
    [[nodiscard]] static QString standardPath();

    /// The text of such a file. Only of a regular file, so that it is there at once.
    [[nodiscard]] static Result<QString> textOf(const QString &path);

    /// Carries out lines of `:set`, `:map` and their like, `:let mapleader` and comments; a line that begins with "\" goes on with the one
    /// before. What is wrong in lines is returned, each with the name and the line's number; the others hold.
    [[nodiscard]] QStringList read(QStringView text, const QString &name);
    /// Once, the file there, if exact modal editing is on; what a file has set is forgotten where it is not. Says what is wrong, the first
    /// of it; a file that is not there is nothing.
    [[nodiscard]] QStringList follow(const QString &path);

    /// The preferences', with the mappings.
    [[nodiscard]] VimOptions options() const;
    [[nodiscard]] Preferences &preferences() const { return m_preferences; }
    /// Engines that were given the options go by changes of them at once.
    [[nodiscard]] VimMappings &mappings() { return *m_mappings; }
    /// Nobody sets them up, but they too are those of all editors.
    [[nodiscard]] VimFileMarks &fileMarks() { return m_fileMarks; }
    [[nodiscard]] const QString &leader() const { return m_leader; }
    void setLeader(const QString &keys) { m_leader = keys; }
    /// Of the text before the one that is worked on; empty for none.
    [[nodiscard]] const QString &alternateFile() const { return m_alternateFile; }
    void setAlternateFile(const QString &path) { m_alternateFile = path; }

private:
    Preferences &m_preferences;
    std::shared_ptr<VimMappings> m_mappings = std::make_shared<VimMappings>();
    VimFileMarks m_fileMarks;
    QString m_leader = QStringLiteral("\\");
    QString m_alternateFile;
    bool m_isRead = false;
};
