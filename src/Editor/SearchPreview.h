// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Text/TextSearch.h"
#include "View/Viewport.h"
#include "Vim/VimMatcher.h"
#include "Vim/VimSearch.h"

#include <QObject>

#include <optional>
#include <vector>

class TextView;
class VimEngine;

/// What exact modal editing shows of searches in a view: while a pattern is typed, the hit that it leads to, scrolled to and marked, and
/// the caret stays where it is; what was seen before comes back when the line is left. And, with the option for it, all hits that are seen,
/// of the pattern that is typed or else of the last search. In a long text a worker looks for the hit. Main thread only.
class SearchPreview final : public QObject {
    Q_OBJECT

public:
    /// Both must outlive it.
    SearchPreview(TextView &view, Workers &workers);
    ~SearchPreview() override;
    Q_DISABLE_COPY_MOVE(SearchPreview)

    /// To be called when the engine's state, or an option, is another one. It gets told where the search that is typed begins.
    void follow(VimEngine &engine);

private:
    /// The hit to be seen, where it leads the caret, and where a search finds it from.
    struct Found {
        TextRange hit;
        qsizetype position = 0;
        qsizetype origin = 0;
    };
    struct Typing {
        Viewport::Place place;
        qsizetype caret = 0;
        QString line;
        int steps = 0;
    };

    [[nodiscard]] static std::optional<Found> find(const VimSearch &search, const Rope &text, qsizetype from, int steps,
                                                   const std::stop_token &stop);
    void look(VimEngine &engine, const VimSearch &search);
    void show(VimEngine &engine, const std::optional<Found> &found);
    void endTyping();
    void mark(const std::optional<VimSearch> &search);
    [[nodiscard]] std::vector<TextRange> hitsIn(TextRange seen);
    void makeMatcher();

    TextView &m_view;
    Workers &m_workers;
    /// While a pattern is.
    std::optional<Typing> m_typing;
    std::optional<Found> m_shown;
    BackgroundTask m_looking;
    /// Whose hits are marked.
    std::optional<VimSearch> m_marked;
    /// For those of exact searches, in the text as it was at `m_revision`; and for others.
    std::optional<VimMatcher> m_matcher;
    std::optional<TextSearcher> m_searcher;
    quint64 m_revision = 0;
};
