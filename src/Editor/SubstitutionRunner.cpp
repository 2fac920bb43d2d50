// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/SubstitutionRunner.h"

#include "Base/Translation.h"
#include "Text/TextStorage.h"
#include "View/TextView.h"
#include "Vim/VimSubstituteJob.h"
#include "Vim/VimSubstitution.h"

#include <memory>
#include <utility>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype searchedAtOnce = qsizetype(512) * 1024;
constexpr Scheduler::Milliseconds toBeRead = 5s;

} // namespace

SubstitutionRunner::SubstitutionRunner(CommandServices services, std::function<void(TextView &view)> changed)
    : m_services(std::move(services)), m_changed(std::move(changed)), m_work(m_services)
{}

SubstitutionRunner::~SubstitutionRunner() = default;

void SubstitutionRunner::run(TextView &view, const VimSubstitution &substitution)
{
    if (!substitution.searcher()) {
        finish(formatted(localized(u"Bad pattern: %@"), substitution.pattern));
        return;
    }
    const qsizetype caret = view.selection().range().location;
    const auto search = [substitution, caret](const Rope &text, const std::stop_token &stop) {
        auto searcher = substitution.searcher();
        TextReplacement replacement = substitution.replacementIn(text, caret, *searcher, {.stop = stop, .searched = nullptr});
        return Found{std::move(replacement), searcher->gaveUp()};
    };
    const auto message = [pattern = substitution.pattern](const Found &found) {
        const auto count = found.replacement.count;
        if (count == 0 && !found.isIncomplete) {
            return formatted(localized(u"Pattern not found: %@"), pattern);
        }
        const QString done = count == 1 ? localized(u"1 substitution") : formatted(localized(u"%d substitutions"), count);
        return found.isIncomplete
                   ? done + u". "_s + localized(u"The expression is too hard for parts of this text. There may be more hits.")
                   : done;
    };
    const auto selectionAfter = [](const Found &found, const TextView &changed) {
        return found.replacement.selectionAfter(changed.storage().text(), changed.selection());
    };
    run(view, {substitution.isOfWholeText ? view.storage().text().length() : 0, search, selectionAfter, message});
}

void SubstitutionRunner::run(TextView &view, const VimSubstituteJob &job)
{
    const auto outcome = std::make_shared<VimSubstituteOutcome>();
    const auto search = [job, outcome](const Rope &text, const std::stop_token &stop) {
        *outcome = job.outcome(text, {.stop = stop, .searched = nullptr});
        return Found{{.count = outcome->edits.isEmpty() ? 0 : outcome->hits, .edits = outcome->edits}, outcome->isIncomplete};
    };
    const auto message = [job, outcome](const Found & /*found*/) { return job.message(*outcome); };
    const auto selectionAfter = [outcome](const Found & /*found*/, const TextView & /*changed*/) {
        return TextSelection::at(outcome->caret);
    };
    const Rope &text = view.storage().text();
    run(view, {text.lineStart(job.lastLine + 1) - text.lineStart(job.firstLine), search, selectionAfter, message});
}

void SubstitutionRunner::run(TextView &view, Task task)
{
    finish({});
    m_view = &view;
    m_task = std::move(task);
    if (m_task.length <= searchedAtOnce) {
        arrive(m_task.search(view.storage().text(), {}));
        return;
    }
    m_work.begin(view, localized(u"Substituting… Esc stops."), LongWork::Keys::pass,
                 [this] { finish(localized(u"The substitution was stopped; nothing was changed")); });
    m_viewGone = connect(&view, &QObject::destroyed, this, [this] {
        // Nothing but a widget is left of it.
        m_view = nullptr;
        finish(localized(u"The substitution was stopped; nothing was changed"));
    });
    m_search.start(m_view->storage(), m_services.workers, m_task.search, [this](const Found &found) { arrive(found); });
}

void SubstitutionRunner::arrive(const Found &found)
{
    const bool changes = found.replacement.count > 0;
    if (changes && m_view->isReadOnly()) {
        finish(localized(u"This text is read-only; nothing was changed"));
        return;
    }
    TextView &view = *m_view;
    if (changes) {
        view.apply(found.replacement.edits, GroupKind::other, m_task.selectionAfter(found, view), TextView::Reveal::no);
    }
    finish(m_task.message(found));
    if (changes) {
        m_changed(view);
    }
}

/// Whatever was under way is over. What is said of it may be nothing.
void SubstitutionRunner::finish(const QString &message)
{
    m_search.cancel();
    m_work.end();
    disconnect(m_viewGone);
    m_view = nullptr;
    if (!message.isEmpty()) {
        m_services.showMessage(message, toBeRead);
    }
}
