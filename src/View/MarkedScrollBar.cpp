// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/MarkedScrollBar.h"

#include "Base/ColorContrast.h"
#include "View/TextView.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionSlider>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// Pixels beside a mark that count as its own for a click.
constexpr int reach = 2;
/// Pixels of a wedge above and below its row.
constexpr int wedgeRise = 2;
/// What can be told apart.
constexpr double leastContrast = 3;

} // namespace

MarkedScrollBar::MarkedScrollBar(TextView &view) : TextScrollBar(Qt::Vertical), m_view(view)
{
    setMouseTracking(true);
    std::ranges::transform(scrollMarkKinds, m_baseColors.begin(), &ScrollMarkKind::color);
}

MarkedScrollBar *MarkedScrollBar::of(const TextView &view)
{
    return qobject_cast<MarkedScrollBar *>(view.verticalScrollBar());
}

void MarkedScrollBar::setSource(ScrollMark mark, Source source)
{
    m_sources[static_cast<size_t>(mark)] = std::move(source);
    placesChanged();
}

void MarkedScrollBar::placesChanged()
{
    m_made.reset();
    update();
}

bool MarkedScrollBar::mayHave(size_t kind) const
{
    const Source &source = m_sources[kind];
    return source.has && (!source.any || source.any());
}

bool MarkedScrollBar::mayHaveMarks() const
{
    for (size_t kind = 0; kind < m_sources.size(); ++kind) {
        if (mayHave(kind)) {
            return true;
        }
    }
    return false;
}

// Rows of pixels

QRect MarkedScrollBar::placeOf(QStyle::SubControl part) const
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    return style()->subControlRect(QStyle::CC_ScrollBar, &option, part, this);
}

MarkedScrollBar::Made MarkedScrollBar::wanted()
{
    return {.revision = m_view.storage().revision(),
            .rowCount = m_view.layoutManager().rowCount(),
            .contentHeight = m_view.textViewport().maximumY() + m_view.textViewport().size().height(),
            .groove = placeOf(QStyle::SC_ScrollBarGroove)};
}

/// Where the text begins that is beside a row of pixels when the handle is there.
qsizetype MarkedScrollBar::offsetAt(int row, const Made &made)
{
    const double y = made.contentHeight * row / made.groove.height() - m_view.textViewport().insets().vertical;
    return m_view.layoutManager().offsetNear(y / m_view.layoutManager().rowHeight());
}

void MarkedScrollBar::makeRows()
{
    const Made made = wanted();
    if (m_made == made) {
        return;
    }
    m_made = made;
    m_rows.assign(static_cast<size_t>(std::max(0, made.groove.height())), 0);
    m_kinds = 0;
    quint8 wantedKinds = 0;
    for (size_t kind = 0; kind < m_sources.size(); ++kind) {
        wantedKinds |= static_cast<quint8>(mayHave(kind) ? 1U << kind : 0U);
    }
    if (!m_rows.empty()) {
        markRows({.first = 0, .end = made.groove.height(), .text = {0, m_view.storage().length() + 1}}, wantedKinds);
    }
}

/// Only where something is are rows told apart: what is rare costs few questions.
void MarkedScrollBar::markRows(const Rows &rows, quint8 kinds)
{
    quint8 found = 0;
    for (size_t kind = 0; kind < m_sources.size() && !rows.text.isEmpty(); ++kind) {
        if ((kinds >> kind & 1U) != 0 && m_sources[kind].has(rows.text)) {
            found |= static_cast<quint8>(1U << kind);
        }
    }
    if (found == 0) {
        return;
    }
    if (rows.end - rows.first == 1) {
        m_rows[static_cast<size_t>(rows.first)] = found;
        m_kinds |= found;
        return;
    }
    const int middle = rows.first + (rows.end - rows.first) / 2;
    const qsizetype border = std::clamp(offsetAt(middle, *m_made), rows.text.location, rows.text.end());
    markRows({.first = rows.first, .end = middle, .text = TextRange::between(rows.text.location, border)}, found);
    markRows({.first = middle, .end = rows.end, .text = TextRange::between(border, rows.text.end())}, found);
}

std::vector<int> MarkedScrollBar::rowsOf(ScrollMark mark)
{
    makeRows();
    std::vector<int> rows;
    for (int row = 0; row < static_cast<int>(m_rows.size()); ++row) {
        if (has(row, static_cast<size_t>(mark))) {
            rows.push_back(m_made->groove.top() + row);
        }
    }
    return rows;
}

// Painting

void MarkedScrollBar::setBaseColor(ScrollMark mark, quint32 color)
{
    if (std::exchange(m_baseColors[static_cast<size_t>(mark)], color) != color) {
        m_colors.reset();
        update();
    }
}

void MarkedScrollBar::setColors(const QColor &ground, const QColor &handle)
{
    TextScrollBar::setColors(ground, handle);
    m_colors.reset();
}

