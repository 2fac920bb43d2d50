// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Base/Scheduler.h"
#include "Text/Selections.h"
#include "Text/TextCounts.h"

#include <QObject>

class Rope;
class TextView;
struct TextChange;

/// Counts what is in the text of a view and in its selections. Nothing is counted before somebody asks. What one sees at a time is counted
/// at once, and so is what a key changes; anything larger on a worker, when edits and selection have come to rest. Main thread only.
class TextCounter final : public QObject {
    Q_OBJECT

public:
    struct Services {
        Scheduler &scheduler;
        Workers &workers;
    };
    struct Counts {
        /// None while they are found out.
        std::optional<TextCounts> text;
        /// None without a selection, too.
        std::optional<TextCounts> selection;
    };

    /// UTF-16 units that are counted at once.
    static constexpr qsizetype most = 4096;
    /// Without an edit or another selection before a worker counts, or what was counted on the way is reported.
    static constexpr Scheduler::Milliseconds restTime{250};

    /// Both must outlive the counter.
    TextCounter(TextView &view, const Services &services, QObject *parent = nullptr);

    /// As far as they are known; `changed` reports the rest.
    [[nodiscard]] Counts counts();

signals:
    void changed();

private:
    /// Counts of stretches, which are counted on a worker where they are long.
    struct Inquiry {
        Selections stretches;
        DelayedTask start;
        BackgroundTask task;
        std::optional<TextCounts> found;
        /// What edits have changed since the worker began.
        TextCounts growth;

        [[nodiscard]] bool isUnderWay() const { return start.isPending() || task.isPending(); }
        void forget();
    };

    void noteEdit(const TextChange &change);
    void noteSelection();
    [[nodiscard]] std::optional<TextCounts> find(Inquiry &inquiry, const Selections &stretches);
    void start(Inquiry &inquiry);

    TextView &m_view;
    Services m_services;
    Inquiry m_text;
    Inquiry m_selection;
    DelayedTask m_report;
};
