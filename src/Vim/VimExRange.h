// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"
#include "Vim/VimLines.h"

#include <QString>

#include <optional>

class VimMarks;
struct VimOptions;

/// What the lines before a command are told by. All must outlive it.
struct VimExScope {
    const Rope &text;
    VimLines::LastLine lastLine = VimLines::LastLine::hasText;
    /// Units.
    qsizetype caret = 0;
    const VimMarks &marks;
    const VimOptions &options;
    /// What was looked for and substituted last; empty for nothing.
    QString lastPattern = {};
    QString lastSubstituted = {};
};

/// The lines that are written before a command: "5", ".,$", "%", "'a;+3", "/pattern/-1,?other?". A pure function of text and marks.
struct VimExRange {
    /// Lines are counted from 1; 0 is before the first, and they may lie outside of the text. Never backwards.
    qsizetype first = 1;
    qsizetype last = 1;
    /// The one written last, where one goes without a command.
    qsizetype target = 1;
    /// They were written the other way round.
    bool isTurned = false;
    /// One of them is that of a mark or a hit.
    bool hasPlace = false;
    /// How many lines were written; 0 when both are that of the caret.
    int written = 0;
    /// Units of what was typed that are this.
    qsizetype length = 0;
    /// What reading it has done on the way, also when it fails.
    struct Trace {
        /// Where ";" has moved the caret to.
        std::optional<qsizetype> caretLine = std::nullopt;
        /// The last pattern that was looked for.
        std::optional<QString> pattern = std::nullopt;
        bool isBackward = false;
    };
    /// Of what `typed` begins with, blanks and colons too; fails with words.
    [[nodiscard]] static Result<VimExRange> parse(QStringView typed, const VimExScope &scope, Trace &trace);
    /// One line alone, as `:m` and `:t` take it; none when nothing is written.
    struct Address {
        std::optional<qsizetype> line;
        qsizetype length = 0;
    };
    [[nodiscard]] static Result<Address> parseAddress(QStringView typed, const VimExScope &scope, Trace &trace);
};

/// What stands before the next `delimiter`, which `\` protects: "\/" is "/", any other "\" stays.
struct VimExPart {
    QString text;
    /// Behind the delimiter, if there is one.
    qsizetype end = 0;
    bool isEnded = false;

    [[nodiscard]] static VimExPart upTo(QChar delimiter, QStringView typed);
};
