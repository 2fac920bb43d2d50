// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/SubstitutionRunner.h"

#include "Base/Translation.h"
#include "Text/TextStorage.h"
#include "View/TextView.h"

#include <QKeyEvent>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype searchedAtOnce = qsizetype(512) * 1024;
/// Before anything is said of a search that goes on.
constexpr Scheduler::Milliseconds timeout = 500ms;
constexpr Scheduler::Milliseconds toBeRead = 5s;
constexpr Scheduler::Milliseconds untilReplaced = 24h;

} // namespace

SubstitutionRunner::SubstitutionRunner(CommandServices services, std::function<void(TextView &view)> changed)
    : m_services(std::move(services)), m_changed(std::move(changed))
{}

SubstitutionRunner::~SubstitutionRunner() = default;

void SubstitutionRunner::run(TextView &view, const VimSubstitution &substitution)
{
    finish({});
    auto searcher = substitution.searcher();
    if (!searcher) {
        finish(formatted(localized(u"Bad pattern: %@"), substitution.pattern));
        return;
    }
    m_view = &view;
    m_substitution = substitution;
    const Rope &text = view.storage().text();
    if (!substitution.isOfWholeText || text.length() <= searchedAtOnce) {
        TextReplacement replacement = substitution.replacementIn(text, view.selection().range().location, *searcher);
        arrive({std::move(replacement), searcher->gaveUp()});
        return;
    }
    view.installEventFilter(this);
    m_viewGone = connect(&view, &QObject::destroyed, this, [this] {
        // Nothing but a widget is left of it.
        m_view = nullptr;
        finish(localized(u"The substitution was stopped; nothing was changed."));
    });
    m_showProgressSoon =
        m_services.scheduler.after(timeout, [this] { m_services.showMessage(localized(u"Substituting… Esc stops."), untilReplaced); });
    start();
}

void SubstitutionRunner::start()
{
    const auto search = [substitution = m_substitution](const Rope &text, const std::stop_token &stop) {
        auto searcher = substitution.searcher();
        TextReplacement replacement = substitution.replacementIn(text, 0, *searcher, {.stop = stop, .searched = nullptr});
        return ReplacementSearch::Found{std::move(replacement), searcher->gaveUp()};
    };
    m_search.start(m_view->storage(), m_services.workers, search, [this](const ReplacementSearch::Found &found) { arrive(found); });
}

void SubstitutionRunner::arrive(const ReplacementSearch::Found &found)
{
    const auto count = found.replacement.count;
    if (count == 0 && !found.isIncomplete) {
        finish(formatted(localized(u"Pattern not found: %@"), m_substitution.pattern));
        return;
    }
    if (count > 0 && m_view->isReadOnly()) {
        finish(localized(u"This text is read-only; nothing was changed."));
        return;
    }
    TextView &view = *m_view;
    if (count > 0) {
        const TextReplacement &replacement = found.replacement;
        view.apply(replacement.edits, GroupKind::other, replacement.selectionAfter(view.storage().text(), view.selection()),
                   TextView::Reveal::no);
    }
    const QString done = count == 1 ? localized(u"1 substitution") : formatted(localized(u"%d substitutions"), count);
    finish(found.isIncomplete ? done + u". "_s + localized(u"The expression is too hard for parts of this text. There may be more hits.")
                              : done);
    if (count > 0) {
        m_changed(view);
    }
}

/// Whatever was under way is over. What is said of it may be nothing.
void SubstitutionRunner::finish(const QString &message)
{
    m_search.cancel();
    m_showProgressSoon.cancel();
    disconnect(m_viewGone);
    if (m_view) {
        m_view->removeEventFilter(this);
    }
    m_view = nullptr;
    if (!message.isEmpty()) {
        m_services.showMessage(message, toBeRead);
    }
}

bool SubstitutionRunner::eventFilter(QObject *object, QEvent *event)
{
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (!isKey || static_cast<const QKeyEvent *>(event)->key() != Qt::Key_Escape) {
        return QObject::eventFilter(object, event);
    }
    event->accept();
    if (event->type() == QEvent::KeyPress) {
        finish(localized(u"The substitution was stopped; nothing was changed."));
    }
    return true;
}
