// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/TextView.h"

#include "Base/Pasteboard.h"
#include "Commands/Actions.h"
#include "Text/PasteboardText.h"
#include "Text/TextBoundaries.h"
#include "Text/TextStorage.h"
#include "View/TextViewAccessible.h"

#include <QApplication>
#include <QInputMethod>
#include <QScopedValueRollback>

#include <array>
#include <cmath>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

TextView::TextView(TextStorage &storage, UndoManager &undoManager, Services services, const QFont &font, QWidget *parent)
    : QAbstractScrollArea(parent), m_storage(storage), m_undoManager(undoManager), m_services(services),
      m_layout(storage, {.font = font, .tabWidth = 4, .wrapWidth = {}, .devicePixelRatio = devicePixelRatioF()})
{
    TextViewAccessible::install();
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    setInputMethodHints(Qt::ImhMultiLine | Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText);
    setFrameShape(QFrame::NoFrame);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setCursor(Qt::IBeamCursor);
    setAcceptDrops(true);
    applyPaletteColors();
    connect(&storage, &TextStorage::changed, this, &TextView::storageChanged);
    connect(&storage, &TextStorage::stylesChanged, this, &TextView::storageStylesChanged);
}

TextView::~TextView() = default;

const ActionRow *TextView::actionFor(const Action &wanted) const
{
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&TextView::undo, &TextView::canUndo>(Actions::undo),
        action<&TextView::redo, &TextView::canRedo>(Actions::redo),
        action<&TextView::cut, &TextView::canCut>(Actions::cut),
        action<&TextView::copy, &TextView::hasSelection>(Actions::copy),
        action<&TextView::paste, &TextView::canPaste>(Actions::paste),
        action<&TextView::deleteSelection, &TextView::canCut>(Actions::deleteSelection),
        action<&TextView::selectAll>(Actions::selectAll),
        action<&TextView::centerSelection>(Actions::centerSelection),
    });
    return findAction(rows, wanted);
}

bool TextView::canUndo() const
{
    return !isReadOnly() && m_undoManager.canUndo();
}

bool TextView::canRedo() const
{
    return !isReadOnly() && m_undoManager.canRedo();
}

bool TextView::hasSelection() const
{
    return !selection().isEmpty();
}

bool TextView::canCut() const
{
    return !isReadOnly() && hasSelection();
}

bool TextView::canPaste() const
{
    return !isReadOnly() && m_services.pasteboard.hasText();
}

// Settings

LayoutManager::Settings TextView::settingsForViewport() const
{
    LayoutManager::Settings settings = m_layout.settings();
    settings.devicePixelRatio = devicePixelRatioF();
    settings.wrapWidth.reset();
    if (m_wrapMode == WrapMode::viewWidth) {
        const double width = viewport()->width() - 2 * m_port.insets().horizontal;
        settings.wrapWidth = std::max(width, 4 * m_layout.cellWidth());
    }
    return settings;
}

void TextView::applySettings(LayoutManager::Settings settings)
{
    m_layout.setSettings(std::move(settings));
    m_port.setSize(viewport()->size());
    m_layout.setCacheCapacity(static_cast<size_t>(std::max<qint64>(64, 3 * m_port.rowsPerPage())));
    m_port.settle();
    viewMoved();
    viewport()->update();
}

void TextView::setTextFont(const QFont &font)
{
    LayoutManager::Settings settings = settingsForViewport();
    settings.font = font;
    applySettings(std::move(settings));
}

void TextView::setTabWidth(int cells)
{
    if (std::max(1, cells) == m_layout.settings().tabWidth) {
        return;
    }
    LayoutManager::Settings settings = settingsForViewport();
    settings.tabWidth = std::max(1, cells);
    applySettings(std::move(settings));
}

