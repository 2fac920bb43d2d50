// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Scheduler.h"
#include "Commands/Responder.h"
#include "Text/UndoManager.h"
#include "View/CaretMotion.h"
#include "View/Viewport.h"

#include <QAbstractScrollArea>
#include <QColor>

class Pasteboard;
class QMenu;
class QMimeData;

/// An editable view of a TextStorage: draws what is visible, moves the caret, takes keys, pointer, input methods and drops.
///
/// Any number of views may show one storage; each has its own layout, caret and scroll position and follows the edits of the others.
/// Every change of the text goes through apply(), so undo, highlighting and the other views never miss one. Offsets are UTF-16 units. The
/// storage, the undo manager and the services must outlive the view. Main thread only.
class TextView : public QAbstractScrollArea, public Responder {
    Q_OBJECT

public:
    enum class WrapMode { none, viewWidth };
    enum class CaretShape { bar, block, underline };
    enum class Visibility { hidden, shown };
    enum class Access { readWrite, readOnly };
    enum class Reveal { no, nearest, center };

    struct Services {
        Scheduler &scheduler;
        Pasteboard &pasteboard;
    };
    /// An invalid `currentLine`, which is behind the row of the caret, is not drawn.
    struct Colors {
        QColor background;
        QColor text;
        QColor selection;
        QColor caret;
        QColor currentLine;
        QColor invisibles;
        QColor mark;
    };
    /// Asked for the stretches to be marked (search hits) within what is seen of a row, ascending.
    using MarkProvider = std::function<std::vector<TextRange>(TextRange visible)>;

    TextView(TextStorage &storage, UndoManager &undoManager, Services services, const QFont &font, QWidget *parent = nullptr);
    ~TextView() override;

    [[nodiscard]] TextStorage &storage() const { return m_storage; }
    [[nodiscard]] UndoManager &undoManager() const { return m_undoManager; }
    [[nodiscard]] LayoutManager &layoutManager() { return m_layout; }
    [[nodiscard]] Viewport &textViewport() { return m_port; }

    void setTextFont(const QFont &font);
    [[nodiscard]] const QFont &textFont() const { return m_layout.settings().font; }
    void setTabWidth(int cells);
    void setWrapMode(WrapMode mode);
    [[nodiscard]] WrapMode wrapMode() const { return m_wrapMode; }
    /// Without a call the colours follow the palette.
    void setColors(const Colors &colors);
    [[nodiscard]] const Colors &colors() const { return m_colors; }
    void setCaretShape(CaretShape shape);
    void setInvisibles(Visibility visibility);
    void setAccess(Access access);
    [[nodiscard]] bool isReadOnly() const { return m_access == Access::readOnly; }
    void setMarkProvider(MarkProvider provider);
    /// The stretches to be underlined with a wavy line.
    void setMisspellings(MarkProvider provider);
    /// Draws the eye to `range`, which is seen already: a highlight that fades within a second.
    void showIndicator(TextRange range);

    [[nodiscard]] TextSelection selection() const { return {m_anchor, m_caret.offset}; }
    /// Both ends are clamped to the text and moved to grapheme boundaries.
    void setSelection(TextSelection selection, Reveal reveal = Reveal::no);
    [[nodiscard]] QString selectedText() const;
    void revealCaret(Reveal reveal = Reveal::nearest);
    /// Scrolls until `offset` is seen; the caret stays where it is.
    void revealOffset(qsizetype offset);
    void centerSelection();
    /// Pixels from the top of the content to the top of what is seen; estimated where rows were not laid out yet.
    [[nodiscard]] double scrollOffset() { return m_port.position().y(); }
    void setScrollOffset(double pixels);

