// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Action.h"
#include "Text/LineNumber.h"
#include "Vim/VimKeyHelp.h"

#include <QString>

#include <array>
#include <span>
#include <variant>

class Preferences;
struct VimSubstitution;

/// The editor in which ex commands are typed.
class VimCommandHost {
public:
    /// For a few seconds.
    virtual void showVimMessage(const QString &message) = 0;
    /// From 1; others mean the nearest there is.
    virtual void scrollToLine(LineNumber number) = 0;
    virtual void substitute(const VimSubstitution &substitution) = 0;
    /// Those of searches, till the next one.
    virtual void hideSearchHits() = 0;
    /// A command of the window, with what was written behind its name.
    virtual void performCommand(const Action &action, const QString &argument) = 0;

protected:
    ~VimCommandHost() = default;
};

/// One ex command: its names and what it does, which mostly is a command of the window.
struct VimExCommand {
    struct Set {};
    struct HideHits {};

    /// The number of a line, and a substitution: no names, but forms of their own.
    struct Line {};
    struct Substitute {};

    std::array<QStringView, 4> names;
    std::variant<HideHits, Set, Line, Substitute, const Action *> function;
    VimKeyHelp help = {};
    /// How many of the names, from the first on, the reference of keys shows.
    size_t toldNames = 1;

    [[nodiscard]] static std::span<const VimExCommand> table();
    /// Null when there is none of that name.
    [[nodiscard]] static const VimExCommand *named(QStringView name);

    /// What there is to say about them and the options of `:set`.
    [[nodiscard]] static VimKeyHelpEntries keyHelp();

    /// Carries out what was typed behind ":"; says so when it is no command.
    static void run(const QString &typed, VimCommandHost &host, Preferences &preferences);
};

/// Carries out what was typed behind `:set`; false when there is no such option.
bool applyExOption(QStringView typed, Preferences &preferences);
