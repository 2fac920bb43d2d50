// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/LineNumberRulerView.h"

#include "Editor/ChangeMarks.h"
#include "Text/TextStorage.h"
#include "View/TextView.h"

#include <QCoreApplication>
#include <QFontDatabase>
#include <QMouseEvent>
#include <QPainter>

#include <cmath>

namespace {

constexpr int leastDigits = 3;
constexpr double padding = 10;
constexpr double smallerBy = 1.5;
constexpr double smallestFont = 9;
/// Rows that reach so far beyond the visible part are drawn too.
constexpr double overdraw = 20;

/// Of the marks of changed lines, and between them and the text.
constexpr double markWidth = 3;
constexpr double markInset = 2;
/// Of the mark between two lines where others are missing, from its middle up and down.
constexpr double notchReach = 4;

QFont numberFont(double pointSize)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setWeight(QFont::Normal);
    font.setPointSizeF(pointSize);
    return font;
}

/// Also of a font that was given in pixels.
double pointSize(const QFont &font)
{
    return font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
}

/// The place at the left edge of the text's viewport, which begins and ends where the ruler does.
QPointF besideText(const QMouseEvent &event)
{
    return {0, event.position().y()};
}

} // namespace

LineNumberRulerView::LineNumberRulerView(TextView &client, QWidget *parent)
    : QWidget(parent), m_client(client), m_theme(&Theme::light()), m_editorFont(client.textFont())
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::ArrowCursor);
    setMouseTracking(true);
    updateThickness();
    connect(&client, &TextView::visibleRowsChanged, this, &LineNumberRulerView::refresh);
    connect(&client, &TextView::selectionChanged, this, &LineNumberRulerView::refresh);
    connect(&client.storage(), &TextStorage::didProcessEditing, this, &LineNumberRulerView::updateThickness);
}

void LineNumberRulerView::setTheme(const Theme &theme)
{
    m_theme = &theme;
    update();
}

void LineNumberRulerView::setEditorFont(const QFont &font)
{
    m_editorFont = font;
    m_digits = 0;
    updateThickness();
    update();
}

void LineNumberRulerView::setHighlightsCurrentLine(CurrentLine current)
{
    m_current = current;
    update();
}

void LineNumberRulerView::setNumbering(Numbering numbering)
{
    if (std::exchange(m_numbering, numbering) != numbering) {
        update();
    }
}

void LineNumberRulerView::setExplicitNumbers(std::optional<Numbers> numbers)
{
    m_numbers = std::move(numbers);
    updateThickness();
    update();
}

void LineNumberRulerView::setChanges(Changes changes)
{
    m_changes = std::move(changes);
    update();
}

qint64 LineNumberRulerView::lineCount() const
{
    return m_numbers ? qsizetype(m_numbers->largest) : m_client.storage().text().lineCount();
}

void LineNumberRulerView::updateThickness()
{
    const qsizetype digits = std::max<qsizetype>(leastDigits, QString::number(std::max<qint64>(lineCount(), 1)).size());
    if (digits == m_digits) {
        return;
    }
    m_digits = digits;
    const QFontMetricsF metrics(numberFont(pointSize(m_editorFont)));
    const double wanted = std::ceil(metrics.horizontalAdvance(QString(digits, u'8'))) + 2 * padding;
    if (std::abs(wanted - m_thickness) > 0.5) {
        m_thickness = int(wanted);
        updateGeometry();
        emit thicknessChanged();
    }
}

qsizetype LineNumberRulerView::currentLine() const
{
    return m_current == CurrentLine::highlighted ? m_client.storage().text().lineAt(m_client.selection().range().location) : -1;
}

qsizetype LineNumberRulerView::originLine() const
{
    return m_numbering == Numbering::fromFirst || m_numbers ? -1 : m_client.storage().text().lineAt(m_client.caret().shownOffset());
}

LineNumberRulerView::Shown LineNumberRulerView::shown() const
{
    Viewport &port = m_client.textViewport();
    return {port.topRow(), port.pixelsAbove(), m_client.storage().text().lineCount(), currentLine(), originLine()};
}

void LineNumberRulerView::refresh()
{
    const Shown now = shown();
    // A line that wraps may get or lose a row without any other sign of it.
    if (m_client.layoutManager().wraps() || m_shown != now) {
        m_shown = now;
        update();
    }
}

QString LineNumberRulerView::labelOf(const RowPosition &row, qsizetype origin) const
{
    if (!m_numbers) {
        const bool hasOwn = origin < 0 || (row.line == origin && m_numbering == Numbering::fromCaretWithOwn);
        return QString::number(hasOwn ? qsizetype(numberOfLine(row.line)) : std::abs(row.line - origin));
    }
    const std::optional<LineNumber> number = m_numbers->ofLine(row.line);
    return number ? QString::number(qsizetype(*number)) : QString();
}

