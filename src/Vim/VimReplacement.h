// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"
#include "Vim/VimMatcher.h"

#include <QString>

#include <vector>

/// What `:s` puts in place of a hit in exact mode: text, groups (`&`, `\0` … `\9`), line breaks (`\r`) and changes of case (`\u`, `\L` …).
class VimReplacement final {
public:
    VimReplacement() = default;
    /// Of what was typed, with `~` expanded. Fails where it is an expression.
    [[nodiscard]] static Result<VimReplacement> parse(QStringView typed);
    /// `typed` with what was `last` typed in place of `~`; `\~` is the character.
    [[nodiscard]] static QString withLast(QStringView typed, const QString &last);

    [[nodiscard]] bool isEmpty() const { return m_pieces.empty(); }
    /// What comes in place of the hit of `match`, which is one of `text`.
    [[nodiscard]] QString of(const VimMatch &match, const Rope &text, QStringView lineBreak) const;

private:
    enum class Kind { text, group, lineBreak, upper, lower, upperOne, lowerOne, asItIs };
    struct Piece {
        Kind kind = Kind::text;
        QString text = {};
        int group = 0;
    };
    void add(char16_t unit);
    /// What stands behind a `\`.
    void addEscape(QChar escape);

    std::vector<Piece> m_pieces;
};
