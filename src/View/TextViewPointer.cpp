// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/TextViewPointer.h"

#include "Base/Pasteboard.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Desktop/LazyTextMimeData.h"
#include "Text/PasteboardText.h"
#include "Text/TextBoundaries.h"
#include "Text/TextStorage.h"
#include "View/SeveralCarets.h"
#include "View/TextView.h"
#include "Widgets/Mnemonics.h"

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

/// Text on its way from a view of this program, to itself perhaps.
class DraggedText final : public LazyTextMimeData {
public:
    DraggedText(TextView &source, const TextSnapshot &snapshot, TextRange range)
        : LazyTextMimeData([text = snapshot.text, range] { return text.toString(range); }), m_source(&source)
    {}
    [[nodiscard]] TextView *source() const { return m_source; }

private:
    QPointer<TextView> m_source;
};

bool takesDrop(const QDropEvent &event)
{
    // Files are the window's, which opens them; with Alt held they come as text.
    return event.mimeData()->hasText() && (!event.mimeData()->hasUrls() || event.modifiers().testFlag(Qt::AltModifier));
}

} // namespace

bool TextViewPointer::handle(QEvent &event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        press(static_cast<QMouseEvent &>(event));
        return true;
    case QEvent::MouseButtonDblClick:
        doubleClick(static_cast<QMouseEvent &>(event));
        return true;
    case QEvent::MouseMove:
        move(static_cast<QMouseEvent &>(event));
        return true;
    case QEvent::MouseButtonRelease:
        release(static_cast<QMouseEvent &>(event));
        return true;
    case QEvent::Wheel:
        wheel(static_cast<QWheelEvent &>(event));
        return true;
    case QEvent::DragEnter:
        dragEnter(static_cast<QDragMoveEvent &>(event));
        return true;
    case QEvent::DragMove:
        dragMove(static_cast<QDragMoveEvent &>(event));
        return true;
    case QEvent::DragLeave:
        setDropCaret({});
        return true;
    case QEvent::Drop:
        drop(static_cast<QDropEvent &>(event));
        return true;
    default:
        return false;
    }
}

void TextViewPointer::textChanged(const TextChange &change)
{
    m_origin = change.mapped(m_origin);
    m_dragged = change.mapped(m_dragged);
    if (m_dropCaret) {
        m_dropCaret = change.mapped(*m_dropCaret, Bias::before);
    }
    if (m_others) {
        m_others = m_others->mapped(change);
    }
    if (m_column) {
        m_column->offset = change.mapped(m_column->offset, Bias::before);
    }
}

void TextViewPointer::pastePrimary(qsizetype offset)
{
    if (!m_view.m_services.pasteboard.supportsPrimary() || m_view.isReadOnly()) {
        return;
    }
    const QString text = withLineFeeds(m_view.m_services.pasteboard.primaryText());
    if (!text.isEmpty()) {
        m_view.m_undoManager.breakCoalescing();
        m_view.insertText(text, {offset, 0});
    }
}