void TextView::setWrapMode(WrapMode mode)
{
    m_wrapMode = mode;
    // Wrapped text never needs the bar; asking for it would change the width and so the wrapping.
    setHorizontalScrollBarPolicy(mode == WrapMode::none ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(mode == WrapMode::none ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOn);
    applySettings(settingsForViewport());
}

void TextView::applyPaletteColors()
{
    const QPalette &shown = palette();
    m_colors = {.background = shown.color(QPalette::Base),
                .text = shown.color(QPalette::Text),
                .selection = shown.color(QPalette::Highlight),
                .caret = shown.color(QPalette::Text),
                .currentLine = {},
                .invisibles = shown.color(QPalette::PlaceholderText),
                .mark = {}};
    // Text keeps its colours on a selection, so the selection must stay near the background.
    m_colors.selection.setAlphaF(0.35F);
    m_colors.mark = m_colors.selection;
    viewport()->update();
}

void TextView::setColors(const Colors &colors)
{
    m_followsPalette = false;
    m_colors = colors;
    viewport()->update();
}

void TextView::setCaretShape(CaretShape shape)
{
    m_caretShape = shape;
    viewport()->update();
}

void TextView::setInvisibles(Visibility visibility)
{
    m_invisibles = visibility;
    viewport()->update();
}

void TextView::setAccess(Access access)
{
    commitPreedit();
    m_access = access;
    QGuiApplication::inputMethod()->update(Qt::ImEnabled | Qt::ImReadOnly);
}

void TextView::setMarkProvider(MarkProvider provider)
{
    m_marks = std::move(provider);
    viewport()->update();
}

void TextView::setMisspellings(MarkProvider provider)
{
    m_misspellings = std::move(provider);
    viewport()->update();
}

void TextView::showIndicator(TextRange range)
{
    // Full for a while, then it fades; a step is hardly seen.
    constexpr double initialStrength = 2;
    updateRows(m_indicated.clampedTo(m_storage.length()));
    m_indicated = range.clampedTo(m_storage.length());
    m_indicatorStrength = initialStrength;
    m_indicatorFades = m_services.scheduler.every(40ms, 10ms, [this] { fadeIndicator(); });
    updateRows(m_indicated);
}

void TextView::fadeIndicator()
{
    constexpr double step = 0.125;
    const bool isFull = m_indicatorStrength > 1;
    m_indicatorStrength -= step;
    if (!isFull) {
        updateRows(m_indicated);
    }
    if (m_indicatorStrength <= 0) {
        m_indicatorFades.cancel();
        m_indicated = {};
    }
}

// Editing

bool TextView::apply(const TextEdits &edits, GroupKind kind, TextSelection after, Reveal reveal)
{
    if (isReadOnly()) {
        return false;
    }
    {
        const QScopedValueRollback<bool> editing(m_isEditing, true);
        m_undoManager.beginGroup(kind, selection(), this);
        m_storage.apply(edits);
        m_undoManager.endGroup(after);
        setCaret({after.caret, Affinity::downstream, {}}, after.anchor);
    }
    revealCaret(reveal);
    return true;
}

void TextView::insertText(QStringView text, TextRange range)
{
    apply({range, text}, GroupKind::other, TextSelection::at(range.location + text.length()));
}

void TextView::typeText(QStringView text)
{
    const TextRange range = selection().range();
    apply({range, text}, GroupKind::typing, TextSelection::at(range.location + text.length()));
}

void TextView::removeRange(TextRange range, GroupKind kind)
{
    if (!range.isEmpty()) {
        apply({range, Rope()}, kind, TextSelection::at(range.location));
    }
}

// Following the storage

void TextView::storageChanged(const TextChange &change)
{
    const TextSelection before = selection();
    m_layout.textChanged(change);
    m_port.textChanged(change, m_isEditing ? Viewport::Editor::thisView : Viewport::Editor::another);
    mapPlaces(change);
    if (isComposing()) {
        movePreedit();
    }
    if (m_port.settle()) {
        viewport()->update();
    }
    updateForChange(change);
    sendAccessibleChange(change);
    viewMoved();
    if (!m_isEditing && selection() != before) {
        sendAccessibleSelection(before);
        emit selectionChanged();
    }
}

/// Everything that remembers a place in the text goes where that text went.
void TextView::mapPlaces(const TextChange &change)
{
    m_shownCaret.reset();
    const TextSelection mapped = change.mapped(selection());
    m_caret = {mapped.caret, Affinity::downstream, {}};
    m_anchor = mapped.anchor;
    m_dragged = change.mapped(m_dragged);
    m_indicated = change.mapped(m_indicated);
    m_pointer.origin = change.mapped(m_pointer.origin);
    if (m_dropCaret) {
        m_dropCaret = change.mapped(*m_dropCaret, Bias::before);
    }
}

void TextView::updateForChange(const TextChange &change)
{
    const TextRange first = change.edits.newRange(0);
    if (change.edits.count() == 1 && !m_layout.wraps() && change.isWithinLines()) {
        updateRows(first);
        return;
    }
    const auto top = m_port.topOf(m_layout.rowOf(change.after.lineStart(change.after.lineAt(first.location))));
    viewport()->update(0, static_cast<int>(std::floor(top.value_or(0))), viewport()->width(), viewport()->height());
}

void TextView::storageStylesChanged(const std::vector<TextRange> &ranges)
{
    m_layout.stylesChanged(ranges);
    const TextRange visible = TextRange::between(m_port.anchor(), m_layout.rangeOf(m_port.rowAt(viewport()->height()).row).end());
    for (const TextRange range : ranges) {
        if (range.touches(visible)) {
            updateRows(range.intersected(visible));
        }
    }
}

void TextView::updateRows(TextRange range)
{
    const double height = m_layout.rowHeight();
    const Viewport::VisibleRow end = m_port.rowAt(viewport()->height());
    const auto first = m_port.topOf(m_layout.rowOf(range.location));
    const auto last = m_port.topOf(m_layout.rowOf(std::min(range.end(), m_storage.length())));
    if (!first && !last && range.location > m_layout.rangeOf(end.row).end()) {
        return;
    }
    const double top = first.value_or(0);
    const double bottom = last ? *last + height : viewport()->height();
    viewport()->update(QRectF(0, top, viewport()->width(), bottom - top).toAlignedRect());
}

// Selection

void TextView::setCaret(const Caret &caret, qsizetype anchor)
{
    const TextSelection before = selection();
    const QRectF rowBefore = caretRowInViewport();
    updateCaret();
    m_shownCaret.reset();
    m_caret = caret;
    m_anchor = anchor;
    if (isComposing() && m_layout.preedit().offset != m_caret.offset) {
        movePreedit();
    }
    restartBlinking();
    if (const QRectF row = caretRowInViewport(); row != rowBefore) {
        viewport()->update(rowBefore.toAlignedRect());
        viewport()->update(row.toAlignedRect());
    }
    // An edit of this view has already moved the ends along with the text, which is no reason to keep silent about it.
    if (selection() == before && !m_isEditing) {
        updateCaret();
        return;
    }
    // Rows between the old and the new ends change their look; with no selection at all only the carets do.
    if (!before.isEmpty() || !selection().isEmpty()) {
        const auto changed = [this](qsizetype a, qsizetype b) {
            if (a != b) {
                updateRows(TextRange::spanning(a, b).clampedTo(m_storage.length()));
            }
        };
        if (before.anchor == m_anchor) {
            changed(before.caret, m_caret.offset);
        } else {
            changed(before.anchor, before.caret);
            changed(m_anchor, m_caret.offset);
        }
    }
    updateCaret();
    if (hasFocus()) {
        QGuiApplication::inputMethod()->update(Qt::ImCursorRectangle | Qt::ImAnchorRectangle | Qt::ImCursorPosition | Qt::ImAnchorPosition |
                                               Qt::ImCurrentSelection | Qt::ImSurroundingText | Qt::ImTextBeforeCursor |
                                               Qt::ImTextAfterCursor);
    }
    sendAccessibleSelection(before);
    publishPrimarySelection();
    emit selectionChanged();
}

void TextView::setSelection(TextSelection selection, Reveal reveal)
{
    const auto legal = [this](qsizetype offset) { return TextBoundaries::snapped(m_storage.text(), offset); };
    if (legal(selection.caret) != m_caret.offset) {
        m_undoManager.breakCoalescing();
    }
    setCaret({legal(selection.caret), Affinity::downstream, {}}, legal(selection.anchor));
    revealCaret(reveal);
}

void TextView::showCaretAt(TextSelection selection, qsizetype place)
{
    setSelection(selection);
    const qsizetype shown = TextBoundaries::snapped(m_storage.text(), place);
    if (shown != m_caret.offset) {
        updateCaret();
        viewport()->update(caretRowInViewport().toAlignedRect());
        m_shownCaret = shown;
        updateCaret();
        viewport()->update(caretRowInViewport().toAlignedRect());
    }
    revealCaret();
}

TextRange TextView::visibleRange()
{
    const double height = viewport()->height();
    const double width = viewport()->width();
    const auto first = m_port.rowAt(-height / 2).row;
    const auto last = m_port.rowAt(height * 3 / 2).row;
    const double left = -m_port.left();
    return TextRange::between(m_layout.offsetAt(first, left - width / 2), m_layout.offsetAt(last, left + width * 3 / 2));
}

void TextView::revealOffset(qsizetype offset)
{
    const RowPosition row = m_layout.rowOf(offset);
    m_port.reveal(row);
    const double x = m_layout.xOf(row, offset);
    m_port.revealX({x, x + m_layout.cellWidth()});
    viewMoved();
    viewport()->update();
}

void TextView::centerSelection()
{
    revealCaret(Reveal::center);
}

void TextView::setScrollOffset(double pixels)
{
    m_port.setY(pixels);
    viewMoved();
    viewport()->update();
}

QString TextView::selectedText() const
{
    return m_storage.string(selection().range());
}

void TextView::revealCaret(Reveal reveal)
{
    if (reveal == Reveal::no) {
        return;
    }
    const QPointF before = m_port.position();
    const RowPosition row = caretRow();
    m_port.reveal(row, reveal == Reveal::center ? Viewport::Reveal::center : Viewport::Reveal::nearest);
    const double x = caretX(row);
    m_port.revealX({x, x + 2});
    if (m_port.position() != before) {
        viewMoved();
        viewport()->update();
    }
}

void TextView::publishPrimarySelection()
{
    if (!m_services.pasteboard.supportsPrimary() || m_pointer.isSelecting || selection().isEmpty()) {
        return;
    }
    // Held keys move the selection many times a second; other programs are told when it rests.
    m_primarySettles = m_services.scheduler.after(100ms, [this] {
        const TextRange range = selection().range();
        if (!range.isEmpty()) {
            m_services.pasteboard.setPrimary([snapshot = m_storage.snapshot(), range] { return snapshot.text.toString(range); });
        }
    });
}

Caret TextView::caretAt(QPointF point)
{
    const Viewport::VisibleRow row = m_port.rowAt(point.y());
    const qsizetype offset = m_layout.offsetAt(row.row, point.x() - m_port.left());
    const bool isAtWrap = offset == m_layout.rangeOf(row.row).end() && !m_layout.endsLine(row.row);
    return {offset, isAtWrap ? Affinity::upstream : Affinity::downstream, {}};
}

// Undo and the pasteboard

void TextView::undo()
{
    replay(&UndoManager::undo);
}

void TextView::redo()
{
    replay(&UndoManager::redo);
}

void TextView::replay(std::optional<TextSelection> (UndoManager::*step)())
{
    commitPreedit();
    if (isReadOnly()) {
        return;
    }
    willReplay();
    const QScopedValueRollback<bool> editing(m_isEditing, true);
    if (const auto shown = (m_undoManager.*step)()) {
        setSelection(*shown, Reveal::nearest);
    }
}

void TextView::copy()
{
    const TextRange range = selection().range();
    if (range.isEmpty()) {
        return;
    }
    setText(m_services.pasteboard, m_storage.text().slice(range));
}

void TextView::cut()
{
    if (!isReadOnly() && !selection().isEmpty()) {
        commitPreedit();
        copy();
        deleteSelection();
    }
}

void TextView::paste()
{
    commitPreedit();
    const QString text = m_services.pasteboard.text();
    if (!text.isEmpty()) {
        insertText(withLineFeeds(text), selection().range());
    }
}

void TextView::deleteSelection()
{
    removeRange(selection().range(), GroupKind::other);
}

void TextView::selectAll()
{
    commitPreedit();
    m_undoManager.breakCoalescing();
    setCaret({m_storage.length(), Affinity::downstream, {}}, 0);
}

// Focus and the caret

void TextView::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    restartBlinking();
    viewport()->update();
}

