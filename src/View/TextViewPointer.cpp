// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Pointer, wheel, drag and drop in a TextView.

#include "Base/Pasteboard.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Desktop/LazyTextMimeData.h"
#include "Text/PasteboardText.h"
#include "Text/TextBoundaries.h"
#include "Text/TextStorage.h"
#include "View/TextView.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <QStyleHints>

#include <cmath>

using namespace std::chrono_literals;

namespace {

// Set while a drag of its text is under way; a program has one pointer and one drag.
QPointer<TextView> draggingView;

bool takesDrop(const QDropEvent &event)
{
    // Files are the window's, which opens them; with Alt held they come as text.
    return event.mimeData()->hasText() && (!event.mimeData()->hasUrls() || event.modifiers().testFlag(Qt::AltModifier));
}

} // namespace

TextRange TextView::granule(qsizetype offset, Granularity granularity) const
{
    const Rope &text = m_storage.text();
    switch (granularity) {
    case Granularity::character:
        return {offset, 0};
    case Granularity::word:
        return TextBoundaries::wordAt(text, offset);
    case Granularity::line: {
        const qsizetype line = text.lineAt(offset);
        return TextRange::between(text.lineStart(line), line + 1 < text.lineCount() ? text.lineStart(line + 1) : text.length());
    }
    }
    Q_UNREACHABLE();
}

void TextView::selectAt(const Caret &caret, Granularity granularity)
{
    m_undoManager.breakCoalescing();
    m_pointer.granularity = granularity;
    m_pointer.origin = granule(caret.offset, granularity);
    m_pointer.isSelecting = true;
    const qsizetype end = m_pointer.origin.end();
    setCaret({end, granularity == Granularity::character ? caret.affinity : Affinity::downstream, {}}, m_pointer.origin.location);
}

void TextView::extendSelection(QPointF point)
{
    // Letters are counted by the nearest gap, words and lines by what is under the pointer.
    const bool isWhole = m_pointer.granularity != Granularity::character;
    const Caret caret = isWhole ? Caret{graphemeUnder(point), Affinity::downstream, {}} : caretAt(point);
    const TextRange reached = granule(caret.offset, m_pointer.granularity);
    const TextRange origin = m_pointer.origin;
    if (reached.location < origin.location) {
        setCaret({reached.location, caret.affinity, {}}, origin.end());
    } else {
        setCaret({std::max(reached.end(), origin.end()), isWhole ? Affinity::downstream : caret.affinity, {}}, origin.location);
    }
}

void TextView::mousePressEvent(QMouseEvent *event)
{
    commitPreedit();
    const bool isNear = (event->position() - m_pointer.pressed).manhattanLength() < QApplication::startDragDistance();
    m_pointer.last = m_pointer.pressed = event->position();
    const Caret caret = caretAt(event->position());
    if (event->button() == Qt::MiddleButton) {
        if (m_services.pasteboard.supportsPrimary() && !isReadOnly()) {
            const QString text = withLineFeeds(m_services.pasteboard.primaryText());
            if (!text.isEmpty()) {
                m_undoManager.breakCoalescing();
                insertText(text, {caret.offset, 0});
            }
        }
        return;
    }
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    const bool isTriple =
        isNear && m_pointer.doubleClickedAt != 0 &&
        static_cast<qint64>(event->timestamp()) - m_pointer.doubleClickedAt < QGuiApplication::styleHints()->mouseDoubleClickInterval();
    m_pointer.doubleClickedAt = 0;
    if (isTriple) {
        selectAt(caret, Granularity::line);
    } else if (event->modifiers() & Qt::ShiftModifier) {
        m_undoManager.breakCoalescing();
        m_pointer.granularity = Granularity::character;
        m_pointer.origin = {m_anchor, 0};
        m_pointer.isSelecting = true;
        extendSelection(event->position());
    } else if (dragEnabledAt(event->position())) {
        m_pointer.mayDrag = true;
    } else {
        selectAt(caret, Granularity::character);
    }
}

bool TextView::dragEnabledAt(QPointF point)
{
    // Beside the text of a row there is nothing to take hold of.
    const Viewport::VisibleRow row = m_port.rowAt(point.y());
    const double x = point.x() - m_port.left();
    const auto spans = m_layout.spansOf(row.row, selection().range(), {x, x});
    return std::any_of(spans.begin(), spans.end(), [x](Span span) { return span.left <= x && x <= span.right; });
}

void TextView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QAbstractScrollArea::mouseDoubleClickEvent(event);
        return;
    }
    commitPreedit();
    m_pointer.mayDrag = false;
    m_pointer.last = m_pointer.pressed = event->position();
    m_pointer.doubleClickedAt = static_cast<qint64>(event->timestamp());
    selectAt({graphemeUnder(event->position()), Affinity::downstream, {}}, Granularity::word);
}