TextRange TextViewPointer::granule(qsizetype offset, Granularity granularity) const
{
    const Rope &text = m_view.m_storage.text();
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

void TextViewPointer::selectAt(const Caret &caret, Granularity granularity)
{
    m_view.m_undoManager.breakCoalescing();
    m_granularity = granularity;
    m_origin = granule(caret.offset, granularity);
    m_isSelecting = true;
    const qsizetype end = m_origin.end();
    show({.caret = {end, granularity == Granularity::character ? caret.affinity : Affinity::downstream}, .anchor = m_origin.location});
}

void TextViewPointer::show(const CaretSelection &selection)
{
    m_view.setCarets(m_others ? m_others->with(selection) : Selections(selection));
}

void TextViewPointer::addOrRemove(const Caret &caret)
{
    const Selections now = m_view.selections();
    const auto there = now.touching({caret.offset, 0});
    if (!there) {
        m_others = now;
        selectAt(caret, Granularity::character);
    } else if (!now.isSingle()) {
        m_others = now.without(*there);
        m_view.setCarets(*m_others);
    }
}

void TextViewPointer::beginColumn(QPointF point)
{
    m_view.m_undoManager.breakCoalescing();
    const RowPosition row = m_view.m_port.rowAt(point.y()).row;
    m_column = {m_view.m_layout.rangeOf(row).location, point.x() - m_view.m_port.left()};
    m_granularity = Granularity::character;
}

void TextViewPointer::extendColumn(QPointF point)
{
    const SeveralCarets::Place from{m_view.m_layout.rowOf(m_column->offset), m_column->x};
    const SeveralCarets::Place to{m_view.m_port.rowAt(point.y()).row, point.x() - m_view.m_port.left()};
    m_view.setCarets(SeveralCarets::column(from, to, m_view.m_layout));
}

void TextViewPointer::extendSelection(QPointF point)
{
    if (m_column) {
        extendColumn(point);
        return;
    }
    // Letters are counted by the nearest gap, words and lines by what is under the pointer.
    const bool isWhole = m_granularity != Granularity::character;
    const Caret caret = isWhole ? Caret{graphemeUnder(point), Affinity::downstream, {}} : caretAt(point);
    const TextRange reached = granule(caret.offset, m_granularity);
    const TextRange origin = m_origin;
    if (reached.location < origin.location) {
        show({.caret = {reached.location, caret.affinity}, .anchor = origin.end()});
    } else {
        show(
            {.caret = {std::max(reached.end(), origin.end()), isWhole ? Affinity::downstream : caret.affinity}, .anchor = origin.location});
    }
}

void TextViewPointer::press(QMouseEvent &event)
{
    m_view.m_input.commit();
    const bool isNear = isNearPress(event);
    m_last = m_pressed = event.position();
    const Caret caret = caretAt(event.position());
    m_column.reset();
    if (event.button() == Qt::MiddleButton) {
        // A column if it is dragged; a click pastes when the button goes up.
        beginColumn(event.position());
        return;
    }
    if (event.button() != Qt::LeftButton) {
        event.ignore();
        return;
    }
    const bool addsCaret = event.modifiers() == Qt::ControlModifier;
    if (!addsCaret) {
        m_others.reset();
    }
    const bool isTriple = isNear && goesOnClicking(event);
    m_clickedTwiceAt = 0;
    if (isTriple) {
        m_clickedTwiceAt = static_cast<qint64>(event.timestamp());
        selectAt(caret, Granularity::line);
    } else if (event.modifiers() == (Qt::AltModifier | Qt::ShiftModifier)) {
        beginColumn(event.position());
        m_isSelecting = true;
        extendColumn(event.position());
    } else if (addsCaret && !isOverSelection(event.position())) {
        addOrRemove(caret);
    } else if (event.modifiers() & Qt::ShiftModifier) {
        m_view.m_undoManager.breakCoalescing();
        m_granularity = Granularity::character;
        m_origin = {m_view.m_caret.anchor(), 0};
        m_isSelecting = true;
        extendSelection(event.position());
    } else if (isOverSelection(event.position())) {
        m_mayDrag = true;
    } else {
        selectAt(caret, Granularity::character);
    }
}

bool TextViewPointer::isNearPress(const QMouseEvent &event) const
{
    return (event.position() - m_pressed).manhattanLength() < QApplication::startDragDistance();
}

/// A double click was a moment ago, perhaps with further clicks behind it.
bool TextViewPointer::goesOnClicking(const QMouseEvent &event) const
{
    return m_clickedTwiceAt != 0 &&
           static_cast<qint64>(event.timestamp()) - m_clickedTwiceAt < QGuiApplication::styleHints()->mouseDoubleClickInterval();
}

bool TextViewPointer::isOverSelection(QPointF point) const
{
    // Beside the text of a row there is nothing to take hold of.
    const Viewport::VisibleRow row = m_view.m_port.rowAt(point.y());
    const double x = point.x() - m_view.m_port.left();
    const auto spans = m_view.m_layout.spansOf(row.row, m_view.selection().range(), {x, x});
    return std::any_of(spans.begin(), spans.end(), [x](Span span) { return span.left <= x && x <= span.right; });
}

void TextViewPointer::doubleClick(QMouseEvent &event)
{
    if (event.button() != Qt::LeftButton) {
        press(event);
        return;
    }
    m_view.m_input.commit();
    m_mayDrag = false;
    const bool isFourth = m_granularity == Granularity::line && isNearPress(event) && goesOnClicking(event);
    m_last = m_pressed = event.position();
    m_clickedTwiceAt = static_cast<qint64>(event.timestamp());
    if (event.modifiers() != Qt::ControlModifier) {
        m_others.reset();
    }
    selectAt({graphemeUnder(event.position()), Affinity::downstream, {}}, isFourth ? Granularity::line : Granularity::word);
}

qsizetype TextViewPointer::graphemeUnder(QPointF point) const
{
    const Viewport::VisibleRow row = m_view.m_port.rowAt(point.y());
    return m_view.m_layout.graphemeAt(row.row, point.x() - m_view.m_port.left());
}

void TextViewPointer::move(QMouseEvent &event)
{
    m_last = event.position();
    const bool isMiddle = event.buttons() & Qt::MiddleButton && m_column;
    if (isMiddle && (event.position() - m_pressed).manhattanLength() >= QApplication::startDragDistance()) {
        m_isSelecting = true;
    }
    if (!isMiddle && !(event.buttons() & Qt::LeftButton)) {
        // The release may have gone elsewhere, to a dialog that came up.
        m_autoScroll.cancel();
        m_isSelecting = false;
        const bool mayTakeHold = !m_view.selection().isEmpty() && isOverSelection(event.position());
        m_view.viewport()->setCursor(mayTakeHold ? Qt::ArrowCursor : Qt::IBeamCursor);
        return;
    }
    if (m_mayDrag) {
        if ((event.position() - m_pressed).manhattanLength() >= QApplication::startDragDistance()) {
            m_mayDrag = false;
            startDrag();
        }
        return;
    }
    goOnSelecting(event.position());
}

void TextViewPointer::beginSelectingLines(QPointF point, LineSelection how)
{
    m_view.m_input.commit();
    m_others.reset();
    m_column.reset();
    // The end of lines that were selected upwards is the start of the next line.
    const qsizetype kept = m_view.m_caret.anchor() > m_view.m_caret.place().offset ? m_view.m_caret.anchor() - 1 : m_view.m_caret.anchor();
    const qsizetype from = how == LineSelection::extended ? kept : caretAt(point).offset;
    selectAt({from, Affinity::downstream, {}}, Granularity::line);
    goOnSelecting(point);
}

void TextViewPointer::goOnSelecting(QPointF point)
{
    if (!m_isSelecting) {
        return;
    }
    m_last = point;
    extendSelection(point);
    if (QRectF(m_view.viewport()->rect()).contains(point)) {
        m_autoScroll.cancel();
    } else if (!m_autoScroll.isPending()) {
        m_autoScroll = m_view.m_services.scheduler.every(30ms, 5ms, [this] { autoScroll(); });
    }
}

void TextViewPointer::autoScroll()
{
    const QRectF area = m_view.viewport()->rect();
    const auto beyond = [](double value, double from, double to) { return value < from ? value - from : std::max(0.0, value - to); };
    // The farther outside the pointer is, the faster it goes.
    m_view.m_port.scrollBy(beyond(m_last.y(), area.top(), area.bottom()) / 2);
    m_view.m_port.setX(m_view.m_port.position().x() + beyond(m_last.x(), area.left(), area.right()) / 2);
    extendSelection(
        {std::clamp(m_last.x(), area.left(), area.right()), std::clamp(m_last.y(), area.top(), std::max(area.top(), area.bottom() - 1))});
    m_view.viewMoved();
    m_view.viewport()->update();
}

void TextViewPointer::release(QMouseEvent &event)
{
    const bool isMiddle = event.button() == Qt::MiddleButton;
    if (isMiddle && m_column && !m_isSelecting) {
        m_column.reset();
        pastePrimary(caretAt(event.position()).offset);
        return;
    }
    if (!isMiddle && event.button() != Qt::LeftButton) {
        return;
    }
    if (m_mayDrag) {
        // The press in the selection was no drag: it meant the place.
        m_mayDrag = false;
        const Caret caret = caretAt(event.position());
        if (event.modifiers() == Qt::ControlModifier) {
            addOrRemove(caret);
        } else {
            m_view.setCarets(Selections(CaretSelection{.caret = caret, .anchor = caret.offset}));
        }
    }
    endSelecting();
}

void TextViewPointer::endSelecting()
{
    m_autoScroll.cancel();
    m_isSelecting = false;
    m_column.reset();
    // A whole word or line may end far outside, and what was clicked at is in sight.
    if (m_granularity == Granularity::character) {
        m_view.revealCaret();
    }
    publishPrimarySelection();
}

void TextViewPointer::publishPrimarySelection()
{
    if (!m_view.m_services.pasteboard.supportsPrimary() || m_isSelecting || !m_view.selections().hasSelected()) {
        return;
    }
    // Held keys move the selection many times a second; other programs are notified when it rests.
    m_primarySettles = m_view.m_services.scheduler.after(100ms, [this] {
        if (m_view.selections().hasSelected()) {
            m_view.m_services.pasteboard.setPrimary([snapshot = m_view.m_storage.snapshot(), selections = m_view.selections()] {
                return CaretEditing::joinedPieces(snapshot.text, selections).toString();
            });
        }
    });
}

Caret TextViewPointer::caretAt(QPointF point) const
{
    const Viewport::VisibleRow row = m_view.m_port.rowAt(point.y());
    const qsizetype offset = m_view.m_layout.offsetAt(row.row, point.x() - m_view.m_port.left());
    const bool isAtWrap = offset == m_view.m_layout.rangeOf(row.row).end() && !m_view.m_layout.endsLine(row.row);
    return {offset, isAtWrap ? Affinity::upstream : Affinity::downstream, {}};
}

void TextViewPointer::wheel(QWheelEvent &event)
{
    if (event.modifiers() & Qt::ControlModifier) {
        m_zoomRest += event.angleDelta().y();
        const int steps = m_zoomRest / QWheelEvent::DefaultDeltasPerStep;
        m_zoomRest -= steps * QWheelEvent::DefaultDeltasPerStep;
        if (steps != 0) {
            emit m_view.zoomRequested(steps);
        }
        event.accept();
        return;
    }
    QPointF pixels = event.pixelDelta();
    // X11 reports pixels that mean nothing.
    if (pixels.isNull() || QGuiApplication::platformName() == QLatin1String("xcb")) {
        const double row = QApplication::wheelScrollLines() * m_view.m_layout.rowHeight();
        pixels = QPointF(event.angleDelta()) / QWheelEvent::DefaultDeltasPerStep * row;
    }
    if (event.modifiers() & Qt::ShiftModifier) {
        pixels = pixels.transposed();
    }
    // Only whole device pixels move; what is left over counts with the next turn of the wheel.
    const double dpr = m_view.devicePixelRatioF();
    m_wheelRest += pixels;
    const QPointF whole(std::trunc(m_wheelRest.x() * dpr) / dpr, std::trunc(m_wheelRest.y() * dpr) / dpr);
    m_wheelRest -= whole;
    m_view.m_port.scrollBy(-whole.y());
    m_view.m_port.setX(m_view.m_port.position().x() - whole.x());
    m_view.viewMoved();
    m_view.viewport()->update();
    event.accept();
}

// Drag and drop

void TextViewPointer::startDrag()
{
    m_dragged = m_view.selection().range();
    const QPointer<TextView> alive(&m_view);
    auto *content = new DraggedText(m_view, m_view.m_storage.snapshot(), m_dragged);
    const bool isReadOnly = m_view.isReadOnly();
    const Qt::DropActions allowed = isReadOnly ? Qt::DropActions(Qt::CopyAction) : Qt::CopyAction | Qt::MoveAction;
    const Qt::DropAction done = m_view.runDrag(content, allowed, isReadOnly ? Qt::CopyAction : Qt::MoveAction);
    if (!alive) {
        return;
    }
    if (done == Qt::MoveAction && !m_dragged.isEmpty()) {
        m_view.apply({m_dragged, Rope()}, GroupKind::other, TextSelection::at(m_dragged.location));
    }
    m_dragged = {};
}

void TextViewPointer::setDropCaret(std::optional<qsizetype> offset)
{
    if (m_dropCaret != offset) {
        m_dropCaret = offset;
        m_view.viewport()->update();
    }
}

void TextViewPointer::dragEnter(QDragMoveEvent &event)
{
    if (m_view.isReadOnly() || !takesDrop(event)) {
        event.ignore();
        return;
    }
    event.acceptProposedAction();
}

void TextViewPointer::dragMove(QDragMoveEvent &event)
{
    if (m_view.isReadOnly() || !takesDrop(event)) {
        setDropCaret({});
        event.ignore();
        return;
    }
    const double edge = m_view.m_layout.rowHeight();
    const QPointF point = event.position();
    if (point.y() < edge) {
        m_view.scrollRows(-1);
    } else if (point.y() > m_view.viewport()->height() - edge) {
        m_view.scrollRows(1);
    }
    setDropCaret(caretAt(point).offset);
    event.acceptProposedAction();
}

void TextViewPointer::drop(QDropEvent &event)
{
    setDropCaret({});
    if (m_view.isReadOnly() || !takesDrop(event)) {
        event.ignore();
        return;
    }
    // What is being composed would be committed over the dropped text.
    m_view.m_input.commit();
    const auto *dragged = dynamic_cast<const DraggedText *>(event.mimeData());
    TextView *source = dragged ? dragged->source() : nullptr;
    const bool isOwnMove =
        source && &source->m_storage == &m_view.m_storage && event.dropAction() == Qt::MoveAction && !source->isReadOnly();
    const TextRange moved = isOwnMove ? source->m_pointer.m_dragged : TextRange{};
    if (!dropText(withLineFeeds(event.mimeData()->text()), caretAt(event.position()).offset, moved)) {
        event.ignore(); // or the source would delete what did not arrive
        return;
    }
    event.acceptProposedAction();
    if (isOwnMove) {
        source->m_pointer.m_dragged = {};
    }
    m_view.setFocus(Qt::MouseFocusReason);
}

bool TextViewPointer::dropText(const QString &text, qsizetype offset, TextRange taken)
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
    m_view.m_undoManager.breakCoalescing();
    return m_view.apply(edits, GroupKind::other, {at, at + text.length()});
}