void TextView::focusOutEvent(QFocusEvent *event)
{
    commitPreedit();
    m_undoManager.breakCoalescing();
    QAbstractScrollArea::focusOutEvent(event);
    m_blinking.cancel();
    viewport()->update();
}

bool TextView::focusNextPrevChild(bool next)
{
    // Tab belongs to the text; a view that cannot take it lets the focus pass.
    return isReadOnly() && QAbstractScrollArea::focusNextPrevChild(next);
}

void TextView::restartBlinking()
{
    m_isCaretOn = true;
    const int period = QApplication::cursorFlashTime();
    if (!hasFocus() || period < 2) {
        m_blinking.cancel();
        return;
    }
    m_blinking = m_services.scheduler.every(std::chrono::milliseconds(period / 2), 20ms, [this] {
        m_isCaretOn = !m_isCaretOn;
        updateCaret();
    });
}

void TextView::updateCaret()
{
    viewport()->update(caretInViewport().toAlignedRect().adjusted(-1, 0, 1, 0));
    noticeShifts();
}

/// Empty while the row of the caret has no colour of its own, and when it is not on the screen.
QRectF TextView::caretRowInViewport()
{
    if (!m_colors.currentLine.isValid()) {
        return {};
    }
    const auto top = m_port.topOf(caretRow());
    return top ? QRectF(0, *top, viewport()->width(), m_layout.rowHeight()) : QRectF();
}

