// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimExCommands.h"
#include "Vim/VimExEdits.h"
#include "Vim/VimExRange.h"
#include "Vim/VimSearch.h"

class VimConfiguration;
class VimExTarget;

/// What was typed behind ":" in exact modal editing: ranges, commands of VimExCommand::table(), several with "|" between. Main thread only.
class VimExLine final {
public:
    /// Both must outlive it.
    VimExLine(VimExTarget &target, VimConfiguration &configuration) : m_target(&target), m_configuration(configuration) {}

    /// Carries it out. What is behind a command that failed is not, and the failure is said; false then. All of its changes are one step
    /// of undo.
    bool run(const QString &typed);
    /// A line of a file of commands, which need no text.
    [[nodiscard]] static Result<void> configure(const QString &line, VimConfiguration &configuration);

    // For commands

    [[nodiscard]] VimExTarget &target() const { return *m_target; }
    [[nodiscard]] VimConfiguration &configuration() const { return m_configuration; }
    [[nodiscard]] bool isForRun() const { return !m_target; }
    /// Commands that are arguments of others.
    [[nodiscard]] Result<void> carryOut(QStringView commands);
    /// Fails with what is wrong with it.
    [[nodiscard]] Result<VimPattern> pattern(const QString &written) const;
    [[nodiscard]] VimSearch search(const QString &pattern) const;
    /// That is what was looked for last.
    void noteSearch(const QString &pattern, std::optional<VimSearch::Direction> direction = std::nullopt);
    [[nodiscard]] VimExScope scope() const;
    void say(const QString &message) const;
    /// What the lines before a command have done.
    void note(const VimExRange::Trace &trace);
    /// In its column, as far as there is one.
    void moveToLine(qsizetype line);
    /// What it changes from now on is one step of undo, which leads back to where the caret is now.
    void beginUndoGroup();
    /// What it changes from now on is a step of undo of its own.
    void endUndoGroup();
    /// A command that goes through lines, which cannot be nested.
    struct Repetition {
        explicit Repetition(VimExLine &line) : m_line(line) { m_line.m_isRepeating = true; }
        ~Repetition() { m_line.m_isRepeating = false; }
        Q_DISABLE_COPY_MOVE(Repetition)

    private:
        VimExLine &m_line;
    };
    [[nodiscard]] bool isRepeating() const { return m_isRepeating; }
    /// What substitutions have done while lines are gone through, to be said once for all.
    struct Substituted {
        qsizetype hits = 0;
        qsizetype lines = 0;
    };
    void noteSubstituted(Substituted more) { m_substituted = {m_substituted.hits + more.hits, m_substituted.lines + more.lines}; }
    void saySubstituted();

private:
    /// A command and how it was written.
    struct Parsed {
        const VimExCommand *command = nullptr;
        QString name;
        bool hasBang = false;
    };

    explicit VimExLine(VimConfiguration &configuration) : m_configuration(configuration) {}

    [[nodiscard]] Result<void> carryOutNext(QStringView &commands);
    [[nodiscard]] Result<void> goToLine(const VimExRange &range);
    [[nodiscard]] Result<Parsed> takeName(QStringView &commands) const;
    [[nodiscard]] Result<void> perform(const Parsed &parsed, const VimExRange &range, QString argument);
    void takeModifiers(QStringView &commands);

    VimExTarget *m_target = nullptr;
    VimConfiguration &m_configuration;
    bool m_isInUndoGroup = false;
    bool m_isSilent = false;
    bool m_isRepeating = false;
    Substituted m_substituted;
};

/// One command that is carried out.
struct VimExCall {
    VimExLine &line;
    VimExEdits::LineSpan lines;
    /// As it was typed.
    QString name;
    /// How many lines were written before it.
    int written = 0;
    bool hasBang = false;
    std::optional<char16_t> registerName = std::nullopt;
    std::optional<qsizetype> count = std::nullopt;
    QString argument = {};

    [[nodiscard]] VimExTarget &target() const { return line.target(); }
};
