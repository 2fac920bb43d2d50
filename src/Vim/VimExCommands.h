// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <array>
#include <span>
#include <variant>

class Preferences;
struct VimSubstitution;

/// The window in which ex commands are typed. They are about its current document.
class VimCommandHost {
public:
    /// For a few seconds.
    virtual void showVimMessage(const QString &message) = 0;
    /// From 1; others mean the nearest there is.
    virtual void scrollToLine(qsizetype number) = 0;
    virtual void substitute(const VimSubstitution &substitution) = 0;
    virtual void saveDocument() = 0;
    virtual void saveAndClose() = 0;
    virtual void closeTab() = 0;
    /// Without a question; what was not saved is lost.
    virtual void forceCloseCurrentTab() = 0;
    virtual void closeWindowFromVim() = 0;
    /// Opens the file of that name, or without one reads the document's own again, without a question.
    virtual void editFile(const QString &name) = 0;
    virtual void splitEditorRight() = 0;
    virtual void splitEditorDown() = 0;
    virtual void closeOtherSplits() = 0;

protected:
    ~VimCommandHost() = default;
};

/// One ex command: its names and what it does. Whatever follows the name of one that takes no argument is ignored.
struct VimExCommand {
    using Plain = void (VimCommandHost::*)();
    using WithFile = void (VimCommandHost::*)(const QString &name);
    struct Set {};
    struct Ignored {};

    std::array<QStringView, 4> names;
    std::variant<Ignored, Plain, WithFile, Set> function;

    [[nodiscard]] static std::span<const VimExCommand> table();
    /// Null when there is none of that name.
    [[nodiscard]] static const VimExCommand *named(QStringView name);

    /// Carries out what was typed behind ":"; says so when it is no command.
    static void run(const QString &typed, VimCommandHost &host, Preferences &preferences);
};

/// Carries out what was typed behind `:set`; false when there is no such option.
bool applyExOption(QStringView typed, Preferences &preferences);
