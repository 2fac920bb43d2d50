// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextEdits.h"
#include "Vim/VimReplacement.h"
#include "Vim/VimSearch.h"
#include "Vim/VimSubstituteCommand.h"

/// One hit of a `:s` and what comes in its place.
struct VimSubstituteHit {
    TextRange range;
    QString text;
};

/// What a `:s` does to a text.
struct VimSubstituteOutcome {
    /// None when it only counts. Beyond a thousand hits it is one stretch from the first to the last.
    TextEdits edits;
    qsizetype hits = 0;
    qsizetype lines = 0;
    /// Of the text afterwards: the first character that is no blank of the last line that was changed. Where it only counts the caret goes
    /// to that of its own line.
    qsizetype caret = 0;
    /// Stretches were too hard for the pattern.
    bool isIncomplete = false;
};

/// A `:s` of exact mode that is ready to be carried out on lines of a text: a value that any thread may use. Lines are those of the rope,
/// from 0.
struct VimSubstituteJob {
    /// As typed, for messages.
    QString typedPattern;
    VimPattern pattern;
    VimReplacement replacement;
    VimSubstituteFlags flags;
    qsizetype firstLine = 0;
    qsizetype lastLine = 0;

    struct Lines {
        qsizetype first = 0;
        qsizetype last = 0;
    };
    /// Of a command for `lines`. What it says is remembered for the next one and for searching. Fails when there is nothing to repeat, and
    /// with what is wrong with the pattern or the replacement.
    [[nodiscard]] static Result<VimSubstituteJob> prepare(const VimSubstituteCommand &command, Lines lines, const VimOptions &options,
                                                          VimSubstituteMemory &memory, std::optional<VimSearch> &lastSearch);

    /// Any thread. Stopped, it reports what it had found till then.
    [[nodiscard]] VimSubstituteOutcome outcome(const Rope &text, const SearchControl &control = {}) const;
    /// The hits that begin in `visible`, for a preview.
    [[nodiscard]] std::vector<VimSubstituteHit> preview(const Rope &text, TextRange visible) const;
    /// “3 substitutions on 2 lines”, “hits” where they only were counted.
    [[nodiscard]] static QString counted(qsizetype hits, qsizetype lines, bool onlyCounts = false);
    /// The same of `outcome`, or that there was none; empty where that is no error.
    [[nodiscard]] QString message(const VimSubstituteOutcome &outcome) const;
    /// Of the flags `p`, `#` and `l`: the line of `text`, which it has changed, that `outcome` leaves the caret in. Empty without them.
    [[nodiscard]] QString shownLine(const VimSubstituteOutcome &outcome, const Rope &text) const;
};

/// A `:s` that is still being typed.
struct VimTypedSubstitution {
    VimSubstituteJob job;
    /// It goes as far as what comes in place of hits.
    bool hasReplacement = false;
};

/// Goes from hit to hit of one job in one text. One object serves one thread at a time.
class VimSubstituteWalk final {
public:
    /// Of the lines of `job` from `from` on.
    VimSubstituteWalk(const VimSubstituteJob &job, const Rope &text, qsizetype from = 0);

    /// None when there are no more, or it was stopped.
    [[nodiscard]] std::optional<VimSubstituteHit> next(const SearchControl &control = {});
    /// The last hit stays as it is: what it reaches into is the next line.
    void skip();
    /// Lines with hits so far; lines that a hit brings together are one.
    [[nodiscard]] qsizetype lines() const { return m_lines; }
    [[nodiscard]] bool gaveUp() const { return m_matcher && m_matcher->gaveUp(); }

private:
    [[nodiscard]] qsizetype lineEnd(qsizetype line) const;
    [[nodiscard]] bool isAtLineEnd(qsizetype place) const;
    void goOn(const VimMatch &match);
    void goTo(qsizetype place);

    VimReplacement m_replacement;
    bool m_takesAll;
    bool m_onlyCounts;
    bool m_staysInLine;
    Rope m_text;
    QString m_lineBreak;
    /// None for a pattern that ICU does not take.
    std::optional<VimMatcher> m_matcher;
    qsizetype m_at = 0;
    qsizetype m_end = 0;
    qsizetype m_previousEnd = -1;
    qsizetype m_behindAll = 0;
    /// Where the last hit began to match, and where it ended.
    qsizetype m_line = -1;
    qsizetype m_chainLine = -1;
    qsizetype m_lines = 0;
};

/// Asks before each hit of a job is replaced, one key at a time: flag `c`. Every answer gives what is to be done to the text at once.
class VimSubstituteConfirmation final {
public:
    VimSubstituteConfirmation(const VimSubstituteJob &job, const Rope &text);

    /// What is asked about, in the text as it is after all answers so far; none when it is over.
    [[nodiscard]] std::optional<TextRange> hit() const;
    [[nodiscard]] QString question() const;
    /// `y`, `n`, `a` for all others too, `l` for this as the last, `q` or Escape to stop; other keys do nothing.
    [[nodiscard]] TextEdits answer(char16_t key);
    /// Without edits, which were given by the answers; its caret is where the answers left it.
    [[nodiscard]] VimSubstituteOutcome outcome() const;

private:
    void advance();
    void take(TextEdits &edits, qsizetype shift);

    VimSubstituteWalk m_walk;
    /// After all answers.
    Rope m_text;
    std::optional<VimSubstituteHit> m_hit;
    /// By how much the text has grown before the hit.
    qsizetype m_shift = 0;
    VimSubstituteOutcome m_outcome;
    /// Of the walk, that which has been changed last.
    qsizetype m_countedLine = 0;
};
