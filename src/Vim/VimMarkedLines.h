// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextEdits.h"

#include <optional>
#include <vector>

/// The lines that a command still has to go through while others change the text: a line that is deleted is left out. Changes before the
/// next one cost nothing but for the lines that they touch.
class VimMarkedLines final {
public:
    /// `starts` are offsets at which lines begin, ascending.
    explicit VimMarkedLines(std::vector<qsizetype> starts) : m_starts(std::move(starts)) {}

    [[nodiscard]] bool isEmpty() const { return m_next == m_starts.size(); }
    /// Where the next one begins.
    [[nodiscard]] std::optional<qsizetype> take();
    void follow(const TextChange &change);
    /// The next one, if it begins at `start`, is left out.
    void passOver(qsizetype start);

private:
    std::vector<qsizetype> m_starts;
    size_t m_next = 0;
    /// Of all that are left.
    qsizetype m_shift = 0;
};