    /// The one way by which this view changes its text: `edits` as one step of undo, and then the selection `after`. False, and nothing is
    /// changed, when the view is read-only.
    bool apply(const TextEdits &edits, GroupKind kind, TextSelection after, Reveal reveal = Reveal::nearest);
    /// Puts `text` in place of `range` and the caret behind it.
    void insertText(QStringView text, TextRange range);
    /// Selects, and shows the caret at `place` instead of at the selection's end, until one of them changes; scrolls until it is seen.
    void showCaretAt(TextSelection selection, qsizetype place);
    /// The units that can be seen, half a view above and below counted in; in a line wider than the view those near its visible part.
    [[nodiscard]] TextRange visibleRange();
    /// Caret in the coordinates of the scroll area; where an input method puts its window.
    [[nodiscard]] QRect caretRectangle();
    /// The place in the text nearest to a point of the viewport.
    [[nodiscard]] Caret caretAt(QPointF point);
    [[nodiscard]] bool isComposing() const { return !m_layout.preedit().text.isEmpty(); }

    // Commands; each is also an action of the responder chain where it has a name there.
    void undo();
    void redo();
    void cut();
    void copy();
    void paste();
    void deleteSelection();
    void selectAll();
    virtual void insertNewline();
    virtual void insertTab();
    virtual void insertBacktab();
    virtual void deleteBackward();
    void deleteForward();
    void move(Motion motion);
    void moveAndSelect(Motion motion);
    void deleteTo(Motion motion);
    void scrollRows(int rows);

    // For a gutter beside the text, which selects whole lines by a press and by dragging on. Points are the viewport's.
    enum class LineSelection { anew, extended };
    void beginSelectingLines(QPointF point, LineSelection how);
    /// Scrolls by itself as long as the pointer is outside.
    void goOnSelecting(QPointF point);
    void endSelecting();

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

signals:
    void selectionChanged();
    /// Text, size, font or position changed what is on the screen; for a gutter beside the text.
    void visibleRowsChanged();
    /// Control and the wheel: positive is larger.
    void zoomRequested(int steps);
    /// The context menu is about to be shown for the text at `offset`; observers add what they have to offer.
    void contextMenuRequested(QMenu *menu, qsizetype offset);

protected:
    /// Paints what is behind marks, selection and text of one row; `visible` is along the row.
    virtual void paintBehind(QPainter & /*painter*/, const Viewport::VisibleRow & /*row*/, Span /*visible*/) {}
    /// The units of the row that can be seen.
    [[nodiscard]] TextRange seenOf(const Viewport::VisibleRow &row, Span visible);
    /// Something is about to be undone or redone in this view.
    virtual void willReplay() {}

    /// What an input method has shown so far becomes text.
    void commitPreedit();
    /// True when the key gave up what an input method had shown so far. It comes here only from one that does not do that itself.
    bool cancelsPreedit(const QKeyEvent &event);
    /// Where a drag that is under way would leave its text; none when it would not.
    void setDropCaret(std::optional<qsizetype> offset);

    /// Lets the user drag `content`, which it takes over, and tells how that ended. Tests drop it at once.
    virtual Qt::DropAction runDrag(QMimeData *content, Qt::DropActions allowed, Qt::DropAction proposed);