// What needs the widget

Qt::DropAction TextView::runDrag(QMimeData *content, Qt::DropActions allowed, Qt::DropAction proposed)
{
    auto *drag = new QDrag(this);
    drag->setMimeData(content);
    return drag->exec(allowed, proposed);
}

void TextView::contextMenuEvent(QContextMenuEvent *event)
{
    static constexpr auto items = std::to_array<const Action *>({&Actions::undo, &Actions::redo, nullptr, &Actions::cut, &Actions::copy,
                                                                 &Actions::paste, &Actions::deleteSelection, nullptr, &Actions::selectAll});
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const qsizetype offset = isByKey ? m_caret.place().offset : m_pointer.graphemeUnder(event->pos());
    // What the menu does concerns what was clicked.
    if (!isByKey && !m_pointer.isOverSelection(event->pos())) {
        m_input.commit();
        setSelection(TextSelection::at(m_pointer.caretAt(event->pos()).offset));
    }
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QStringList titles;
    for (const Action *action : items) {
        if (action) {
            titles << localized(action->title);
        }
    }
    QString taken;
    titles = withMnemonics(titles, taken);
    for (const Action *action : items) {
        if (!action) {
            menu->addSeparator();
            continue;
        }
        QAction *entry = menu->addAction(titles.takeFirst(), this, [this, action] { perform(*action); });
        entry->setEnabled(state(*action).isEnabled);
    }
    emit contextMenuRequested(menu, offset);
    menu->popup(isByKey ? mapToGlobal(caretRectangle().bottomLeft()) : event->globalPos());
}