void LineNumberRulerView::paintEvent(QPaintEvent *event)
{
    const QRectF area = event->rect();
    QPainter painter(this);
    painter.fillRect(area.adjusted(-1, -1, 1, 1), QColor::fromRgb(m_theme->gutterBackground));
    const double separator = 1 / std::max(1.0, devicePixelRatioF());
    painter.fillRect(QRectF(width() - separator, area.top() - 1, separator, area.height() + 2), QColor::fromRgb(m_theme->gutterSeparator));

    const QFont font = numberFont(std::max(pointSize(m_editorFont) - smallerBy, smallestFont));
    painter.setFont(font);
    LayoutManager &layout = m_client.layoutManager();
    const QFontMetricsF metrics(font);
    const double baseline = (layout.rowHeight() - metrics.height()) / 2 + metrics.ascent();
    const double right = width() - padding - separator;
    const qsizetype origin = originLine();
    const qsizetype current = origin >= 0 && m_current == CurrentLine::highlighted ? origin : currentLine();
    const auto rows = m_client.textViewport().rows(area.top() - overdraw, area.bottom() + overdraw);
    paintChanges(painter, rows);
    for (const Viewport::VisibleRow &row : rows) {
        if (!layout.startsLine(row.row)) {
            continue;
        }
        const QString label = labelOf(row.row, origin);
        const bool isAtLeft = row.row.line == origin && m_numbering == Numbering::fromCaretWithOwn;
        painter.setPen(QColor::fromRgb(row.row.line == current ? m_theme->gutterActiveForeground : m_theme->gutterForeground));
        const double left = isAtLeft ? padding : right - metrics.horizontalAdvance(label);
        painter.drawText(QPointF(left, std::round(row.top + baseline)), label);
    }
}

/// A bar along changed lines, a notch where lines are missing: they differ in shape as well as in colour.
void LineNumberRulerView::paintChanges(QPainter &painter, std::span<const Viewport::VisibleRow> rows) const
{
    const auto changes = m_changes ? m_changes() : std::span<const LineChange>();
    if (changes.empty() || rows.empty()) {
        return;
    }
    const LayoutManager &layout = m_client.layoutManager();
    const Rope &text = m_client.storage().text();
    const double height = layout.rowHeight();
    const double right = width() - 1 / std::max(1.0, devicePixelRatioF()) - markInset;
    const auto colorOf = [this](LineChange::Kind kind) { return QColor::fromRgb(changeColor(*m_theme, kind)); };
    const auto paintNotch = [&](double y) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colorOf(LineChange::Kind::deleted));
        painter.drawPolygon(QPolygonF({{right - markWidth - 2, y - notchReach}, {right - markWidth - 2, y + notchReach}, {right, y}}));
        painter.setRenderHint(QPainter::Antialiasing, false);
    };
    // Those that end above are passed over together.
    auto change =
        std::ranges::partition_point(changes, [&rows](const LineChange &one) { return one.range.end() < rows.front().row.lineStart; });
    for (const Viewport::VisibleRow &row : rows) {
        while (change != changes.end() && change->range.end() < row.row.lineStart) {
            ++change;
        }
        for (auto one = change; one != changes.end() && one->range.location <= row.row.lineStart; ++one) {
            if (!one->marks(row.row.lineStart)) {
                continue;
            }
            if (one->kind != LineChange::Kind::deleted) {
                painter.fillRect(QRectF(right - markWidth, row.top, markWidth, height), colorOf(one->kind));
            } else if (layout.startsLine(row.row)) {
                paintNotch(row.top);
            }
        }
    }
    const LineChange &last = changes.back();
    const bool isMissingAtEnd = last.kind == LineChange::Kind::deleted && last.range.location == text.length();
    const Viewport::VisibleRow &lowest = rows.back();
    if (isMissingAtEnd && lowest.row.line == text.lineCount() - 1 && lowest.row.lineStart < text.length()) {
        paintNotch(lowest.top + height);
    }
}

std::optional<size_t> LineNumberRulerView::changeAt(QPointF place) const
{
    const auto changes = m_changes ? m_changes() : std::span<const LineChange>();
    if (changes.empty() || place.x() < width() - padding) {
        return std::nullopt;
    }
    const Viewport::VisibleRow row = m_client.textViewport().rowAt(place.y());
    const Rope &text = m_client.storage().text();
    const double height = m_client.layoutManager().rowHeight();
    if (place.y() > row.top + 2 * height) {
        return std::nullopt; // below the text
    }
    // The lower half of a row is as near to what is missing below it.
    const bool isLow = place.y() > row.top + height / 2;
    const qsizetype end = row.row.line + 1 < text.lineCount() ? text.lineStart(row.row.line + 1) : text.length();
    return LineChanges::at(changes, row.row.lineStart, isLow ? end : row.row.lineStart);
}

void LineNumberRulerView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    if (const auto change = changeAt(event->position())) {
        m_isPressingChange = true;
        emit changeClicked(*change);
        return;
    }
    m_client.setFocus(Qt::MouseFocusReason);
    const bool isExtended = event->modifiers().testFlag(Qt::ShiftModifier);
    using enum TextViewPointer::LineSelection;
    m_client.pointer().beginSelectingLines(besideText(*event), isExtended ? extended : anew);
}

void LineNumberRulerView::mouseMoveEvent(QMouseEvent *event)
{
    if (!(event->buttons() & Qt::LeftButton)) {
        setCursor(changeAt(event->position()) ? Qt::PointingHandCursor : Qt::ArrowCursor);
    } else if (!m_isPressingChange) {
        m_client.pointer().goOnSelecting(besideText(*event));
    }
}

void LineNumberRulerView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && !std::exchange(m_isPressingChange, false)) {
        m_client.pointer().endSelecting();
    }
}

void LineNumberRulerView::wheelEvent(QWheelEvent *event)
{
    // The text scrolls wherever the pointer is beside it.
    QCoreApplication::sendEvent(m_client.viewport(), event);
}
