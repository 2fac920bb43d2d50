// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <vector>

struct VimKeyEvent;
struct VimOptions;

/// Whose the Control chords are while modal editing is on. By default all are Vim's that it has a use for, and what is kept are those that
/// the user wants otherwise, as the preference has them: "w=quillet". Entries of others are let stand, and mean nothing.
class VimChords final {
public:
    enum class Owner { vim, quillet };
    /// One to decide on. Texts are in the language of the interface.
    struct Chord {
        /// As key maps know it.
        char16_t key = 0;
        /// On the keyboard: "Ctrl+W".
        QString name;
        /// What it is for in Vim where keys are commands, and in insert mode; empty for nothing.
        QString commanding;
        QString inserting;
        /// The command of the menus; empty for none.
        QString quillet;

        friend bool operator==(const Chord &, const Chord &) = default;
    };

    VimChords() = default;
    explicit VimChords(const QStringList &entries) : m_entries(entries) {}

    [[nodiscard]] Owner owner(char16_t key) const;
    void setOwner(char16_t key, Owner owner);
    /// Whose they are by default.
    void restore();
    [[nodiscard]] const QStringList &entries() const { return m_entries; }
    /// False for the chords that are shortcuts whatever Vim has them for. Keys without Control are no chords.
    [[nodiscard]] bool isVims(const VimKeyEvent &key) const;

    /// All that Vim has a use for with these options, letters first.
    [[nodiscard]] static std::vector<Chord> all(const VimOptions &options);

private:
    QStringList m_entries;
};