qsizetype TextView::graphemeUnder(QPointF point)
{
    const Viewport::VisibleRow row = m_port.rowAt(point.y());
    return m_layout.graphemeAt(row.row, point.x() - m_port.left());
}

void TextView::mouseMoveEvent(QMouseEvent *event)
{
    m_pointer.last = event->position();
    if (!(event->buttons() & Qt::LeftButton)) {
        // The release may have gone elsewhere, to a dialog that came up.
        m_autoScroll.cancel();
        m_pointer.isSelecting = false;
        const bool isOverSelection = !selection().isEmpty() && dragEnabledAt(event->position());
        viewport()->setCursor(isOverSelection ? Qt::ArrowCursor : Qt::IBeamCursor);
        return;
    }
    if (m_pointer.mayDrag) {
        if ((event->position() - m_pointer.pressed).manhattanLength() >= QApplication::startDragDistance()) {
            m_pointer.mayDrag = false;
            startDrag();
        }
        return;
    }
    goOnSelecting(event->position());
}

void TextView::beginSelectingLines(QPointF point, LineSelection how)
{
    commitPreedit();
    // The end of lines that were selected upwards is the start of the next line.
    const qsizetype kept = m_anchor > m_caret.offset ? m_anchor - 1 : m_anchor;
    const qsizetype from = how == LineSelection::extended ? kept : caretAt(point).offset;
    selectAt({from, Affinity::downstream, {}}, Granularity::line);
    goOnSelecting(point);
}

void TextView::goOnSelecting(QPointF point)
{
    if (!m_pointer.isSelecting) {
        return;
    }
    m_pointer.last = point;
    extendSelection(point);
    if (QRectF(viewport()->rect()).contains(point)) {
        m_autoScroll.cancel();
    } else if (!m_autoScroll.isPending()) {
        m_autoScroll = m_services.scheduler.every(30ms, 5ms, [this] { autoScroll(); });
    }
}

void TextView::autoScroll()
{
    const QRectF area = viewport()->rect();
    const auto beyond = [](double value, double from, double to) { return value < from ? value - from : std::max(0.0, value - to); };
    // The farther outside the pointer is, the faster it goes.
    m_port.scrollBy(beyond(m_pointer.last.y(), area.top(), area.bottom()) / 2);
    m_port.setX(m_port.position().x() + beyond(m_pointer.last.x(), area.left(), area.right()) / 2);
    extendSelection({std::clamp(m_pointer.last.x(), area.left(), area.right()),
                     std::clamp(m_pointer.last.y(), area.top(), std::max(area.top(), area.bottom() - 1))});
    viewMoved();
    viewport()->update();
}

void TextView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    if (m_pointer.mayDrag) {
        // The press in the selection was no drag: it meant the place.
        m_pointer.mayDrag = false;
        const Caret caret = caretAt(event->position());
        setCaret(caret, caret.offset);
    }
    endSelecting();
}

void TextView::endSelecting()
{
    m_autoScroll.cancel();
    m_pointer.isSelecting = false;
    // A whole word or line may end far outside, and what was clicked at is in sight.
    if (m_pointer.granularity == Granularity::character) {
        revealCaret();
    }
    publishPrimarySelection();
}

void TextView::wheelEvent(QWheelEvent *event)
{
    if (event->modifiers() & Qt::ControlModifier) {
        m_zoomRest += event->angleDelta().y();
        const int steps = m_zoomRest / QWheelEvent::DefaultDeltasPerStep;
        m_zoomRest -= steps * QWheelEvent::DefaultDeltasPerStep;
        if (steps != 0) {
            emit zoomRequested(steps);
        }
        event->accept();
        return;
    }
    QPointF pixels = event->pixelDelta();
    // X11 reports pixels that mean nothing.
    if (pixels.isNull() || QGuiApplication::platformName() == QLatin1String("xcb")) {
        const double row = QApplication::wheelScrollLines() * m_layout.rowHeight();
        pixels = QPointF(event->angleDelta()) / QWheelEvent::DefaultDeltasPerStep * row;
    }
    if (event->modifiers() & Qt::ShiftModifier) {
        pixels = pixels.transposed();
    }
    // Only whole device pixels move; what is left over counts with the next turn of the wheel.
    const double dpr = devicePixelRatioF();
    m_wheelRest += pixels;
    const QPointF whole(std::trunc(m_wheelRest.x() * dpr) / dpr, std::trunc(m_wheelRest.y() * dpr) / dpr);
    m_wheelRest -= whole;
    m_port.scrollBy(-whole.y());
    m_port.setX(m_port.position().x() - whole.x());
    viewMoved();
    viewport()->update();
    event->accept();
}

