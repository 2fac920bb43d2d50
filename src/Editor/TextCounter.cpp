// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/TextCounter.h"

#include "View/TextView.h"

TextCounter::TextCounter(TextView &view, const Services &services, QObject *parent) : QObject(parent), m_view(view), m_services(services)
{
    connect(&view.storage(), &TextStorage::changed, this, &TextCounter::noteEdit);
    connect(&view, &TextView::selectionChanged, this, &TextCounter::noteSelection);
}

void TextCounter::Inquiry::forget()
{
    start.cancel();
    task.cancel();
    found.reset();
}

TextCounter::Counts TextCounter::counts()
{
    const TextRange whole{0, m_view.storage().length()};
    const TextRange selected = m_view.selection().range();
    const auto text = find(m_text, whole);
    if (selected.isEmpty()) {
        return {text, std::nullopt};
    }
    return {text, selected == whole ? text : find(m_selection, selected)};
}

std::optional<TextCounts> TextCounter::find(Inquiry &inquiry, TextRange range)
{
    inquiry.range = range;
    if (!inquiry.found && !inquiry.isUnderWay()) {
        if (range.length <= most) {
            inquiry.found = TextCounts::of(m_view.storage().text(), range);
        } else {
            start(inquiry);
        }
    }
    return inquiry.found;
}

void TextCounter::start(Inquiry &inquiry)
{
    inquiry.start = m_services.scheduler.after(restTime, [this, &inquiry] {
        inquiry.growth = {};
        inquiry.task = BackgroundTask::start(
            m_services.workers,
            [text = m_view.storage().text(), range = inquiry.range](const std::stop_token &stop) {
                return TextCounts::of(text, range, stop);
            },
            [this, &inquiry](TextCounts found) {
                found += inquiry.growth;
                inquiry.found = found;
                emit changed();
            });
    });
}

void TextCounter::noteEdit(const TextChange &change)
{
    m_selection.forget();
    if (!m_text.found && !m_text.isUnderWay()) {
        return; // nobody has asked
    }
    const auto growth = m_text.start.isPending() ? std::nullopt : TextCounts::growth(change, most);
    if (!growth) {
        m_text.forget();
    } else if (m_text.found) {
        *m_text.found += *growth;
    } else {
        m_text.growth += *growth;
    }
    m_report = m_services.scheduler.after(restTime, [this] { emit changed(); });
}

void TextCounter::noteSelection()
{
    if (m_view.selection().range() != m_selection.range) {
        m_selection.forget();
    }
}
