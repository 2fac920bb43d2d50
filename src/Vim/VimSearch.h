// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"

#include <QString>

#include <optional>
#include <stop_token>

/// What `/` and its like look for, which is a value that any thread may use. Offsets are UTF-16 units.
struct VimSearch {
    enum class Direction { forward, backward };

    /// What is so near, or a text that is not longer, is searched at once.
    static constexpr qsizetype nearby = qsizetype(1) << 20;

    /// A regular expression.
    QString pattern;
    Direction direction = Direction::forward;

    [[nodiscard]] bool isValid() const;
    /// The next hit from the caret at `from` on, behind the text's end from its other end. None when it was stopped.
    [[nodiscard]] std::optional<TextRange> hit(const Rope &text, qsizetype from, const std::stop_token &stop = {}) const;
    /// The same one if it is near; in a text that is not longer than that it always is.
    [[nodiscard]] std::optional<TextRange> nearHit(const Rope &text, qsizetype from) const;
};
