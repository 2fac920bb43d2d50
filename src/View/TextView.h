// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Scheduler.h"
#include "Commands/Responder.h"
#include "Text/CaretEditing.h"
#include "Text/UndoManager.h"
#include "View/CaretMotion.h"
#include "View/TextViewCaret.h"
#include "View/TextViewInput.h"
#include "View/TextViewPainter.h"
#include "View/TextViewPointer.h"
#include "View/TextViewRepaint.h"
#include "View/TextViewScroller.h"
#include "View/Viewport.h"

#include <QAbstractScrollArea>

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
    /// Rows that continue a wrapped line begin at the left edge, or below the line's first letter.
    enum class WrapMode { none, viewWidth, indented };
    using CaretShape = TextLooks::CaretShape;
    using Visibility = TextLooks::Visibility;
    using Colors = TextLooks::Colors;
    using MarkProvider = TextLooks::MarkProvider;
    enum class Access { readWrite, readOnly };
    enum class Reveal { no, nearest, center };

    struct Services {
        Scheduler &scheduler;
        Pasteboard &pasteboard;
    };
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
    /// Without a call the colours follow the palette.
    void setColors(const Colors &colors);
    [[nodiscard]] const Colors &colors() const { return m_painter.looks.colors; }
    /// How the caret looks, whether invisible characters are seen, who tells what to mark and to underline.
    template<class Look>
    void setLook(Look TextLooks::*look, std::type_identity_t<Look> value)
    {
        m_painter.looks.*look = std::move(value);
        m_caret.restartBlinking(); // which not all of its shapes do
        viewport()->update();
    }
    void setAccess(Access access);
    [[nodiscard]] bool isReadOnly() const { return m_access == Access::readOnly; }
    /// The change of the text under way is this view's, which tells of its selection when that is where it belongs.
    [[nodiscard]] bool isEditing() const { return m_isEditing; }
    /// Draws the eye to `range`, which is seen already: a highlight that fades within a second.
    void showIndicator(TextRange range);

    /// The primary one of the selections.
    [[nodiscard]] TextSelection selection() const { return m_caret.selection(); }
    [[nodiscard]] const Selections &selections() const { return m_caret.selections; }
    /// All ends are clamped to the text and moved to grapheme boundaries.
    void setSelection(const Selections &selections, Reveal reveal = Reveal::no);
    [[nodiscard]] QString selectedText() const;
    void revealCaret(Reveal reveal = Reveal::nearest);
    /// Where the caret is shown, and whether it was seen when the view was painted last.
    [[nodiscard]] const TextViewCaret &caret() const { return m_caret; }
    /// Scrolls until `offset` is seen; the caret stays where it is.
    void revealOffset(qsizetype offset);
    /// Pixels from the top of the content to the top of what is seen; estimated where rows were not laid out yet.
    [[nodiscard]] double scrollOffset() { return m_port.position().y(); }
    void setScrollOffset(double pixels);
    void scrollTo(const Viewport::Place &place);

    /// The one way by which this view changes its text: `edits` as one step of undo, and then the selections `after`. False, and nothing is
    /// changed, when the view is read-only.
    bool apply(const TextEdits &edits, GroupKind kind, const Selections &after, Reveal reveal = Reveal::nearest);
    /// Puts `text` in place of `range` and the caret behind it.
    void insertText(QStringView text, TextRange range);
    /// Selects, and shows the caret at `place` instead of at the selection's end, until one of them changes; scrolls until it is seen.
    void showCaretAt(const Selections &wanted, qsizetype place);
    /// The units that can be seen, half a view above and below counted in; in a line wider than the view those near its visible part.
    [[nodiscard]] TextRange visibleRange();
    /// Caret in the coordinates of the scroll area; where an input method puts its window.
    [[nodiscard]] QRect caretRectangle();
    [[nodiscard]] bool isComposing() const { return m_input.isComposing(); }
    /// For a gutter beside the text.
    [[nodiscard]] TextViewPointer &pointer() { return m_pointer; }

    void undo();
    void redo();

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
    // What keys and actions do.
    virtual void cut();
    virtual void copy();
    virtual void paste();
    void deleteSelection();
    void selectAll();
    void addCaretAbove();
    void addCaretBelow();
    void splitSelectionIntoLines();
    virtual void insertNewline();
    virtual void insertTab();
    virtual void insertBacktab();
    virtual void deleteBackward();
    void deleteForward();
    enum class Anchor { moves, stays };
    /// All carets.
    void move(Motion motion, Anchor anchor = Anchor::moves);
    void deleteTo(Motion motion);
    /// What a command does at every caret.
    void run(const CaretStep &step, GroupKind kind);
    void scrollRows(int rows);

    /// Paints what is behind marks, selection and text of one row; `visible` is along the row.
    virtual void paintBehind(QPainter & /*painter*/, const Viewport::VisibleRow & /*row*/, Span /*visible*/) {}
    [[nodiscard]] TextViewPainter &painter() { return m_painter; }
    /// Something is about to be undone or redone in this view.
    virtual void willReplay() {}
    /// What was typed but is no text yet becomes text: something else is about to happen.
    virtual void finishTyping() {}

    [[nodiscard]] TextViewInput &input() { return m_input; }
    /// What keys and input methods write, in place of what is selected.
    virtual void typeText(QStringView text);
    [[nodiscard]] Pasteboard &pasteboard() const { return m_services.pasteboard; }

    /// Lets the user drag `content`, which it takes over, and reports how that ended. Tests drop it at once.
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
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    friend class TextViewCaret;
    friend class TextViewInput;
    friend class TextViewPointer;

    /// What is at the same height before and after.
    enum class Kept { topRow, caretIfSeen };
    void applySettings(LayoutManager::Settings settings, Kept kept = Kept::topRow);
    [[nodiscard]] LayoutManager::Settings settingsForViewport() const;
    void replay(std::optional<Selections> (UndoManager::*step)());
    void storageChanged(const TextChange &change);
    /// Clamps them, and shows the caret at `shown`, if it is given.
    void select(const Selections &wanted, std::optional<qsizetype> shown = {});
    void setCarets(const Selections &wanted, std::optional<qsizetype> shown = {});
    void viewMoved();

    void centerSelection() { revealCaret(Reveal::center); }

    struct KeyCommand;
    [[nodiscard]] static const KeyCommand *commandFor(const QKeyEvent &event);

    TextStorage &m_storage;
    UndoManager &m_undoManager;
    Services m_services;
    LayoutManager m_layout;
    Viewport m_port{m_layout};
    WrapMode m_wrapMode = WrapMode::none;
    Access m_access = Access::readWrite;
    bool m_followsPalette = true;
    TextViewPainter m_painter{m_layout, m_port};
    TextViewScroller m_scroller{*this, m_layout, m_port, m_services.scheduler};
    TextViewPointer m_pointer{*this};
    TextViewInput m_input{*this};
    TextViewRepaint m_repaint{*this};

    TextViewCaret m_caret{*this};
    bool m_isEditing = false;
};
