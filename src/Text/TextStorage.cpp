// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextStorage.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <numeric>

namespace {

/// Debug builds check the trees of texts up to this length after every edit.
[[maybe_unused]] constexpr qsizetype longestChecked = 10'000;

} // namespace

TextStorage::TextStorage(QObject *parent) : QObject(parent) {}

TextStorage::~TextStorage() = default;

void TextStorage::apply(const TextEdits &edits)
{
    Q_ASSERT_X(!m_isReporting, "TextStorage", "an observer changes the text while it is notified of a change");
    Q_ASSERT(isValid(edits));
    if (edits.isEmpty())
        return;
    const QScopedValueRollback reporting(m_isReporting, true);
    const Rope before = m_text;
    m_text = edits.applied(std::move(m_text));
    m_runs.replace(edits);
    ++m_revision;
    Q_ASSERT(length() > longestChecked || checkInvariants());
    const TextChange change{edits, before, m_text};
    emit changed(change);
    emit didProcessEditing(change);
}

void TextStorage::setStyle(TextRange range, StyleId style)
{
    const StyleRun run{range.length, style};
    setStyles(range, {&run, 1});
}

void TextStorage::setStyles(TextRange window, std::span<const StyleRun> runs)
{
    Q_ASSERT(window.location >= 0 && window.end() <= length());
    Q_ASSERT(std::accumulate(runs.begin(), runs.end(), qsizetype(0), [](qsizetype sum, const StyleRun &run) { return sum + run.length; }) ==
             window.length);
    Q_ASSERT(std::all_of(runs.begin(), runs.end(), [this](const StyleRun &run) { return run.style < m_styles.count(); }));
    if (window.isEmpty())
        return;
    const std::vector<TextRange> ranges = m_runs.assign(window, runs);
    Q_ASSERT(length() > longestChecked || checkInvariants());
    if (!ranges.empty())
        emit stylesChanged(ranges);
}

bool TextStorage::isValid(const TextEdits &edits) const
{
    return std::ranges::all_of(edits, [this](const TextEdit &edit) {
        return edit.range.end() <= length() && !m_text.splitsPair(edit.range.location) && !m_text.splitsPair(edit.range.end());
    });
}

bool TextStorage::checkInvariants() const
{
    return m_text.checkInvariants() && m_runs.checkInvariants() && m_runs.length() == m_text.length();
}
