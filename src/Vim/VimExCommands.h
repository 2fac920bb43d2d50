// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"
#include "Commands/Action.h"
#include "Text/LineNumber.h"
#include "Vim/VimKeyHelp.h"

#include <QString>

#include <array>
#include <span>
#include <variant>

class Preferences;
struct VimExCall;
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
    /// Only exact modal editing has it.
    struct Exact {};

    /// The number of a line, and a substitution: no names, but forms of their own.
    struct Line {};
    struct Substitute {};

    /// What an exact command takes.
    enum Takes : unsigned {
        nothing = 0,
        range = 1U << 0,
        /// Without a range the whole text.
        all = 1U << 1,
        /// A line 0, before the first.
        lineZero = 1U << 2,
        count = 1U << 3,
        registerName = 1U << 4,
        bang = 1U << 5,
        argument = 1U << 6,
        /// An argument that is the rest of the line, with every "|".
        rest = 1U << 7,
        /// What is written before it is a number rather than lines.
        anyNumber = 1U << 8,
        /// It needs no text, so that it may stand in a file of such commands.
        configures = 1U << 9,
        /// Its argument is the name of a file, or those are of options.
        fileName = 1U << 10,
        optionNames = 1U << 11,
    };
    /// Who has it.
    enum class Audience { byDefault, exact };
    using Function = Result<void> (*)(VimExCall &call);

    /// By default; none for a command that only exact modal editing has.
    std::array<QStringView, 4> names;
    std::variant<HideHits, Set, Line, Substitute, Exact, const Action *> function;
    VimKeyHelp help = {};
    /// How many of the names, from the first on, the reference of keys shows.
    size_t toldNames = 1;
    /// In exact modal editing; "w[rite]" may be written with as many of the letters in brackets as one likes. None for a command that it
    /// does not have.
    std::array<QStringView, 4> exactNames = {};
    unsigned takes = nothing;
    /// What it does there, where that is not `function`.
    Function exact = nullptr;

    [[nodiscard]] static std::span<const VimExCommand> table();
    /// Null when there is none of that name.
    [[nodiscard]] static const VimExCommand *named(QStringView name);
    /// In exact modal editing.
    [[nodiscard]] static const VimExCommand *namedExactly(QStringView name);
    /// Whether `typed` is `name`, as exact names are written, or an abbreviation of it.
    [[nodiscard]] static bool isAbbreviation(QStringView typed, QStringView name);
    /// Full names, ascending, for completion.
    [[nodiscard]] static QStringList allNames(Audience audience);

    /// What there is to say about them and the options of `:set`.
    [[nodiscard]] static VimKeyHelpEntries keyHelp(Audience audience);

    /// Carries out what was typed behind ":"; says so when it is no command. Not in exact modal editing, which has VimExLine.
    static void run(const QString &typed, VimCommandHost &host, Preferences &preferences);
};

/// Carries out what was typed behind `:set`; false when there is no such option.
bool applyExOption(QStringView typed, Preferences &preferences);
