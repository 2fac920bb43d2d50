// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Find/FindHistory.h"
#include "Find/HitIndex.h"
#include "Find/ReplacementSearch.h"
#include "Text/TextSearch.h"
#include "Text/TextStorage.h"
#include "View/CommandServices.h"

#include <QObject>
#include <QPointer>

#include <functional>

class FindState;
class TextView;

/// Finds and replaces in one text view: knows the query, how many hits there are and which one is selected, and has the view mark them.
///
/// The main thread never waits: a text of more than some 100 KB is searched on a worker, in a snapshot, and once more when the text has
/// changed meanwhile. What is seen of the text is always searched at once, so marks follow typing in a text of any size.
/// Main thread only; the services must outlive it, the view need not.
class TextFinder final : public QObject {
    Q_OBJECT

public:
    struct Services : CommandServices {
        FindState &shared;
        /// How long what is sought in this view is remembered.
        std::function<FindHistory::Kept()> kept = [] { return FindHistory::Kept::forNextRun; };
    };
    enum class Marking { hidden, shown };

    struct Status {
        /// Unknown while hits are being counted.
        std::optional<qsizetype> count;
        /// Which of them is selected, from 1.
        std::optional<qsizetype> selected;
        /// How much is done (0 … 1) of work that takes longer than a moment.
        std::optional<double> progress;
        bool isReplacing = false;
        /// Hits that the last replacing of all replaced; goes with the next search.
        std::optional<qsizetype> replaced;
        /// The last search went on at the other end of the text.
        bool hasWrapped = false;
        /// There was no hit for the last search.
        bool isNotFound = false;
        /// Some stretches were too hard for the expression.
        bool isIncomplete = false;
    };

    TextFinder(TextView &view, Services services, QObject *parent = nullptr);
    ~TextFinder() override;

    [[nodiscard]] TextView *view() const;
    [[nodiscard]] FindState &shared() const { return m_services.shared; }

    /// What is sought from now on in this view; others learn of it when it is used.
    void setQuery(const SearchQuery &query);
    [[nodiscard]] const SearchQuery &query() const { return m_query; }
    /// What is wrong with the pattern; empty when nothing is.
    [[nodiscard]] const QString &patternError() const { return m_patternError; }
    [[nodiscard]] const QString &replacementError() const { return m_replacementError; }
    /// Another replacement is being typed, which may be right.
    void forgetReplacementError();
    [[nodiscard]] Status status();

    /// Hits lie in this stretch, which moves with its text, and is shown; none for the whole text.
    void setScope(std::optional<TextRange> scope);
    [[nodiscard]] const std::optional<TextRange> &scope() const { return m_scope; }
    /// What the user selected last, if one would search in it; a hit that was gone to does not count.
    [[nodiscard]] std::optional<TextRange> chosenScope() const;

    /// Hits are marked and counted while the marks are shown.
    void setMarking(Marking marking);

    /// Selects the first hit from where the selection was before the typing began; back there when there is none.
    void findWhileTyping();
    /// To the hit behind or before the selection, at the text's end on from its other end. While marks are hidden the shared query is
    /// sought.
    void findNext();
    void findPrevious();
    /// Makes the query the one that all windows have in common.
    void share();
    enum class Lines { one, several };
    /// The shared search text becomes what is selected; false when nothing is, more lines than that, or too much for a field.
    bool useSelection(Lines most = Lines::several);
    [[nodiscard]] bool hasUsableSelection(Lines most = Lines::several) const;

    /// Replaces the hit that is selected, if one is, and goes on to the next. `typed` is a template when the query is an expression.
    void replace(const QString &typed);
    struct Preview {
        TextRange hit;
        QString replacement;
    };
    /// What `replace` would do to the selected hit; none when it would do nothing.
    [[nodiscard]] std::optional<Preview> preview(const QString &typed);
    /// Replaces all hits in the text, or the scope, as one undoable change.
    void replaceAll(const QString &typed);
    [[nodiscard]] bool canReplace() const;
    /// Has whoever selects several places at once select all hits.
    void selectAllHits();

    /// Gives up whatever goes on in the background; false when nothing does.
    bool cancel();

signals:
    /// Something else is to be shown of status(), patternError() or replacementError().
    void statusChanged();
    void allHitsWanted();

private:
    enum class Direction { forward, backward };
    enum class Purpose { typing, going };
    struct Seek {
        Direction direction = Direction::forward;
        Purpose purpose = Purpose::going;
        /// Hits begin there or behind; going back, before it.
        qsizetype from = 0;
    };
    struct Found {
        TextRange hit;
        bool hasWrapped = false;
    };
    struct Selected {
        TextRange hit;
        TextSelection selection;
        quint64 revision = 0;
    };

    void useShared();
    void compile();
    [[nodiscard]] qsizetype searchedAtOnce() const;
    [[nodiscard]] bool isSmall() const;
    [[nodiscard]] bool hasIndex() const;
    enum class Places { kept, gone };
    void refresh(Places places = Places::gone);
    void markPlaces();
    void goToHitIn(TextRange stretch);
    void startCounting();
    void restartProgress();
    [[nodiscard]] bool isBusy() const;

    void go(Direction direction);
    void seek(const Seek &wanted);
    void seekInBackground();
    [[nodiscard]] std::optional<Found> foundByIndex(const Seek &wanted);
    void arrive(const std::optional<Found> &found, Purpose purpose);
    void select(TextRange hit, Purpose purpose);
    [[nodiscard]] std::optional<TextRange> selectedHit() const;

    void replaceSelectedHit(const ReplacementTemplate &replacementTemplate);
    void startReplacing(const ReplacementTemplate &replacementTemplate);
    void applyReplacement(const TextReplacement &replacement);
    [[nodiscard]] std::optional<ReplacementTemplate> checkedTemplate(const QString &typed);

    void storageChanged(const TextChange &change);
    void selectionChanged();
    [[nodiscard]] std::vector<TextRange> marksIn(TextRange seen);
    void markSurroundings(TextRange seen);
    void forgetOutcome();

    QPointer<TextView> m_view;
    Services m_services;
    SearchQuery m_query;
    std::optional<TextSearcher> m_searcher;
    std::optional<TextRange> m_scope;
    /// What the user selected last.
    TextRange m_chosen;
    QString m_patternError;
    QString m_replacementError;
    Marking m_marking = Marking::hidden;
    bool m_hasMarks = false;
    bool m_hasPlaces = false;

    /// Of the text as it was at this revision.
    std::optional<HitIndex> m_index;
    quint64 m_indexRevision = 0;
    DelayedTask m_countSoon;
    BackgroundTask m_counting;
    std::optional<Seek> m_wanted;
    BackgroundTask m_seeking;
    ReplacementSearch m_replacing;
    /// For the one under way.
    std::optional<ReplacementTemplate> m_template;
    std::shared_ptr<std::atomic<qsizetype>> m_searched;
    RepeatingTimer m_progressTimer;
    bool m_isSlow = false;

    std::optional<Selected> m_selected;
    /// Where the selection was before what was typed moved it.
    TextSelection m_origin;
    quint64 m_seenRevision = 0;
    bool m_isSelecting = false;
    Status m_outcome;

    struct Marked {
        TextRange range;
        quint64 revision = 0;
        std::vector<TextRange> hits;
    };
    std::optional<Marked> m_marked;
};
