// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineEditing.h"
#include "Vim/VimFileMarks.h"
#include "Vim/VimLines.h"
#include "Vim/VimRegisters.h"

#include <QString>

#include <optional>

class VimMarks;
class VimPlaces;
class VimRunning;
struct Action;
struct VimOptions;
struct VimSearch;
struct VimSubstituteJob;
struct VimSubstituteMemory;
struct VimTextName;

/// What commands behind ":" need of the engine whose text they change. Offsets are UTF-16 units.
class VimExTarget {
public:
    [[nodiscard]] virtual const Rope &text() const = 0;
    /// Whether there is a line behind the last break.
    [[nodiscard]] virtual VimLines::LastLine lastLine() const = 0;
    /// Of the text as it is now.
    [[nodiscard]] VimLines lines() const { return VimLines(text(), 1, lastLine()); }
    [[nodiscard]] virtual qsizetype caret() const = 0;
    /// It settles on a character of its line.
    virtual void moveCaret(qsizetype place) = 0;
    /// One change, which marks and lists of places follow. False when it was refused. Without edits it is a step of undo all the same.
    virtual bool apply(const TextEdits &edits) = 0;
    /// `taken` is about to be changed, even if some of its lines stay as they are; if all do, that is a step of undo as well.
    /// Without it the command changes no line that `U` could restore.
    virtual void beginChange(std::optional<TextRange> taken = std::nullopt) = 0;
    /// Calls nest.
    virtual void beginUndoGroup() = 0;
    virtual void endUndoGroup() = 0;
    virtual void undo() = 0;
    virtual void redo() = 0;
    /// Steps that can be undone.
    [[nodiscard]] virtual qsizetype undoSteps() const = 0;
    /// What was changed is there, rather than where the first line that was begins.
    virtual void noteChange(qsizetype place) = 0;
    /// There is no line any more that `U` could restore.
    virtual void forgetLine() = 0;
    [[nodiscard]] virtual VimTextName name() const = 0;

    /// Of this text; those of the user are set and removed by what follows.
    [[nodiscard]] virtual VimMarks &marks() = 0;
    virtual void setMark(char16_t name, qsizetype place) = 0;
    virtual void removeMark(char16_t name) = 0;
    [[nodiscard]] virtual std::vector<VimFileMarks::Mark> marksElsewhere() const = 0;
    [[nodiscard]] virtual VimPlaces &jumps() = 0;
    [[nodiscard]] virtual VimPlaces &changes() = 0;
    [[nodiscard]] virtual const VimRegisters &registers() const = 0;
    virtual void keep(const VimRegisterContents &contents, std::optional<char16_t> name, VimRegisters::Taken taken) = 0;
    /// Keys of normal mode as text, which ends there too: an unfinished command or mode is left. False when a key failed.
    virtual bool runNormal(const QString &keys, bool usesMappings) = 0;

    /// For what goes through many lines.
    [[nodiscard]] virtual VimRunning &running() = 0;

    /// Shared by `/`, `?`, `n`, `*`, `:s` and `:g`.
    [[nodiscard]] virtual std::optional<VimSearch> &lastSearch() = 0;
    /// Of `:s`, `&` and `g&`.
    [[nodiscard]] virtual VimSubstituteMemory &lastSubstitution() = 0;
    [[nodiscard]] virtual Indentation indentation() const = 0;
    [[nodiscard]] virtual const VimOptions &options() const = 0;

    /// The marked hits of searches, till the next one.
    virtual void hideHits() = 0;
    /// For a few seconds.
    virtual void say(const QString &message) = 0;
    /// Several lines, to be read at leisure.
    virtual void list(const QString &title, const QString &text) = 0;
    /// Takes a substitution that would take long, to be carried out on a worker; false when it has to be done at once.
    virtual bool substituteElsewhere(const VimSubstituteJob &job) = 0;
    /// Asks about each hit; false when nobody can be asked.
    virtual bool confirm(const VimSubstituteJob &job) = 0;
    /// A command of the window, with what was written behind its name.
    virtual void perform(const Action &action, const QString &argument) = 0;

protected:
    ~VimExTarget() = default;
};
