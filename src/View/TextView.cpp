// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/TextView.h"

#include "Base/Pasteboard.h"
#include "Commands/Actions.h"
#include "Text/PasteboardText.h"
#include "Text/TextBoundaries.h"
#include "Text/TextStorage.h"
#include "View/SeveralCarets.h"
#include "View/TextViewAccessible.h"

#include <QApplication>
#include <QInputMethod>
#include <QPaintEvent>
#include <QPainter>
#include <QScopedValueRollback>

#include <array>
#include <cmath>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

TextView::Colors colorsOf(const QPalette &palette)
{
    TextView::Colors colors = {.background = palette.color(QPalette::Base),
                               .text = palette.color(QPalette::Text),
                               .selection = palette.color(QPalette::Highlight),
                               .caret = palette.color(QPalette::Text),
                               .currentLine = {},
                               .invisibles = palette.color(QPalette::PlaceholderText),
                               .mark = {}};
    // Text keeps its colours on a selection, so the selection must stay near the background.
    colors.selection.setAlphaF(0.35F);
    colors.mark = colors.selection;
    return colors;
}

/// Where commands reckon with the lengths of lines, their selections may end within a pair.
Selections outsidePairs(const Rope &text, const Selections &selections)
{
    const auto isWhole = [&text](const CaretSelection &one) { return !text.splitsPair(one.caret.offset) && !text.splitsPair(one.anchor); };
    if (text.characterCount() == text.length() || std::ranges::all_of(selections, isWhole)) {
        return selections;
    }
    std::vector<CaretSelection> all(selections.begin(), selections.end());
    for (CaretSelection &one : all) {
        one.caret.offset -= text.splitsPair(one.caret.offset) ? 1 : 0;
        one.anchor -= text.splitsPair(one.anchor) ? 1 : 0;
    }
    return Selections::merged(std::move(all), selections.primaryIndex());
}

} // namespace

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
    m_painter.looks.colors = colorsOf(palette());
    connect(&storage, &TextStorage::changed, this, &TextView::storageChanged);
    connect(&storage, &TextStorage::stylesChanged, this, [this](const std::vector<TextRange> &ranges) {
        m_layout.stylesChanged(ranges);
        m_repaint.ranges(ranges);
    });
}

TextView::~TextView() = default;

namespace {

bool canUndo(const TextView &view)
{
    return !view.isReadOnly() && view.undoManager().canUndo();
}

bool canRedo(const TextView &view)
{
    return !view.isReadOnly() && view.undoManager().canRedo();
}

bool hasSelection(const TextView &view)
{
    return view.selections().hasSelected();
}

bool canCut(const TextView &view)
{
    return !view.isReadOnly() && hasSelection(view);
}

} // namespace

const ActionRow *TextView::actionFor(const Action &wanted) const
{
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&TextView::undo, canUndo>(Actions::undo),
        action<&TextView::redo, canRedo>(Actions::redo),
        action<&TextView::cut, canCut>(Actions::cut),
        action<&TextView::copy, hasSelection>(Actions::copy),
        action<&TextView::paste, [](const TextView &view) { return !view.isReadOnly() && view.m_services.pasteboard.hasText(); }>(
            Actions::paste),
        action<&TextView::deleteSelection, canCut>(Actions::deleteSelection),
        action<&TextView::selectAll>(Actions::selectAll),
        action<&TextView::centerSelection>(Actions::centerSelection),
        action<&TextView::addCaretAbove>(Actions::addCaretAbove),
        action<&TextView::addCaretBelow>(Actions::addCaretBelow),
        action<&TextView::splitSelectionIntoLines, hasSelection>(Actions::splitSelectionIntoLines),
    });
    return findAction(rows, wanted);
}

// Settings

LayoutManager::Settings TextView::settingsForViewport() const
{
    LayoutManager::Settings settings = m_layout.settings();
    settings.devicePixelRatio = devicePixelRatioF();
    settings.wrapWidth.reset();
    settings.indentsWrappedRows = m_wrapMode == WrapMode::indented;
    if (m_wrapMode != WrapMode::none) {
        const double width = viewport()->width() - 2 * m_port.insets().horizontal;
        settings.wrapWidth = std::max(width, 4 * m_layout.cellWidth());
    }
    return settings;
}

