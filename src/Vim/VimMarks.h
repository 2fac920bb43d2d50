// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimPlaces.h"

#include <map>

/// The marks of one text: a–z and A–Z, which the user sets, and ' [ ] < > ^ . " which follow what is done. ` is ' as well. Offsets are
/// UTF-16 units. A value.
class VimMarks final {
public:
    struct Mark {
        char16_t name;
        qsizetype place;
    };

    /// Whether there can be a mark of that name.
    [[nodiscard]] static bool isName(char16_t name);
    /// Whether it is the user who sets it.
    [[nodiscard]] static bool isUsers(char16_t name);

    /// None where it is not set, or went with its line.
    [[nodiscard]] std::optional<qsizetype> place(char16_t name) const;
    /// What is no name is left alone.
    void set(char16_t name, qsizetype place);
    void remove(char16_t name);
    /// Of a–z, as `:delmarks!` does.
    void deleteAll();
    /// A mark goes with its line; those of lines that are deleted are gone.
    void follow(const TextChange &change);
    /// In Vim's order.
    [[nodiscard]] std::vector<Mark> all() const;

private:
    std::map<char16_t, VimPlace> m_places;
};
