// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <array>
#include <vector>

/// What the reference of keys says about a row of a table of keys; nothing by default.
struct VimKeyHelp {
    /// In the order of the reference.
    enum class Section { none, modes, inserting, motions, operators, textObjects, editing, windows, search, commandLine };

    Section section = Section::none;
    /// English; null for the key beside the one of the row above, which describes both.
    const char16_t *text = nullptr;
    /// How it is written, where that is more than the key.
    std::array<QStringView, 2> forms = {};
    Section alsoIn = Section::none;
    bool isBesideAbove = false;

    [[nodiscard]] constexpr bool exists() const { return text || isBesideAbove; }
};

inline constexpr VimKeyHelp besideAbove{.isBesideAbove = true};

/// A row that is described, in the order of its table.
struct VimKeyHelpEntry {
    QStringList keys;
    VimKeyHelp help;

    /// `key` unless `help` has other forms.
    VimKeyHelpEntry(const QString &key, const VimKeyHelp &described) : help(described)
    {
        for (const QStringView form : help.forms) {
            if (!form.isEmpty()) {
                keys << form.toString();
            }
        }
        if (keys.isEmpty()) {
            keys << key;
        }
    }
};
/// What a Control chord is for.
struct VimChordUse {
    enum class When { commanding, inserting };

    /// As key maps know it.
    char16_t key;
    When when;
    /// What its row, or the one that it stands beside, says in English; null for nothing.
    const char16_t *text;
};

using VimKeyHelpEntries = std::vector<VimKeyHelpEntry>;