void TextView::applySettings(LayoutManager::Settings settings, Kept kept)
{
    const auto caretTop = kept == Kept::caretIfSeen && m_caret.wasSeen ? m_port.topOf(m_caret.row()) : std::nullopt;
    m_layout.setSettings(std::move(settings));
    m_port.setSize(viewport()->size());
    m_layout.setCacheCapacity(static_cast<size_t>(std::max<qint64>(64, 3 * m_port.rowsPerPage())));
    m_port.settle();
    if (caretTop) {
        const RowPosition row = m_caret.row();
        m_port.reveal(row);
        m_port.scrollBy(m_port.topOf(row).value_or(0) - *caretTop);
        m_port.reveal(row);
    }
    viewMoved();
    viewport()->update();
}

void TextView::setTextFont(const QFont &font)
{
    LayoutManager::Settings settings = settingsForViewport();
    settings.font = font;
    applySettings(std::move(settings), Kept::caretIfSeen);
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
    if (std::exchange(m_wrapMode, mode) == mode) {
        return;
    }
    // Wrapped text never needs the bar; asking for it would change the width and so the wrapping.
    setHorizontalScrollBarPolicy(mode == WrapMode::none ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(mode == WrapMode::none ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOn);
    applySettings(settingsForViewport());
}

void TextView::setColors(const Colors &colors)
{
    m_followsPalette = false;
    m_painter.looks.colors = colors;
    viewport()->update();
}

void TextView::setAccess(Access access)
{
    m_input.commit();
    m_access = access;
    QGuiApplication::inputMethod()->update(Qt::ImEnabled | Qt::ImReadOnly);
}

void TextView::showIndicator(TextRange range)
{
    m_painter.indicator.show(range.clampedTo(m_storage.length()), m_services.scheduler, [this](TextRange shown) { m_repaint.rows(shown); });
}

// Editing

bool TextView::apply(const TextEdits &edits, GroupKind kind, const Selections &after, Reveal reveal)
{
    if (isReadOnly()) {
        return false;
    }
    {
        const QScopedValueRollback<bool> editing(m_isEditing, true);
        m_undoManager.beginGroup(kind, selections(), this);
        m_storage.apply(edits);
        const Selections whole = outsidePairs(m_storage.text(), after);
        m_undoManager.endGroup(whole);
        setCarets(whole);
    }
    revealCaret(reveal);
    return true;
}

void TextView::run(const CaretStep &step, GroupKind kind)
{
    if (!step.edits.isEmpty() || step.after != selections()) {
        apply(step.edits, kind, step.after);
    }
}

void TextView::insertText(QStringView text, TextRange range)
{
    apply({range, text}, GroupKind::other, TextSelection::at(range.location + text.length()));
}

void TextView::typeText(QStringView text)
{
    run(CaretEditing::typed(selections(), Rope(text)), GroupKind::typing);
}

// Following the storage

void TextView::storageChanged(const TextChange &change)
{
    const TextSelection before = selection();
    m_layout.textChanged(change);
    m_port.textChanged(change, m_isEditing ? Viewport::Editor::thisView : Viewport::Editor::another);
    // Everything that remembers a place in the text goes where that text went. The carets of the view that edits are set right after, so
    // only one of them needs a place until then.
    const bool hadSeveral = !selections().isSingle();
    m_caret.selections = m_isEditing ? Selections(change.mapped(before)) : selections().mapped(change);
    m_caret.shown.reset();
    m_pointer.textChanged(change);
    m_painter.indicator.textChanged(change);
    if (isComposing()) {
        m_input.movePreedit();
    }
    if (m_port.settle() || hadSeveral) {
        viewport()->update();
    } else {
        m_repaint.change(change);
    }
    TextViewAccessible::reportChange(*this, change);
    viewMoved();
    if (!m_isEditing && selection() != before) {
        TextViewAccessible::reportSelection(*this, before);
        emit selectionChanged();
    }
}

// Selection

void TextView::setCarets(const Selections &wanted, std::optional<qsizetype> shown)
{
    const bool isSame = selections() == wanted && m_caret.shown == shown;
    const bool areSeveral = !selections().isSingle() || !wanted.isSingle();
    const auto repaintCarets = [this, areSeveral] { areSeveral ? viewport()->update() : m_caret.repaint(); };
    const TextSelection before = selection();
    const QRectF rowBefore = m_caret.rowBox();
    repaintCarets();
    m_caret.shown = shown;
    m_caret.selections = wanted;
    if (isComposing() && m_layout.preedit().offset != m_caret.place().offset) {
        m_input.movePreedit();
    }
    m_caret.restartBlinking();
    if (const QRectF row = m_caret.rowBox(); row != rowBefore) {
        viewport()->update(rowBefore.toAlignedRect());
        viewport()->update(row.toAlignedRect());
    }
    repaintCarets();
    // An edit of this view has already moved the ends along with the text, which is no reason to keep silent about it.
    if (isSame && !m_isEditing) {
        return;
    }
    if (!areSeveral) {
        m_repaint.selection(before);
    }
    if (hasFocus()) {
        QGuiApplication::inputMethod()->update(Qt::ImCursorRectangle | Qt::ImAnchorRectangle | Qt::ImCursorPosition | Qt::ImAnchorPosition |
                                               Qt::ImCurrentSelection | Qt::ImSurroundingText | Qt::ImTextBeforeCursor |
                                               Qt::ImTextAfterCursor);
    }
    TextViewAccessible::reportSelection(*this, before);
    m_pointer.publishPrimarySelection();
    emit selectionChanged();
}

void TextView::setSelection(const Selections &wanted, Reveal reveal)
{
    select(wanted);
    revealCaret(reveal);
}

void TextView::showCaretAt(const Selections &wanted, qsizetype place)
{
    select(wanted, TextBoundaries::snapped(m_storage.text(), place));
    revealCaret();
}

void TextView::select(const Selections &wanted, std::optional<qsizetype> shown)
{
    std::vector<CaretSelection> all(wanted.begin(), wanted.end());
    for (CaretSelection &one : all) {
        one.caret.offset = TextBoundaries::snapped(m_storage.text(), one.caret.offset);
        one.anchor = TextBoundaries::snapped(m_storage.text(), one.anchor);
    }
    if (all[wanted.primaryIndex()].caret.offset != m_caret.place().offset) {
        m_undoManager.breakCoalescing();
    }
    const Selections merged = Selections::merged(std::move(all), wanted.primaryIndex());
    const bool isAtPlace = merged.isSingle() && shown == merged.primary().caret.offset;
    setCarets(merged, isAtPlace ? std::nullopt : shown);
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

void TextView::setScrollOffset(double pixels)
{
    m_port.setY(pixels);
    viewMoved();
    viewport()->update();
}

void TextView::scrollTo(const Viewport::Place &place)
{
    m_port.goTo(place);
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
    const RowPosition row = m_caret.row();
    m_port.reveal(row, reveal == Reveal::center ? Viewport::Reveal::center : Viewport::Reveal::nearest, m_painter.looks.revealMargin);
    const double x = m_caret.x(row);
    m_port.revealX({x, x + 2});
    if (m_port.position() != before) {
        viewMoved();
        viewport()->update();
    }
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

void TextView::replay(std::optional<Selections> (UndoManager::*step)())
{
    m_input.commit();
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
    if (selections().isSingle() && !selection().isEmpty()) {
        setText(m_services.pasteboard, m_storage.text().slice(selection().range()));
    } else if (selections().hasSelected()) {
        setPieces(m_services.pasteboard, m_storage.text(), selections());
    }
}

void TextView::cut()
{
    if (!isReadOnly() && selections().hasSelected()) {
        m_input.commit();
        copy();
        deleteSelection();
    }
}

void TextView::paste()
{
    m_input.commit();
    const QString text = m_services.pasteboard.text();
    if (text.isEmpty()) {
        return;
    }
    const auto pieces = selections().isSingle() ? std::nullopt : piecesOf(m_services.pasteboard, text, selections().count());
    run(pieces ? CaretEditing::typed(selections(), *pieces) : CaretEditing::typed(selections(), Rope(withLineFeeds(text))),
        GroupKind::other);
}

void TextView::deleteSelection()
{
    run(CaretEditing::withoutSelected(selections()), GroupKind::other);
}

void TextView::selectAll()
{
    m_input.commit();
    m_undoManager.breakCoalescing();
    setCarets(Selections(CaretSelection{.caret = {m_storage.length(), Affinity::downstream, {}}, .anchor = 0}));
}

// Several carets

void TextView::addCaretAbove()
{
    m_input.commit();
    setSelection(SeveralCarets::besideEach(selections(), SeveralCarets::Side::above, m_layout), Reveal::nearest);
}

void TextView::addCaretBelow()
{
    m_input.commit();
    setSelection(SeveralCarets::besideEach(selections(), SeveralCarets::Side::below, m_layout), Reveal::nearest);
}

void TextView::splitSelectionIntoLines()
{
    m_input.commit();
    setSelection(CaretEditing::splitIntoLines(m_storage.text(), selections()));
}

// Focus and the caret

void TextView::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    m_caret.restartBlinking();
    viewport()->update();
}

void TextView::focusOutEvent(QFocusEvent *event)
{
    m_input.commit();
    m_undoManager.breakCoalescing();
    QAbstractScrollArea::focusOutEvent(event);
    m_caret.blinking.rest();
    viewport()->update();
}

bool TextView::focusNextPrevChild(bool next)
{
    // Tab belongs to the text; a view that cannot take it lets the focus pass.
    return isReadOnly() && QAbstractScrollArea::focusNextPrevChild(next);
}

QRect TextView::caretRectangle()
{
    return m_caret.box().toAlignedRect().translated(viewport()->pos());
}

// Looks

void TextView::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_followsPalette) {
        m_painter.looks.colors = colorsOf(palette());
        viewport()->update();
    }
}

