// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextStorage.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

constexpr size_t mostStyleChanges = 4000;
/// Debug builds check the trees of texts up to this length after every edit.
[[maybe_unused]] constexpr qsizetype longestChecked = 10'000;

/// Ascending and apart.
void normalize(std::vector<TextRange> &ranges)
{
    std::ranges::sort(ranges, {}, &TextRange::location);
    size_t kept = 0;
    for (const TextRange range : ranges) {
        if (range.isEmpty())
            continue;
        if (kept > 0 && ranges[kept - 1].touches(range))
            ranges[kept - 1] = ranges[kept - 1].united(range);
        else
            ranges[kept++] = range;
    }
    ranges.resize(kept);
}

} // namespace

TextStorage::TextStorage(QObject *parent) : QObject(parent) {}

TextStorage::~TextStorage() = default;

void TextStorage::endEditing()
{
    Q_ASSERT(m_depth > 0);
    if (--m_depth > 0)
        return;
    normalize(m_styleChanges);
    Report report{m_changes.finish(m_text), std::exchange(m_styleChanges, {})};
    if (!report.changes.empty() || !report.styles.empty())
        m_reports.push_back(std::move(report));
    if (std::exchange(m_isReporting, true))
        return;
    while (!m_reports.empty()) {
        const Report next = std::move(m_reports.front());
        m_reports.pop_front();
        send(next);
    }
    m_isReporting = false;
}

void TextStorage::send(const Report &report)
{
    EditMask mask;
    TextRange range;
    qsizetype changeInLength = 0;
    if (!report.styles.empty()) {
        mask |= editedAttributes;
        range = report.styles.front().united(report.styles.back());
    }
    for (const TextChange &change : report.changes) {
        const TextRange edited{change.position, change.inserted};
        range = mask ? range.united(edited) : edited;
        mask |= editedCharacters;
        changeInLength += change.inserted - change.removed;
    }
    if (mask & editedCharacters)
        emit changed(report.changes);
    if (mask & editedAttributes)
        emit stylesChanged(report.styles);
    emit didProcessEditing(mask, range, changeInLength);
}

void TextStorage::replaceCharacters(TextRange range, QStringView text)
{
    edit(range, text, text.size());
}

void TextStorage::replaceCharacters(TextRange range, const Rope &text)
{
    edit(range, text, text.length());
}

template<class Text>
void TextStorage::edit(TextRange range, const Text &text, qsizetype textLength)
{
    Q_ASSERT(isValid(range));
    if (range.isEmpty() && textLength == 0)
        return;
    const EditBatch batch(*this);
    const qsizetype linesBefore = m_text.lineCount();
    const bool startsAtLf = range.location < length() && m_text.at(range.location) == u'\n';
    Rope removed;
    if (m_recorder)
        removed = m_text.slice(range);

    m_text.replace(range, text);
    m_runs.replace(range, textLength);
    ++m_revision;
    Q_ASSERT(length() > longestChecked || checkInvariants());
    m_changes.add({.position = range.location,
                   .removed = range.length,
                   .inserted = textLength,
                   .addedLines = m_text.lineCount() - linesBefore,
                   .startsAtLf = startsAtLf});
    if (!m_styleChanges.empty())
        moveStyleChanges({.position = range.location, .removed = range.length, .inserted = textLength});
    if (m_recorder)
        m_recorder->recordEdit(range.location, removed, Rope(text));
}

/// Styles changed earlier in this batch are reported in the text at its end.
void TextStorage::moveStyleChanges(const TextChange &change)
{
    const TextChangeList changes{change};
    for (TextRange &range : m_styleChanges)
        range = mappedRange(range, changes);
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
    const EditBatch batch(*this);
    addStyleChanges(m_runs.assign(window, runs));
    Q_ASSERT(length() > longestChecked || checkInvariants());
}

void TextStorage::addStyleChanges(std::vector<TextRange> ranges)
{
    m_styleChanges.insert(m_styleChanges.end(), ranges.begin(), ranges.end());
    if (m_styleChanges.size() <= mostStyleChanges)
        return;
    normalize(m_styleChanges);
    if (m_styleChanges.size() > mostStyleChanges)
        m_styleChanges.assign(1, m_styleChanges.front().united(m_styleChanges.back()));
}

bool TextStorage::isValid(TextRange range) const
{
    return range.location >= 0 && range.length >= 0 && range.end() <= length() && !m_text.splitsPair(range.location) &&
           !m_text.splitsPair(range.end());
}

bool TextStorage::checkInvariants() const
{
    return m_text.checkInvariants() && m_runs.checkInvariants() && m_runs.length() == m_text.length();
}