    bool event(QEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    enum class Granularity { character, word, line };
    struct Pointer {
        Granularity granularity = Granularity::character;
        TextRange origin;
        QPointF pressed;
        QPointF last;
        bool isSelecting = false;
        bool mayDrag = false;
        qint64 doubleClickedAt = 0;
    };

    [[nodiscard]] bool canUndo() const;
    [[nodiscard]] bool canRedo() const;
    [[nodiscard]] bool hasSelection() const;
    [[nodiscard]] bool canCut() const;
    [[nodiscard]] bool canPaste() const;
    void applySettings(LayoutManager::Settings settings);
    [[nodiscard]] LayoutManager::Settings settingsForViewport() const;
    void replay(std::optional<TextSelection> (UndoManager::*step)());
    void storageChanged(const TextChange &change);
    void storageStylesChanged(const std::vector<TextRange> &ranges);
    void mapPlaces(const TextChange &change);
    void updateForChange(const TextChange &change);
    void setCaret(const Caret &caret, qsizetype anchor);
    void syncScrollBars();
    void viewMoved();
    void refineSoon();
    void noticeWidths();
    void noticeShifts();
    void updateRows(TextRange range);
    void updateCaret();
    [[nodiscard]] QRectF caretInViewport();
    [[nodiscard]] RowPosition caretRow();
    [[nodiscard]] qsizetype shownCaret() const { return m_shownCaret.value_or(m_caret.offset); }
    [[nodiscard]] double caretX(const RowPosition &row);
    void restartBlinking();
    void publishPrimarySelection();
    void applyPaletteColors();

    [[nodiscard]] QRectF caretRowInViewport();
    void fadeIndicator();

    struct KeyCommand;
    [[nodiscard]] static const KeyCommand *commandFor(const QKeyEvent &event);
    void removeRange(TextRange range, GroupKind kind);
    void typeText(QStringView text);

    void paintRow(QPainter &painter, const Viewport::VisibleRow &row, Span visible);
    void paintMarks(QPainter &painter, const Viewport::VisibleRow &row, Span visible);
    void paintSelection(QPainter &painter, const Viewport::VisibleRow &row, Span visible);
    void paintIndicator(QPainter &painter, const Viewport::VisibleRow &row, Span visible);
    void paintMisspellings(QPainter &painter, const Viewport::VisibleRow &row, Span visible);
    void paintInvisibles(QPainter &painter, const Viewport::VisibleRow &row, Span visible);
    void paintCaret(QPainter &painter);

    void commitText(const QInputMethodEvent &event);
    void movePreedit();
    void selectAt(const Caret &caret, Granularity granularity);
    void extendSelection(QPointF point);
    void autoScroll();
    [[nodiscard]] bool dragEnabledAt(QPointF point);
    [[nodiscard]] qsizetype graphemeUnder(QPointF point);
    void startDrag();
    /// False when it was refused. `taken` is what goes away where the text came from.
    bool dropText(const QString &text, qsizetype offset, TextRange taken);
    [[nodiscard]] TextRange granule(qsizetype offset, Granularity granularity) const;

    void sendAccessibleChange(const TextChange &change);
    void sendAccessibleSelection(TextSelection before);

    TextStorage &m_storage;
    UndoManager &m_undoManager;
    Services m_services;
    LayoutManager m_layout;
    Viewport m_port{m_layout};
    WrapMode m_wrapMode = WrapMode::none;
    CaretShape m_caretShape = CaretShape::bar;
    Visibility m_invisibles = Visibility::hidden;
    Access m_access = Access::readWrite;
    Colors m_colors;
    bool m_followsPalette = true;
    MarkProvider m_marks;
    MarkProvider m_misspellings;
    TextRange m_indicated;
    /// From 1, full, to 0.
    double m_indicatorStrength = 0;
    RepeatingTimer m_indicatorFades;

    Caret m_caret;
    qsizetype m_anchor = 0;
    std::optional<qsizetype> m_shownCaret;
    Pointer m_pointer;
    std::optional<qsizetype> m_dropCaret;
    TextRange m_dragged;
    // The change under way is this view's, which will say itself where its caret goes.
    bool m_isEditing = false;
    bool m_isSyncingScrollBars = false;
    bool m_isCaretOn = true;
    qsizetype m_preeditCaret = 0;
    bool m_isPreeditCaretShown = true;
    QPointF m_wheelRest;
    int m_zoomRest = 0;
    double m_verticalScale = 1;
    quint64 m_seenShifts = 0;
    RepeatingTimer m_blinking;
    RepeatingTimer m_autoScroll;
    DelayedTask m_refining, m_widening;
    DelayedTask m_primarySettles;
    DelayedTask m_barsSettle;
};