void TextView::paintEvent(QPaintEvent *event)
{
    m_caret.wasSeen = !m_caret.box().isEmpty();
    std::vector<QRectF> carets;
    if (m_caret.isToBeSeen()) {
        carets = m_caret.otherBoxes();
        carets.push_back(m_caret.box());
    }
    QPainter painter(viewport());
    m_painter.paint(painter, event->rect(), m_storage.text(),
                    {.selections = selections(),
                     .caretRow = window()->focusWidget() == this ? m_caret.rowBox() : QRectF(),
                     .carets = std::move(carets),
                     .dropCaret = m_pointer.dropCaret(),
                     .paintBehind = [&](const Viewport::VisibleRow &row, Span visible) { paintBehind(painter, row, visible); }});
    m_scroller.noticeWidths();
}

bool TextView::viewportEvent(QEvent *event)
{
    // There is no event for a screen of another scale; the first painting on it tells.
    if (event->type() == QEvent::Paint && devicePixelRatioF() != m_layout.settings().devicePixelRatio) {
        applySettings(settingsForViewport());
    }
    return (isEnabled() && m_pointer.handle(*event)) || QAbstractScrollArea::viewportEvent(event);
}

// What there is to be seen

void TextView::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    const bool isWidthNew = m_wrapMode != WrapMode::none && settingsForViewport().wrapWidth != m_layout.settings().wrapWidth;
    if (isWidthNew) {
        applySettings(settingsForViewport());
        return;
    }
    m_port.setSize(viewport()->size());
    m_layout.setCacheCapacity(static_cast<size_t>(std::max<qint64>(64, 3 * m_port.rowsPerPage())));
    if (m_port.settle()) {
        viewport()->update();
    }
    viewMoved();
}

void TextView::viewMoved()
{
    using enum TextViewScroller::Bars;
    m_scroller.viewMoved(m_isEditing ? whenKeysRest : atOnce);
    emit visibleRowsChanged();
}

void TextView::scrollContentsBy(int dx, int dy)
{
    if (m_scroller.barsMoved(dx, dy)) {
        viewMoved();
        viewport()->update();
        QGuiApplication::inputMethod()->update(Qt::ImCursorRectangle | Qt::ImAnchorRectangle);
    }
}

void TextView::scrollRows(int rows)
{
    m_port.scrollRows(rows);
    viewMoved();
    viewport()->update();
}

void TextView::inputMethodEvent(QInputMethodEvent *event)
{
    m_input.handle(*event);
}

QVariant TextView::inputMethodQuery(Qt::InputMethodQuery query) const
{
    const QVariant answer = m_input.answer(query);
    return answer.isValid() ? answer : QAbstractScrollArea::inputMethodQuery(query);
}
