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

} // namespace

ScopedText::ScopedText(const Rope &text, const Language &language)
    : m_highlighter(m_storage, language, themeOfScopes(), m_scheduler, m_notifications)
{
    m_storage.apply({{}, text});
    m_highlighter.rehighlightAll();
}

void ScopedText::forEachScope(TextRange range, const std::function<void(TextRange, Scope)> &visit)
{
    m_highlighter.ensureHighlighted(range);
    m_highlighter.forEachScope(range, visit);
}
