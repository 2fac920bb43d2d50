// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Highlighting/BracketSearch.h"
#include "View/CommandServices.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <optional>

class EditorTextView;
class OutOfSightHint;
class TextDocument;

/// Marks the bracket beside the caret and the one that belongs to it, says where that is when it cannot be seen, and goes there. What is
/// in view, or near and coloured, is looked through at once, the rest on a worker, which colours the text for itself. Main thread only.
class BracketMarker final : public QObject {
    Q_OBJECT

public:
    /// The caret rests so long before a worker is asked.
    static constexpr Scheduler::Milliseconds restTime{80};

    /// All must outlive it.
    BracketMarker(EditorTextView &view, TextDocument &document, const CommandServices &services);

    /// The caret goes to the bracket that belongs to the one beside it, and stays on the same side of it; beside none it goes to the end
    /// of the pair around it.
    void goToMatch();
    /// Selects what is between the innermost brackets around the selection; when that is selected, these as well.
    void selectEnclosing();

    /// Where the two brackets are.
    struct Pair {
        qsizetype beside = 0;
        qsizetype partner = 0;

        friend bool operator==(const Pair &, const Pair &) = default;
    };
    /// None while there is none, or nobody knows it yet.
    [[nodiscard]] const std::optional<Pair> &pair() const { return m_pair; }

private:
    /// Runs with a search on some thread.
    template<class Answer>
    using Question = std::function<std::optional<Answer>(BracketSearch &search)>;

    void update();
    void show(const std::optional<Pair> &pair);
    /// The two, ascending.
    [[nodiscard]] std::vector<TextRange> marked() const;
    void updateHint();
    template<class Answer>
    [[nodiscard]] std::optional<Answer> askNear(const Question<Answer> &question);
    template<class Answer>
    [[nodiscard]] BackgroundTask askFar(const Question<Answer> &question, std::function<void(const std::optional<Answer> &)> done);
    /// In view or wherever it is; `then` is called unless text or selection are others by then.
    template<class Answer>
    void find(const Question<Answer> &question, std::function<void(const Answer &)> then);

    EditorTextView &m_view;
    TextDocument &m_document;
    CommandServices m_services;
    std::optional<Pair> m_pair;
    QPointer<OutOfSightHint> m_hint;
    DelayedTask m_soon;
    BackgroundTask m_search;
    BackgroundTask m_command;
};