void TextView::contextMenuEvent(QContextMenuEvent *event)
{
    static constexpr auto items = std::to_array<const Action *>({&Actions::undo, &Actions::redo, nullptr, &Actions::cut, &Actions::copy,
                                                                 &Actions::paste, &Actions::deleteSelection, nullptr, &Actions::selectAll});
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const qsizetype offset = isByKey ? m_caret.offset : graphemeUnder(event->pos());
    // What the menu does concerns what was clicked.
    if (!isByKey && !dragEnabledAt(event->pos())) {
        commitPreedit();
        setSelection(TextSelection::at(caretAt(event->pos()).offset));
    }
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const Action *action : items) {
        if (!action) {
            menu->addSeparator();
            continue;
        }
        QAction *entry = menu->addAction(localized(action->title), this, [this, action] { perform(*action); });
        entry->setEnabled(state(*action).isEnabled);
    }
    emit contextMenuRequested(menu, offset);
    menu->popup(isByKey ? mapToGlobal(caretRectangle().bottomLeft()) : event->globalPos());
}

// Drag and drop

void TextView::startDrag()
{
    m_dragged = selection().range();
    draggingView = this;
    const QPointer<TextView> alive(this);
    auto *content = new LazyTextMimeData([snapshot = m_storage.snapshot(), range = m_dragged] { return snapshot.text.toString(range); });
    const Qt::DropActions allowed = isReadOnly() ? Qt::DropActions(Qt::CopyAction) : Qt::CopyAction | Qt::MoveAction;
    const Qt::DropAction done = runDrag(content, allowed, isReadOnly() ? Qt::CopyAction : Qt::MoveAction);
    if (!alive) {
        return;
    }
    // A move to a view of the same text has already taken it from where it was.
    if (done == Qt::MoveAction && draggingView == this && !m_dragged.isEmpty()) {
        removeRange(m_dragged, GroupKind::other);
    }
    draggingView.clear();
    m_dragged = {};
}

Qt::DropAction TextView::runDrag(QMimeData *content, Qt::DropActions allowed, Qt::DropAction proposed)
{
    auto *drag = new QDrag(this);
    drag->setMimeData(content);
    return drag->exec(allowed, proposed);
}

void TextView::setDropCaret(std::optional<qsizetype> offset)
{
    if (m_dropCaret != offset) {
        m_dropCaret = offset;
        viewport()->update();
    }
}

void TextView::dragEnterEvent(QDragEnterEvent *event)
{
    if (isReadOnly() || !takesDrop(*event)) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
}

void TextView::dragMoveEvent(QDragMoveEvent *event)
{
    if (isReadOnly() || !takesDrop(*event)) {
        setDropCaret({});
        event->ignore();
        return;
    }
    const double edge = m_layout.rowHeight();
    const QPointF point = event->position();
    if (point.y() < edge) {
        scrollRows(-1);
    } else if (point.y() > viewport()->height() - edge) {
        scrollRows(1);
    }
    setDropCaret(caretAt(point).offset);
    event->acceptProposedAction();
}

void TextView::dragLeaveEvent(QDragLeaveEvent *event)
{
    setDropCaret({});
    event->accept();
}

void TextView::dropEvent(QDropEvent *event)
{
    setDropCaret({});
    if (isReadOnly() || !takesDrop(*event)) {
        event->ignore();
        return;
    }
    // What is being composed would be committed over the dropped text.
    commitPreedit();
    const bool isOwnText = draggingView && &draggingView->m_storage == &m_storage;
    const bool isOwnMove = isOwnText && event->dropAction() == Qt::MoveAction && !draggingView->isReadOnly();
    const TextRange moved = isOwnMove ? draggingView->m_dragged : TextRange{};
    if (!dropText(withLineFeeds(event->mimeData()->text()), caretAt(event->position()).offset, moved)) {
        event->ignore(); // or the source would delete what did not arrive
        return;
    }
    event->acceptProposedAction();
    if (isOwnMove) {
        draggingView.clear();
    }
    setFocus(Qt::MouseFocusReason);
}

bool TextView::dropText(const QString &text, qsizetype offset, TextRange taken)
{
    if (!taken.isEmpty() && taken.location <= offset && offset <= taken.end()) {
        return true; // onto itself
    }
    const bool isTakenFirst = taken.location < offset;
    TextEdits edits;
    if (isTakenFirst) {
        edits.add(taken, Rope());
    }
    edits.add({offset, 0}, Rope(text));
    if (!isTakenFirst) {
        edits.add(taken, Rope());
    }
    const qsizetype at = isTakenFirst ? offset - taken.length : offset;
    m_undoManager.breakCoalescing();
    return apply(edits, GroupKind::other, {at, at + text.length()});
}
