// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/SubstitutionPreview.h"

#include "Editor/SubstitutionPanel.h"
#include "View/TextView.h"
#include "Vim/VimEngine.h"

namespace {

/// Units; nothing is shown in lines that are longer.
constexpr qsizetype longestSeen = 0x40000;

} // namespace

SubstitutionPreview::SubstitutionPreview(TextView &view) : m_view(view), m_panel(std::make_unique<SubstitutionPanel>(view))
{
    connect(&view, &TextView::visibleRowsChanged, this, &SubstitutionPreview::show);
}

SubstitutionPreview::~SubstitutionPreview()
{
    if (m_job) {
        m_view.setLook(&TextLooks::replacedHits, {});
    }
}

void SubstitutionPreview::follow(VimEngine &engine)
{
    const QString line = engine.commandLine().text();
    const bool isOpen = engine.mode() == VimEngine::Mode::commandLine;
    if (isOpen && m_job && line == m_line) {
        return;
    }
    auto typed = engine.typedSubstitution();
    if (!typed) {
        end();
        return;
    }
    if (!m_job) {
        m_place = m_view.textViewport().place();
        m_view.setLook(&TextLooks::replacedHits, [this](TextRange seen) { return hitsIn(seen); });
    }
    m_line = line;
    m_job = std::move(typed->job);
    m_hasReplacement = typed->hasReplacement;
    revealFirstHit();
    show();
}

void SubstitutionPreview::end()
{
    if (std::exchange(m_job, std::nullopt)) {
        m_hits.clear();
        m_panel->show({});
        m_view.setLook(&TextLooks::replacedHits, {});
        m_view.scrollTo(m_place);
    }
}

void SubstitutionPreview::revealFirstHit()
{
    const Rope &text = m_view.storage().text();
    m_view.scrollTo(m_place);
    if (text.length() > VimSearch::nearby) {
        return;
    }
    if (const auto hit = VimSubstituteWalk(*m_job, text).next()) {
        const TextRange seen = TextViewRepaint(m_view).seen();
        if (hit->range.location < seen.location || hit->range.location > seen.end() || m_job->preview(text, seen).empty()) {
            m_view.revealOffset(hit->range.location);
        }
    }
}

/// Of the rows that are seen now.
void SubstitutionPreview::show()
{
    if (!m_job) {
        return;
    }
    const Rope &text = m_view.storage().text();
    const TextRange seen = TextViewRepaint(m_view).seen();
    const bool isTooLong = seen.end() - text.lineStart(text.lineAt(seen.location)) > longestSeen;
    m_hits = isTooLong ? std::vector<VimSubstituteHit>() : m_job->preview(text, seen);
    const bool hasRows = m_hasReplacement && !m_hits.empty();
    m_panel->show(hasRows ? SubstitutionPanel::rows(text, m_hits, m_panel->mostRows()) : std::vector<SubstitutionPanel::Row>(),
                  hasRows ? rowOf(m_hits.front()) : QRect());
    m_view.viewport()->update();
}

/// The row of the screen that has it.
QRect SubstitutionPreview::rowOf(const VimSubstituteHit &hit) const
{
    const LayoutManager &layout = m_view.layoutManager();
    const auto top = m_view.textViewport().topOf(m_view.layoutManager().rowOf(hit.range.location));
    return top ? QRect(0, int(*top), m_view.viewport()->width(), int(layout.rowHeight())) : QRect();
}

std::vector<TextRange> SubstitutionPreview::hitsIn(TextRange seen) const
{
    std::vector<TextRange> found;
    for (const VimSubstituteHit &hit : m_hits) {
        if (hit.range.touches(seen)) {
            found.push_back(hit.range);
        }
    }
    return found;
}