QColor MarkedScrollBar::colorOf(ScrollMark mark)
{
    if (!m_colors) {
        const auto [ground, handle] = grounds();
        m_colors.emplace();
        for (const ScrollMarkKind &kind : scrollMarkKinds) {
            (*m_colors)[static_cast<size_t>(kind.mark)] = QColor::fromRgb(legible(
                m_baseColors[static_cast<size_t>(kind.mark)], oppositeOf(ground.rgb()), leastContrast, {ground.rgb(), handle.rgb()}));
        }
    }
    return (*m_colors)[static_cast<size_t>(mark)];
}

void MarkedScrollBar::paintEvent(QPaintEvent *event)
{
    TextScrollBar::paintEvent(event);
    if (!mayHaveMarks() || minimum() == maximum()) {
        return;
    }
    makeRows();
    if (m_kinds == 0) {
        return;
    }
    QPainter painter(this);
    for (const ScrollMarkKind &kind : scrollMarkKinds) {
        if ((m_kinds >> static_cast<unsigned>(kind.mark) & 1U) != 0) {
            std::ignore = colorOf(kind.mark);
            paintMarks(painter, kind);
        }
    }
}

/// Marks in rows that follow one another are one.
void MarkedScrollBar::paintMarks(QPainter &painter, const ScrollMarkKind &kind) const
{
    const auto index = static_cast<size_t>(kind.mark);
    const QColor color = (*m_colors)[index];
    const int left = static_cast<int>(std::lround(kind.left * (width() - 2))) + 1;
    const int right = static_cast<int>(std::lround(kind.right * (width() - 2))) + 1;
    const int breadth = right - left;
    const int rowCount = static_cast<int>(m_rows.size());
    for (int row = 0; row < rowCount; ++row) {
        const int first = row;
        while (row < rowCount && has(row, index)) {
            ++row;
        }
        if (row == first) {
            continue;
        }
        const int top = m_made->groove.top() + first;
        const int height = row - first - 1 + markHeight;
        switch (kind.shape) {
        case ScrollMarkShape::bar:
            painter.fillRect(left, top, breadth, height, color);
            break;
        case ScrollMarkShape::rails: {
            const int rail = std::max(1, breadth * 2 / 5);
            painter.fillRect(left, top, rail, height, color);
            painter.fillRect(right - rail, top, rail, height, color);
            break;
        }
        case ScrollMarkShape::wedge:
            for (int step = 0; step < breadth; ++step) {
                const int rise = (wedgeRise * (breadth - 1 - step) + breadth / 2) / std::max(1, breadth - 1);
                painter.fillRect(left + step, top - rise, 1, height + 2 * rise, color);
            }
            break;
        }
    }
}

void MarkedScrollBar::changeEvent(QEvent *event)
{
    TextScrollBar::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
        m_colors.reset();
    }
}

// The pointer

/// The nearest mark; that of the kind which is drawn last, of several as near. None on the handle, which is for dragging.
std::optional<MarkedScrollBar::Mark> MarkedScrollBar::markAt(QPoint place)
{
    if (!mayHaveMarks() || placeOf(QStyle::SC_ScrollBarSlider).contains(place)) {
        return std::nullopt;
    }
    makeRows();
    const int y = place.y() - m_made->groove.top();
    std::optional<Mark> nearest;
    int least = reach;
    const int end = std::min(y + reach + 1, static_cast<int>(m_rows.size()));
    for (size_t kind = 0; kind < scrollMarkKinds.size(); ++kind) {
        for (int row = std::max(y - reach - markHeight + 1, 0); row < end; ++row) {
            const int distance = std::max({row - y, y - (row + markHeight - 1), 0});
            if (has(row, kind) && distance <= least) {
                nearest = {.kind = kind, .row = row};
                least = distance;
            }
        }
    }
    return nearest;
}

void MarkedScrollBar::mousePressEvent(QMouseEvent *event)
{
    const auto mark = event->button() == Qt::LeftButton ? markAt(event->position().toPoint()) : std::nullopt;
    m_isOnMark = mark.has_value();
    if (!mark) {
        TextScrollBar::mousePressEvent(event);
        return;
    }
    event->accept();
    const Made made = *m_made;
    const qsizetype from = mark->row == 0 ? 0 : offsetAt(mark->row, made);
    const qsizetype end = mark->row + 1 == made.groove.height() ? m_view.storage().length() + 1 : offsetAt(mark->row + 1, made);
    if (const auto go = m_sources[mark->kind].go) {
        go(TextRange::between(from, std::max(from, end)));
    }
}

void MarkedScrollBar::mouseMoveEvent(QMouseEvent *event)
{
    if (m_isOnMark) {
        return;
    }
    const bool isOver = event->buttons() == Qt::NoButton && markAt(event->position().toPoint());
    if (isOver != testAttribute(Qt::WA_SetCursor)) {
        isOver ? setCursor(Qt::PointingHandCursor) : unsetCursor();
    }
    TextScrollBar::mouseMoveEvent(event);
}

void MarkedScrollBar::mouseReleaseEvent(QMouseEvent *event)
{
    if (!std::exchange(m_isOnMark, false)) {
        TextScrollBar::mouseReleaseEvent(event);
    }
}