RowPosition TextView::caretRow()
{
    return isComposing() ? m_layout.rowInPreedit(m_preeditCaret) : m_layout.rowOf(shownCaret(), m_caret.affinity);
}

double TextView::caretX(const RowPosition &row)
{
    return isComposing() ? m_layout.xInPreedit(row, m_preeditCaret) : m_layout.xOf(row, shownCaret());
}

QRectF TextView::caretInViewport()
{
    const RowPosition row = caretRow();
    const auto top = m_port.topOf(row);
    if (!top) {
        return {};
    }
    double x = caretX(row);
    const double dpr = devicePixelRatioF();
    const double left = std::floor((m_port.left() + x) * dpr) / dpr;
    double width = std::max(1.0, std::round(1.4 * dpr) / dpr);
    if (m_caretShape != CaretShape::bar) {
        const qsizetype next = TextBoundaries::nextGrapheme(m_storage.text(), shownCaret());
        const bool isInRow = next <= m_layout.rangeOf(row).end();
        width = isInRow && next > shownCaret() ? std::abs(m_layout.xOf(row, next) - x) : m_layout.cellWidth();
    }
    // Blanks that hang over the edge of a wrapped row do not take the caret with them.
    const double rightmost = m_layout.wraps() ? std::max(0.0, viewport()->width() - width) : left;
    return {std::min(left, rightmost), *top, width, m_layout.rowHeight()};
}

QRect TextView::caretRectangle()
{
    return caretInViewport().toAlignedRect().translated(viewport()->pos());
}

// Looks

void TextView::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_followsPalette) {
        applyPaletteColors();
    }
}

bool TextView::viewportEvent(QEvent *event)
{
    // There is no event for a screen of another scale; the first painting on it tells.
    if (event->type() == QEvent::Paint && devicePixelRatioF() != m_layout.settings().devicePixelRatio) {
        applySettings(settingsForViewport());
    }
    return QAbstractScrollArea::viewportEvent(event);
}
