// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/ScopedText.h"

namespace {

/// With another colour for each scope, so that no two of them look alike.
Theme themeOfScopes()
{
    Theme theme = Theme::dark();
    for (const ScopeRow &row : scopes) {
        theme.colors[size_t(row.scope)] = 0xFF000000 | quint32(row.scope);
    }
    return theme;
}

/// Before anybody follows its edits, who would colour all of it at once.
TextStorage &filled(TextStorage &storage, const Rope &text)
{
    storage.apply({{}, text});
    return storage;
}

} // namespace

ScopedText::ScopedText(const Rope &text, const Language &language)
    : m_highlighter(filled(m_storage, text), language, themeOfScopes(), m_scheduler, m_notifications)
{
    m_highlighter.rehighlightAll();
}

void ScopedText::forEachScope(TextRange range, const std::function<void(TextRange, Scope)> &visit)
{
    m_highlighter.ensureHighlighted(range);
    m_highlighter.forEachScope(range, visit);
}
