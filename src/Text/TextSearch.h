// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"
#include "Text/RegularExpression.h"
#include "Text/Rope.h"
#include "Text/TextEdits.h"

#include <QStringMatcher>

#include <algorithm>
#include <atomic>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>
#include <vector>

/// What is sought.
struct SearchQuery {
    QString pattern = {};
    bool matchesCase = false;
    bool matchesWholeWords = false;
    /// ICU syntax; else the pattern stands for itself.
    bool isRegularExpression = false;
    /// As the expression is by itself: `^` and `$` are the ends of the text rather than of lines, and matches of nothing are hits.
    bool isBareExpression = false;

    friend bool operator==(const SearchQuery &, const SearchQuery &) = default;
};

/// How others take part in a search that may take long.
struct SearchControl {
    std::stop_token stop = {};
    /// Grows by the units that were searched; null when nobody asks.
    std::shared_ptr<std::atomic<qsizetype>> searched = nullptr;
};

/// What comes in place of a hit.
struct ReplacementTemplate {
    enum class LetterCase { asWritten, asFound };

    /// As `TextSearcher::replacementTemplate` made it.
    QString format;
    LetterCase letterCase = LetterCase::asWritten;

    ReplacementTemplate(QString written, LetterCase wanted = LetterCase::asWritten) : format(std::move(written)), letterCase(wanted) {}
};

/// What replacing all hits does to a text.
struct TextReplacement {
    enum class Occurrences { all, firstOfLine };

    /// Above this many hits, one stretch of new text from the first to the last stands for them all. It shares what is between them.
    static constexpr qsizetype mostHits = 1000;

    /// How many hits are replaced.
    qsizetype count = 0;
    TextEdits edits;

    /// Where a selection is left: with its text; but of a stretch, where the ends would find their places one by one, at its start.
    [[nodiscard]] TextSelection selectionAfter(const Rope &before, TextSelection selection) const;
};

/// Finds the hits of one query in ropes without copying them: only a window of some 100 KB is ever in one piece.
///
/// Hits do not overlap and, unless the expression is bare, are never empty; which ones there are in a run of overlapping candidates depends
/// on where the search began. Case is folded character by character: "ß" is found by "ẞ" and "σ" by "ς", but "ss" finds no "ß". Letters are
/// found however they are composed (`CanonicalEquivalence`), in an expression those that stand in it, unless it is bare; a hit may be
/// longer or shorter than its pattern then. A letter without marks is also found where marks follow. A whole word is one that no word
/// character (letter, mark, digit, connector) continues; in scripts without blanks ICU's dictionary divides words, for literal patterns.
///
/// A regular expression sees the lines around it: `^` and `$` are the ends of lines, and look-around sees 256 units beyond what can be
/// matched. Its hits may span lines; those of up to `reach` units are found wherever they lie, longer ones may be cut short. It never
/// runs for long: what is too hard is tried once more line by line, and given up when even that is (`gaveUp`).
///
/// One object serves one thread at a time. All offsets are UTF-16 units.
class TextSearcher final {
public:
    static constexpr qsizetype reach = qsizetype(32) * 1024;
    /// Calls end with the first false.
    using Visitor = std::function<bool(TextRange hit)>;

    /// Fails with what is wrong with the pattern. One that is empty has no hits.
    [[nodiscard]] static Result<TextSearcher> compile(const SearchQuery &query);

    /// For another thread. May be called while this one does not search.
    [[nodiscard]] TextSearcher clone() const;
    [[nodiscard]] const SearchQuery &query() const { return m_query; }
    /// Hits lie in `scope` from now on; none for the whole text. What is around it is still seen: `^`, `$` and words end where they do.
    void setScope(std::optional<TextRange> scope) { m_scope = scope; }

    /// Visits the hits that begin in `range`, from its start on, in order; they may end behind it. An empty one at the text's end begins in
    /// a range that goes beyond that.
    void forEachHit(const Rope &text, TextRange range, const Visitor &visit, const SearchControl &control = {});
    /// The first that begins in `range`.
    [[nodiscard]] std::optional<TextRange> firstHit(const Rope &text, TextRange range, const SearchControl &control = {});
    /// The last that begins in `range`, looked for from its end in windows that begin at lines, till those have `most` units or more.
    [[nodiscard]] std::optional<TextRange> lastHit(const Rope &text, TextRange range, const SearchControl &control = {},
                                                   qsizetype most = std::numeric_limits<qsizetype>::max());

    /// True when a search of this object left out stretches that were too hard for the expression.
    [[nodiscard]] bool gaveUp() const { return m_gaveUp; }

    /// What `replacement` takes, made of what was typed. For a regular expression `$1` and `\1` are group 1, `\n` a line break, `\t` a tab,
    /// and `\` protects any other character; fails with words when there is no such group or `$` has no number. Else it is itself.
    [[nodiscard]] Result<QString> replacementTemplate(const QString &typed) const;
    /// What comes in place of `hit`; none when that is no hit (any more).
    [[nodiscard]] std::optional<QString> replacement(const Rope &text, TextRange hit, const ReplacementTemplate &replacementTemplate);
    /// Of the hits that begin in `range`. Stopped, it reports what it had found till then.
    [[nodiscard]] TextReplacement replacementOfAll(const Rope &text, TextRange range, const ReplacementTemplate &replacementTemplate,
                                                   TextReplacement::Occurrences occurrences = TextReplacement::Occurrences::all,
                                                   const SearchControl &control = {});

private:
    struct Excerpt;
    struct Walk;

    TextSearcher() = default;
    bool searchLiteral(Walk &walk);
    bool searchEquivalents(Walk &walk);
    bool searchExpression(Walk &walk);
    bool searchExcerpt(Walk &walk, qsizetype windowEnd);
    std::optional<qsizetype> searchRange(Walk &walk, const Excerpt &excerpt, TextRange range, qsizetype windowEnd);
    bool searchLines(Walk &walk, const Excerpt &excerpt, qsizetype windowEnd);
    [[nodiscard]] QString inPlaceOf(TextRange hit, const Rope &text, const Excerpt *excerpt,
                                    const ReplacementTemplate &replacementTemplate) const;
    [[nodiscard]] bool accepts(const Rope &text, TextRange hit) const;
    void walk(Walk &walk);

    [[nodiscard]] qsizetype scopeEnd(const Rope &text) const { return m_scope ? std::min(m_scope->end(), text.length()) : text.length(); }

    SearchQuery m_query;
    std::optional<TextRange> m_scope;
    QStringMatcher m_needle;
    /// The needle is decomposed, as the text has to be: there are other ways to write it.
    bool m_seeksEquivalents = false;
    std::optional<RegularExpression> m_expression;
    /// The expression cannot match a line's end.
    bool m_staysInLine = false;
    /// Whole words are sorted out after the match, since the expression could not be told.
    bool m_checksWords = false;
    /// A window was too hard: the others are searched line by line from the start.
    bool m_isHard = false;
    bool m_gaveUp = false;
};
