// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <optional>
#include <vector>

/// Characters that are typed as two others, which are easy to remember: those of RFC 1345, and some older ones. Pure functions, for any
/// thread.
namespace VimDigraphs {

struct Digraph {
    char16_t first = 0;
    char16_t second = 0;
    char16_t character = 0;
};

/// In the order of their characters.
[[nodiscard]] std::vector<Digraph> all();
/// What the two stand for, in whichever order; beside a blank the other one with its highest bit of eight set. The second one where they
/// stand for nothing.
[[nodiscard]] char32_t character(char32_t first, char32_t second);

} // namespace VimDigraphs

/// What is typed behind Ctrl+K: two characters, or a key that types none, which is then written by its name. A value.
class VimDigraph final {
public:
    /// `key` as text (VimKeys). What comes into the text; none while the second character is still to come.
    [[nodiscard]] std::optional<QString> take(QStringView key);

private:
    std::optional<char32_t> m_first;
};
