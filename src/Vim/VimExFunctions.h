// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimExLine.h"
#include "Vim/VimMappings.h"

/// What commands of exact modal editing do: the functions of rows of VimExCommand::table(). They fail with words.
namespace VimExFunctions {

// Lines
Result<void> remove(VimExCall &call);
Result<void> yank(VimExCall &call);
Result<void> put(VimExCall &call);
Result<void> move(VimExCall &call);
Result<void> copy(VimExCall &call);
Result<void> join(VimExCall &call);
Result<void> shift(VimExCall &call);
Result<void> sort(VimExCall &call);
Result<void> retab(VimExCall &call);
Result<void> substitute(VimExCall &call);
Result<void> repeatOnLines(VimExCall &call);
Result<void> repeatOnOtherLines(VimExCall &call);
Result<void> normal(VimExCall &call);
Result<void> undo(VimExCall &call);
Result<void> redo(VimExCall &call);

// What is shown
Result<void> print(VimExCall &call);
Result<void> printNumbered(VimExCall &call);
Result<void> lineNumber(VimExCall &call);
Result<void> listRegisters(VimExCall &call);
Result<void> listMarks(VimExCall &call);
Result<void> listJumps(VimExCall &call);
Result<void> listChanges(VimExCall &call);
Result<void> workingFolder(VimExCall &call);
Result<void> tellPlace(VimExCall &call);
Result<void> tellCharacter(VimExCall &call);
Result<void> listDigraphs(VimExCall &call);
/// Of commands of Vim that run others.
Result<void> refuseProgram(VimExCall &call);
/// The same of a key.
[[nodiscard]] QString refusalOfProgram(const QString &name);

// Marks
Result<void> hideHits(VimExCall &call);
Result<void> mark(VimExCall &call);
Result<void> deleteMarks(VimExCall &call);

// What is set up
Result<void> set(VimExCall &call);
Result<void> let(VimExCall &call);
enum class Mapped { recursively, once };
[[nodiscard]] Result<void> map(VimExCall &call, VimMappings::Modes modes, Mapped mapped);
[[nodiscard]] Result<void> unmap(VimExCall &call, VimMappings::Modes modes);
[[nodiscard]] Result<void> clearMappings(VimExCall &call, VimMappings::Modes modes);

// Windows, tabs and files
Result<void> edit(VimExCall &call);
Result<void> write(VimExCall &call);
Result<void> writeAndClose(VimExCall &call);
Result<void> writeIfChangedAndClose(VimExCall &call);
Result<void> writeAllAndClose(VimExCall &call);
Result<void> newBelow(VimExCall &call);
Result<void> newBeside(VimExCall &call);
Result<void> newTab(VimExCall &call);
Result<void> splitBelow(VimExCall &call);
Result<void> splitBeside(VimExCall &call);
Result<void> closeTab(VimExCall &call);
Result<void> nextTab(VimExCall &call);
Result<void> previousTab(VimExCall &call);
Result<void> insertFile(VimExCall &call);

} // namespace VimExFunctions
