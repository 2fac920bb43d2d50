// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextSearch.h"

#include <QStringList>

/// What a command `s/pattern/replacement/flags` asks for.
struct VimSubstitution {
    /// All lines, else that of the caret.
    bool isOfWholeText = false;
    /// In ICU's syntax, without options: `^` and `$` are the ends of what is searched.
    QString pattern;
    /// `$1` is group 1, and `\` protects the next character.
    QString replacement;
    /// Every match of a line, else its first.
    bool isGlobal = false;
    bool ignoresCase = false;

    /// Whether a command is one of these, well-formed or not.
    [[nodiscard]] static bool isOne(QStringView command);
    /// None without a pattern or a replacement. `command` is one of these.
    [[nodiscard]] static std::optional<VimSubstitution> parse(QStringView command);
    /// The parts between the slashes, of which there is one more than of those. `\/` is a slash within a part; any other character keeps
    /// the `\` before it. A `\` with nothing behind it is dropped.
    [[nodiscard]] static QStringList splitOnUnescapedSlashes(QStringView text);

    /// Fails with what is wrong with the pattern.
    [[nodiscard]] Result<TextSearcher> searcher() const;
    /// What is to be done to `text`. `searcher` is made of this; any thread.
    [[nodiscard]] TextReplacement replacementIn(const Rope &text, qsizetype caret, TextSearcher &searcher,
                                                const SearchControl &control = {}) const;
};
