// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/TextCounter.h"

#include "View/TextView.h"

namespace {

TextCounts countsOf(const Rope &text, const Selections &stretches, const std::stop_token &stop = {})
{
    TextCounts counts;
    for (const CaretSelection &one : stretches) {
        counts += TextCounts::of(text, one.range(), stop);
    }
    return counts;
}

} // namespace

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
    const TextSelection whole{0, m_view.storage().length()};
    const auto text = find(m_text, whole);
    if (!m_view.selections().hasSelected()) {
        return {text, std::nullopt};
    }
    return {text, m_view.selections().selectedUnits() == whole.range().length ? text : find(m_selection, m_view.selections())};
}

std::optional<TextCounts> TextCounter::find(Inquiry &inquiry, const Selections &stretches)
{
    inquiry.stretches = stretches;
    if (!inquiry.found && !inquiry.isUnderWay()) {
        if (stretches.selectedUnits() + qsizetype(stretches.count()) <= most) {
            inquiry.found = countsOf(m_view.storage().text(), stretches);
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
            [text = m_view.storage().text(), stretches = inquiry.stretches](const std::stop_token &stop) {
                return countsOf(text, stretches, stop);
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
    if (m_view.selections() != m_selection.stretches) {
        m_selection.forget();
    }
}
