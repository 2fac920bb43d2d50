// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"

#include <functional>
#include <map>
#include <optional>
#include <utility>

class Pasteboard;
class Preferences;

struct VimRegisterContents {
    /// A rope, so that yanking a large text copies nothing.
    Rope text;
    /// Whole lines, to be pasted as lines.
    bool isLinewise = false;
    /// The rows of a rectangle, one a line, to be pasted beside each other.
    bool isBlock = false;
    /// Cells of the widest row of a rectangle.
    qsizetype blockWidth = 0;
    /// Of a private file: forgotten when the program ends.
    bool isPrivate = false;
};

/// What was yanked and deleted, by all editors of the process. There are named registers, "+" and "*", which are the clipboard, and the
/// unnamed one, which has what was stored last. With the preference on, the unnamed one is shared with the clipboard: what is stored goes
/// there too, and what other programs put there is what it has. Main thread only.
class VimRegisters final {
public:
    /// Of the unnamed register where it has to have a name.
    static constexpr char16_t unnamedName = u'"';

    /// Whether a key chooses a register in exact modal editing.
    [[nodiscard]] static bool isExactName(char16_t key);

    /// Both must outlive the registers.
    VimRegisters(Pasteboard &pasteboard, const Preferences &preferences) : m_pasteboard(pasteboard), m_preferences(preferences) {}

    /// An upper-case name appends to the register of the lower-case one.
    void set(const VimRegisterContents &contents, std::optional<char16_t> name);
    /// What was taken, as Vim tells it apart.
    enum class Taken {
        yanked,
        removedPart,
        removedLines,
        /// Part of a line, but with a motion over long ways.
        removedFar,
    };
    /// As Vim does it: yanks go to "0", deleted lines to "1" while what was there moves on to "9", what is less to "-"; "_" takes nothing.
    /// The unnamed register is the one that was stored to last, which for deleted lines is "1" unless they were appended.
    void keep(const VimRegisterContents &contents, std::optional<char16_t> name, Taken taken);
    /// What was recorded or is put into a register as it is; what is appended to whole lines goes on in the last of them.
    void store(const VimRegisterContents &contents, char16_t name);
    /// Contents of an earlier run, for a register that has none.
    void restore(char16_t name, const VimRegisterContents &contents);
    /// Instead of what it called before; of changes that are made here, not of those of the clipboard.
    void whenChanged(std::function<void()> action) { m_changed = std::move(action); }
    /// Empty for a register that was never stored to.
    [[nodiscard]] VimRegisterContents contents(std::optional<char16_t> name) const;

    [[nodiscard]] const std::map<char16_t, VimRegisterContents> &named() const { return m_named; }
    /// Without a look at the clipboard.
    [[nodiscard]] const VimRegisterContents &unnamed() const { return m_unnamed; }

private:
    enum class Appending { lines, characters };

    void noteChange() const;
    void store(const VimRegisterContents &contents, char16_t name, Appending appending);
    void writeToClipboard(const Rope &text);
    [[nodiscard]] VimRegisterContents clipboard() const;

    Pasteboard &m_pasteboard;
    const Preferences &m_preferences;
    std::map<char16_t, VimRegisterContents> m_named;
    VimRegisterContents m_unnamed;
    /// Of the one that the unnamed one is, where that is one of the named.
    std::optional<char16_t> m_unnamedName;
    /// Right after this program wrote to the clipboard; none before, and then what is there is somebody else's.
    std::optional<int> m_lastWrittenChangeCount;
    std::function<void()> m_changed;
};
