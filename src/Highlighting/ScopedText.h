// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Highlighting/SyntaxHighlighter.h"

/// A text that is coloured for nobody to see, to be asked what its stretches are. For the thread that makes it.
class ScopedText final {
public:
    ScopedText(const Rope &text, const Language &language);

    [[nodiscard]] const Rope &text() const { return m_storage.text(); }
    [[nodiscard]] SyntaxHighlighter &highlighter() { return m_highlighter; }
    /// Calls `visit` for the stretches of `range` that have one scope, ascending; colours what is asked for.
    void forEachScope(TextRange range, const std::function<void(TextRange, Scope)> &visit);

private:
    TextStorage m_storage;
    ManualScheduler m_scheduler;
    NotificationCenter m_notifications;
    SyntaxHighlighter m_highlighter;
};
