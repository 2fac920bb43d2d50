// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/ReplacementPreview.h"

#include "Base/Translation.h"
#include "View/FloatingNote.h"
#include "View/TextView.h"

#include <QPainter>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostLines = 4;
/// Of a line; the rest is cut anyway.
constexpr qsizetype mostUnits = 400;
constexpr int padding = 5;
constexpr int distance = 2;

QString shownOf(const QString &replacement)
{
    QStringList lines = replacement.first(std::min(replacement.size(), mostLines * mostUnits)).split(u'\n');
    const bool isLonger = lines.size() > mostLines;
    lines = lines.first(std::min(lines.size(), mostLines));
    for (QString &line : lines) {
        line = line.first(std::min(line.size(), mostUnits)).replace(u'\t', u"    "_s);
    }
    return u"→ "_s + lines.join(u"\n  "_s) + (isLonger ? u" …"_s : QString());
}

} // namespace

ReplacementPreview::ReplacementPreview(TextView &view) : QWidget(view.viewport()), m_view(view)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    connect(&view, &TextView::visibleRowsChanged, this, [this] {
        if (isVisibleTo(parentWidget())) {
            place();
        }
    });
}

void ReplacementPreview::showFor(TextRange hit, const QString &replacement)
{
    m_hit = hit;
    m_text = replacement.isEmpty() ? u"→ "_s + localized(u"nothing") : shownOf(replacement);
    setFont(m_view.textFont());
    show();
    place();
    update();
}

QSize ReplacementPreview::sizeHint() const
{
    const QRect text = QFontMetrics(font()).boundingRect(QRect(0, 0, 10'000, 10'000), 0, m_text);
    return {text.width() + 2 * padding + 1, text.height() + 2 * distance};
}

/// Below the hit, or above where there is no room; not at all while the hit cannot be seen.
void ReplacementPreview::place()
{
    LayoutManager &layout = m_view.layoutManager();
    Viewport &port = m_view.textViewport();
    const qsizetype offset = std::min(m_hit.location, m_view.storage().length());
    const RowPosition row = layout.rowOf(offset);
    const auto top = port.topOf(row);
    const QRect area = parentWidget()->rect();
    const QSize size = sizeHint().boundedTo(area.size());
    if (!top || *top + layout.rowHeight() < 0 || *top > area.height()) {
        resize(0, 0);
        return;
    }
    const int x =
        std::clamp(static_cast<int>(port.left() + layout.xOf(row, offset)) - padding, 0, std::max(0, area.width() - size.width()));
    // A hit of several rows has its end further down.
    const auto last = port.topOf(layout.rowOf(std::min(m_hit.end(), m_view.storage().length()), Affinity::upstream));
    const int below = static_cast<int>(last.value_or(*top) + layout.rowHeight()) + distance;
    const int above = static_cast<int>(*top) - distance - size.height();
    const bool fitsBelow = below + size.height() <= area.height() || above < 0;
    setGeometry(QRect(QPoint(x, fitsBelow ? below : above), size));
}

void ReplacementPreview::paintEvent(QPaintEvent * /*event*/)
{
    const TextView::Colors &colors = m_view.colors();
    QPainter painter(this);
    paintFloatingNote(painter, rect(), colors);
    painter.setPen(colors.text);
    painter.setFont(font());
    painter.drawText(rect().adjusted(padding, distance, -padding, -distance), Qt::AlignLeft | Qt::AlignTop, m_text);
}
