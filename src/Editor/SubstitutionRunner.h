// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Editor/LongWork.h"
#include "Find/ReplacementSearch.h"

#include <QObject>
#include <QPointer>

#include <functional>

class TextView;
struct VimSubstituteJob;
struct VimSubstitution;

/// Carries out one `:s` at a time: at once in a short text, else on a worker, while the view can be used; when its text has changed
/// meanwhile, once more. Escape in the view stops it, as its end does, and then nothing was changed. Main thread only; the services must
/// outlive it, the view need not.
class SubstitutionRunner final : public QObject {
    Q_OBJECT

public:
    /// `changed` is called when the text of the view was.
    SubstitutionRunner(CommandServices services, std::function<void(TextView &view)> changed);
    ~SubstitutionRunner() override;

    /// One that is under way is stopped.
    void run(TextView &view, const VimSubstitution &substitution);
    /// One of exact mode; without asking, whatever its flags.
    void run(TextView &view, const VimSubstituteJob &job);

private:
    using Found = ReplacementSearch::Found;
    /// What is asked for, in whichever language.
    struct Task {
        /// Units that it looks through.
        qsizetype length = 0;
        ReplacementSearch::Search search;
        std::function<TextSelection(const Found &found, const TextView &view)> selectionAfter;
        /// What there is to say when it is done.
        std::function<QString(const Found &found)> message;
    };

    void run(TextView &view, Task task);
    void arrive(const Found &found);
    void finish(const QString &message);

    CommandServices m_services;
    std::function<void(TextView &view)> m_changed;
    QPointer<TextView> m_view;
    QMetaObject::Connection m_viewGone;
    Task m_task;
    ReplacementSearch m_search;
    LongWork m_work;
};
