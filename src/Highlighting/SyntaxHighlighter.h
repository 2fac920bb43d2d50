// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Base/Scheduler.h"
#include "Highlighting/Language.h"
#include "Highlighting/Scope.h"
#include "Highlighting/Theme.h"
#include "Text/TextStorage.h"

#include <functional>
#include <optional>
#include <vector>

/// Colours the text of one storage in place, as styles of the storage.
///
/// Never the whole text at once: a text is coloured by chunks when someone asks for them (`ensureHighlighted`), and an edit colours its
/// own lines at once, or in a large text after a pause. Constructs of many lines (spans) are looked for in a window around the work, and
/// a pass always covers a span as a whole. In a pass spans go before token rules, an earlier rule before a later one, and a match that
/// meets a unit which is taken is left out altogether.
///
/// A pass searches the lines it covers as if they were all there is: `^` and `\A` match at its first line, whichever that is.
///
/// Unclassified text has the plain style, which every view draws in the foreground of its theme.
///
/// Main thread only. The storage, the scheduler and the notification centre must outlive the highlighter. All offsets are UTF-16 units.
class SyntaxHighlighter final {
public:
    /// The colours of text that may be in view are missing or out of date: whoever shows it calls `ensureHighlighted` for what it shows.
    /// The object is the highlighter.
    static constexpr NotificationName needsVisibleRefresh = "QLT.HighlighterNeedsVisibleRefresh";

    /// Texts longer than this are coloured `editDebounce` after the last edit, not at each.
    static constexpr qsizetype largeTextThreshold = 0x40000;
    static constexpr Scheduler::Milliseconds editDebounce{120};
    /// More edits in one step, apart from each other by more than a chunk in all, are coloured only where somebody asks.
    static constexpr size_t mostEditsAtOnce = 64;
    static constexpr qsizetype chunkSize = 16384;
    /// A rule whose searches were given up so many times, because they cost too much, is not tried again before the next reset.
    static constexpr int mostGivenUp = 3;
    /// Where that was many lines at once each is tried by itself, and the rule given up when all of them cost more: about 45 ms.
    static constexpr int mostTicksByLine = 300;

    /// Follows the edits of `storage` from now on, but colours nothing before `rehighlightAll`.
    SyntaxHighlighter(TextStorage &storage, const Language &language, const Theme &theme, Scheduler &scheduler,
                      NotificationCenter &notifications);
    ~SyntaxHighlighter();
    Q_DISABLE_COPY_MOVE(SyntaxHighlighter)

    [[nodiscard]] const Language &language() const { return m_language; }
    [[nodiscard]] const Theme &theme() const { return m_theme; }
    /// These two begin anew when it is another.
    void setLanguage(const Language &language);
    void setTheme(const Theme &theme);

    /// Colours the chunks that `range` touches, unless they are as they should be.
    void ensureHighlighted(TextRange range);
    /// `range`, and what around it is coloured as it should be without a gap, at most about `margin` units on either side.
    [[nodiscard]] TextRange colouredAround(TextRange range, qsizetype margin) const;
    /// Forgets everything, makes all text plain and asks for what is in view.
    void rehighlightAll();
    /// Makes the text in `range` plain. The range may reach beyond the text.
    void applyBaseAttributes(TextRange range);

    /// What the text in `range` is, as far as it is coloured; of scopes that look alike in the theme the first is reported.
    void forEachScope(TextRange range, const std::function<void(TextRange, Scope)> &visit) const;

    /// Counts since the last reset, to find why colours are missing: searches that cost too much, and rules that are off for it.
    [[nodiscard]] int givenUpSearches() const;
    [[nodiscard]] int rulesSwitchedOff() const;

private:
    struct Span {
        TextRange range;
        Scope scope;

        friend bool operator==(const Span &, const Span &) = default;
    };
    /// All edits whose lines were not coloured yet, as one.
    struct UncolouredEdit {
        TextRange range; ///< in the text as it is now
        /// The text from the end of `range` to here had its colours, and if `isKnownBefore` also that from the start of its chunk.
        qsizetype knownEnd = 0;
        bool isKnownBefore = false;
    };
    struct Rule;
    class Excerpt;
    class Paint;

    TextStorage &m_storage;
    Scheduler &m_scheduler;
    NotificationCenter &m_notifications;
    QMetaObject::Connection m_edits;
    Language m_language;
    Theme m_theme;
    std::vector<StyleId> m_styles; ///< by scope

    /// Clones of the language's, made for the first pass.
    std::vector<Rule> m_spanRules;
    std::vector<Rule> m_tokenRules;
    bool m_hasRules = false;

    std::vector<Span> m_spans; ///< ascending and apart
    TextRange m_spanWindow;
    bool m_spansAreStale = true;
    std::optional<ReplacedStretch> m_editSinceSpans;

    std::vector<bool> m_freshChunks; ///< by index; those beyond are not
    std::optional<UncolouredEdit> m_uncolouredEdit;
    DelayedTask m_pendingWork;

    void rebuildAttributeCache();
    void cloneRules();
    void noteEdits(const TextEdits &edits);
    void addUncoloured(const ReplacedStretch &edit);
    void rehighlightEdit();

    TextRange highlight(TextRange range, std::vector<TextRange> &outdated);
    void refreshSpans(TextRange range, Excerpt &excerpt, std::vector<TextRange> &outdated);
    void findSpans(const Excerpt &excerpt);
    void findOutdated(const std::vector<Span> &before, TextRange windowBefore, const ReplacedStretch &edit,
                      std::vector<TextRange> &outdated) const;
    void paintSpans(Paint &paint) const;
    void paintTokens(Paint &paint, const Excerpt &excerpt);

    [[nodiscard]] bool isFresh(qsizetype chunk) const;
    void markFresh(TextRange range, TextRange coloured);
    void markStale(const std::vector<TextRange> &ranges, TextRange except);
};
