// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"
#include "Vim/VimMotion.h"
#include "Vim/VimPattern.h"

#include <QString>

#include <limits>
#include <optional>
#include <stop_token>
#include <vector>

struct VimOptions;

/// Where a search goes from what it has found, in exact mode: so many characters from the hit's first or last one, or so many lines.
struct VimSearchOffset {
    enum class Base { start, end, line };

    Base base = Base::start;
    qsizetype amount = 0;

    /// The whole of what stands behind the pattern's delimiter but `;`: `e+1`, `s-2`, `b`, `+2`, `-`.
    [[nodiscard]] static VimSearchOffset parse(QStringView typed);
};

/// Where a search leads in exact mode. Offsets are UTF-16 units.
struct VimSearchMove {
    TextRange hit;
    qsizetype position = 0;
    VimMotion::Kind kind = VimMotion::Kind::exclusive;
    /// It went on at the other end of the text.
    bool hasWrapped = false;
};

/// What `/` and its like look for, which is a value that any thread may use. Offsets are UTF-16 units.
struct VimSearch {
    enum class Direction { forward, backward };

    /// What is so near, or a text that is not longer, is searched at once.
    static constexpr qsizetype nearby = qsizetype(1) << 20;

    /// A regular expression; in exact mode in Vim's own language.
    QString pattern;
    Direction direction = Direction::forward;
    bool isExact = false;

    // Of exact mode alone.
    VimPattern::Options options = {};
    /// It goes on at the other end of the text.
    bool wraps = true;
    VimSearchOffset offset = {};

    /// One of exact mode.
    [[nodiscard]] static VimSearch exact(const QString &pattern, Direction direction, const VimOptions &options,
                                         const std::optional<QString> &lastSubstitute = std::nullopt);
    /// What `*` and `#` look for, whole words alone, and `g*` and `g#`: the pattern of the word at `caret` or the next one in its line.
    /// None in a line without any.
    enum class Words { whole, parts };
    [[nodiscard]] static std::optional<QString> patternOfWord(const Rope &text, qsizetype caret, Words words);
    /// What was typed behind `/` or `?` in exact mode: `pattern/offset`, perhaps with `;/pattern/offset` behind it, each to be looked for
    /// from where the one before it led. What is not said is as in `last`. `common` has everything else. Fails when there is no pattern.
    [[nodiscard]] static Result<std::vector<VimSearch>> parse(QStringView typed, const VimSearch &common,
                                                              const std::optional<VimSearch> &last);

    [[nodiscard]] bool isValid() const;
    /// What is wrong with the pattern; empty when nothing is.
    [[nodiscard]] QString problem() const;
    /// The next hit from the caret at `from` on, behind the text's end from its other end. None when it was stopped.
    [[nodiscard]] std::optional<TextRange> hit(const Rope &text, qsizetype from, const std::stop_token &stop = {}) const;
    /// The same one if it is near; in a text that is not longer than that it always is.
    [[nodiscard]] std::optional<TextRange> nearHit(const Rope &text, qsizetype from) const;
    /// Where the `count`-th hit leads from the caret at `from`, in exact mode; none when there is no hit, it was stopped, or has looked
    /// through `most` units.
    [[nodiscard]] std::optional<VimSearchMove> move(const Rope &text, qsizetype from, qsizetype count = 1, const std::stop_token &stop = {},
                                                    qsizetype most = std::numeric_limits<qsizetype>::max()) const;
    /// As `move`, of `n` and `N`: where an offset leads back to the caret, one hit further.
    [[nodiscard]] std::optional<VimSearchMove> repeated(const Rope &text, qsizetype from, qsizetype count,
                                                        const std::stop_token &stop = {}) const;
    /// What there is to say when nothing was found.
    [[nodiscard]] QString messageForNone() const;
};
