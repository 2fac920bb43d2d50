// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/DeferredView.h"

#include "Editor/AutoPairs.h"
#include "Editor/EditorTextView.h"
#include "Text/TextBoundaries.h"
#include "Text/TextStorage.h"

#include <QScopedValueRollback>

#include <utility>

DeferredView::DeferredView(EditorTextView &view, std::function<void(const TextChange &change)> changed)
    : m_view(view), m_changed(std::move(changed)),
      m_connection(QObject::connect(&view.storage(), &TextStorage::changed, &view, [this](const TextChange &change) { follow(change); }))
{}

DeferredView::~DeferredView()
{
    QObject::disconnect(m_connection);
}

void DeferredView::begin()
{
    if (m_depth++ == 0) {
        m_text = m_view.storage().text();
    }
}

void DeferredView::end()
{
    if (m_depth == 1) {
        flush();
        m_selected.reset();
        m_text = {};
    }
    --m_depth;
}

bool DeferredView::mayType() const
{
    return isDeferring() && !m_view.autoPairs() && m_view.selections().isSingle();
}

void DeferredView::flush()
{
    if (m_depth == 0) {
        return;
    }
    const QScopedValueRollback flushing(m_isFlushing, true);
    if (const TextEdits edits = m_edits.take().withWholePairs(m_view.storage().text()); !edits.isEmpty()) {
        const Selections after = m_selected ? Selections(m_selected->selection) : m_view.selections();
        m_view.apply(edits, GroupKind::other, after, TextView::Reveal::no);
        m_text = m_view.storage().text();
    }
    if (const auto shape = std::exchange(m_shape, std::nullopt)) {
        m_view.setLook(&TextLooks::caretShape, *shape);
    }
    if (m_selected) {
        m_view.showCaretAt(m_selected->selection, m_selected->shown);
    }
    if (const auto reveal = std::exchange(m_reveal, TextView::Reveal::nearest); reveal == TextView::Reveal::center) {
        m_view.revealCaret(reveal);
    }
}

EditorTextView &DeferredView::direct()
{
    flush();
    m_selected.reset();
    return m_view;
}

const Rope &DeferredView::text() const
{
    return isDeferring() ? m_text : m_view.storage().text();
}

TextSelection DeferredView::selection() const
{
    return m_selected ? m_selected->selection : m_view.selection();
}

void DeferredView::select(TextSelection selection, qsizetype shown)
{
    m_selected = {{TextBoundaries::snapped(m_text, selection.anchor), TextBoundaries::snapped(m_text, selection.caret)}, shown};
}

bool DeferredView::apply(const TextEdits &edits)
{
    if (m_view.isReadOnly()) {
        return false;
    }
    const Rope before = std::exchange(m_text, edits.applied(m_text));
    m_edits.add(edits);
    const qsizetype place = edits[0].range.location;
    m_selected = {TextSelection::at(place), place};
    m_changed({edits, before, m_text});
    return true;
}

void DeferredView::type(const QString &text)
{
    const TextRange selected = selection().range();
    if (const TextEdits edits(selected, text); edits.isEmpty() || apply(edits)) {
        const qsizetype end = selected.location + text.size();
        select(TextSelection::at(end), end);
    }
}

/// The view's text has become another.
void DeferredView::follow(const TextChange &change)
{
    if (m_isFlushing) {
        return; // that is what was told already
    }
    if (isDeferring()) {
        m_text = change.after;
        if (m_selected) {
            m_selected->selection = change.mapped(m_selected->selection);
            m_selected->shown = change.mapped(m_selected->shown, Bias::after);
        }
    }
    m_changed(change);
}
