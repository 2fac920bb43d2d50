// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/FindField.h"

#include "Commands/Actions.h"
#include "Desktop/PaletteBlend.h"
#include "Widgets/AccessibleRole.h"

#include <QKeyEvent>
#include <QLabel>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QStyleOptionFrame>
#include <QStylePainter>
#include <QTextBlock>
#include <QToolButton>

#include <algorithm>
#include <array>

namespace {

constexpr QColor wrongColor(0xE0, 0x20, 0x20);
constexpr double wrongShare = 0.22;
constexpr double notFoundShare = 0.75;
/// Pixels that stay for what is typed.
constexpr int leastTextWidth = 56;
constexpr int noteGap = 4;
/// Of more lines the others are scrolled to.
constexpr int mostLines = 5;
constexpr int tabCells = 4;
/// Around the text, as in a line edit.
constexpr QMargins textMargins(2, 1, 2, 1);

QStyleOptionFrame frameOf(const QWidget &widget)
{
    QStyleOptionFrame frame;
    frame.initFrom(&widget);
    frame.rect = widget.rect();
    frame.lineWidth = widget.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &frame, &widget);
    frame.state |= QStyle::State_Sunken;
    return frame;
}

} // namespace

FindField::FindField(History history, QWidget *parent)
    : QPlainTextEdit(parent), m_history(std::move(history)), m_note(new QLabel(this)), m_clear(new QToolButton(this))
{
    setFrameStyle(QFrame::NoFrame);
    viewport()->setAutoFillBackground(false);
    // A part of the field, which has the focus alone; a click goes on to the field by itself.
    viewport()->setFocusProxy(nullptr);
    viewport()->setFocusPolicy(Qt::NoFocus);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTabChangesFocus(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    document()->setDocumentMargin(0);
    document()->clearUndoRedoStacks(); // which that is no part of
    setTabStopDistance(tabCells * fontMetrics().horizontalAdvance(u' '));
    becomeNotice(*m_note);
    m_note->setForegroundRole(QPalette::PlaceholderText);
    m_note->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_note->hide();
    m_clear->setIcon(style()->standardIcon(QStyle::SP_LineEditClearButton, nullptr, this));
    m_clear->setAutoRaise(true);
    m_clear->setFocusPolicy(Qt::NoFocus);
    m_clear->setCursor(Qt::ArrowCursor);
    m_clear->hide();
    connect(m_clear, &QToolButton::clicked, this, [this] { setText({}); });
    connect(this, &QPlainTextEdit::textChanged, this, &FindField::fitHeight);
}

QString FindField::text() const
{
    // The document's own plain text has blanks for no-break spaces.
    return document()->toRawText().replace(QChar::ParagraphSeparator, QChar::LineFeed);
}

void FindField::setText(const QString &text)
{
    setPlainText(text);
    moveCursor(QTextCursor::End);
}

QMimeData *FindField::createMimeDataFromSelection() const
{
    auto *content = new QMimeData;
    content->setText(textCursor().selectedText().replace(QChar::ParagraphSeparator, QChar::LineFeed));
    return content;
}

void FindField::setNote(const QString &note, const QString &explanation, Saying saying)
{
    m_note->setToolTip(explanation);
    setToolTip(explanation);
    if (note == m_note->text()) {
        return;
    }
    m_note->setText(note);
    const bool wasShown = m_note->isVisible();
    placeControls();
    // Said too where there is no room for it.
    if (saying == Saying::aloud && !note.isEmpty() && m_note->isVisible() == wasShown) {
        announce(*m_note);
    }
}

QString FindField::note() const
{
    return m_note->text();
}

void FindField::nameClearButton(const QString &name) const
{
    m_clear->setAccessibleName(name);
    m_clear->setToolTip(name);
}

const ActionRow *FindField::actionFor(const Action &wanted) const
{
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&FindField::undoTyping, &FindField::canUndoTyping>(Actions::undo),
        action<&FindField::redoTyping, &FindField::canRedoTyping>(Actions::redo),
        action<&FindField::cutSelected, &FindField::hasSelected>(Actions::cut),
        action<&FindField::copySelected, &FindField::hasSelected>(Actions::copy),
        action<&FindField::pasteText, &FindField::canPasteText>(Actions::paste),
        action<&FindField::deleteSelected, &FindField::hasSelected>(Actions::deleteSelection),
        action<&FindField::selectAllText>(Actions::selectAll),
    });
    return findAction(rows, wanted);
}

// Size

int FindField::heightFor(int lines) const
{
    const QStyleOptionFrame frame = frameOf(*this);
    const int line = std::max(fontMetrics().height(), 14) + textMargins.top() + textMargins.bottom();
    return style()->sizeFromContents(QStyle::CT_LineEdit, &frame, QSize(100, line), this).height() +
           (lines - 1) * fontMetrics().lineSpacing();
}

QSize FindField::sizeHint() const
{
    return {30 * fontMetrics().horizontalAdvance(u'x'), heightFor(m_lines)};
}

QSize FindField::minimumSizeHint() const
{
    return {leastTextWidth, heightFor(m_lines)};
}

void FindField::fitHeight()
{
    const int lines = std::min(document()->blockCount(), mostLines);
    if (std::exchange(m_lines, lines) != lines) {
        setVerticalScrollBarPolicy(lines == mostLines ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
        updateGeometry();
    }
    placeControls();
}

QRect FindField::contents() const
{
    const QStyleOptionFrame frame = frameOf(*this);
    return style()->subElementRect(QStyle::SE_LineEditContents, &frame, this);
}

/// The note and the button stand at the end of the first line.
void FindField::placeControls()
{
    const QRect inner = contents();
    const int line = heightFor(1);
    const bool hasText = !document()->isEmpty();
    const int side = std::min(line - 4, m_clear->iconSize().height() + 4);
    m_clear->setGeometry(inner.right() + 1 - side, (line - side) / 2, side, side);
    m_clear->setVisible(hasText);
    const int right = hasText ? m_clear->x() : inner.right() + 1 - noteGap;
    const int noteWidth = m_note->text().isEmpty() ? 0 : m_note->sizeHint().width();
    const bool fits = noteWidth > 0 && right - noteWidth >= leastTextWidth;
    m_note->setGeometry(right - noteWidth, 0, noteWidth, line);
    m_note->setVisible(fits);
    const int end = fits ? m_note->x() - noteGap : right;
    const int above = std::max((line - fontMetrics().height()) / 2, inner.top());
    const QMargins margins(inner.left() + textMargins.left(), above, width() - end, 0);
    if (viewportMargins() != margins) {
        setViewportMargins(margins);
    }
}

void FindField::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    placeControls();
}

// Looks

bool FindField::event(QEvent *event)
{
    if (event->type() == QEvent::Paint) {
        QStylePainter painter(this);
        painter.drawPrimitive(QStyle::PE_PanelLineEdit, frameOf(*this));
        return true;
    }
    return QPlainTextEdit::event(event);
}

void FindField::focusInEvent(QFocusEvent *event)
{
    QPlainTextEdit::focusInEvent(event);
    update();
}

void FindField::focusOutEvent(QFocusEvent *event)
{
    QPlainTextEdit::focusOutEvent(event);
    update();
}

void FindField::setState(State state)
{
    if (std::exchange(m_state, state) != state) {
        applyState();
    }
}

void FindField::applyState()
{
    const QScopedValueRollback<bool> applying(m_isApplyingState, true);
    setPalette({});
    m_note->setPalette({});
    if (m_state == State::notFound) {
        QPalette shown = palette();
        shown.setColor(QPalette::PlaceholderText, blended(shown.color(QPalette::Text), wrongColor, notFoundShare));
        m_note->setPalette(shown);
    }
    if (m_state == State::wrong) {
        QPalette shown = palette();
        shown.setColor(QPalette::Base, blended(shown.color(QPalette::Base), wrongColor, wrongShare));
        setPalette(shown);
    }
    update();
}

void FindField::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && !m_isApplyingState && m_state != State::normal) {
        applyState();
    }
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        updateGeometry();
    }
}

// Keys

void FindField::keyPressEvent(QKeyEvent *event)
{
    const bool isPlain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    const QTextBlock block = textCursor().block();
    // From its first line up and from its last one down.
    const bool isUp = isPlain && event->key() == Qt::Key_Up && !block.previous().isValid();
    const bool isDown = isPlain && event->key() == Qt::Key_Down && !block.next().isValid();
    if ((isUp || isDown) && stepThroughHistory(isUp ? 1 : -1)) {
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

/// False when there is nothing in that direction.
bool FindField::stepThroughHistory(int step)
{
    const QStringList history = m_history();
    // The entry may have been edited, or be another since a search put its text first.
    if (m_entry >= history.size() || (m_entry >= 0 && history[m_entry] != text())) {
        m_entry = -1;
    }
    int entry = m_entry + step;
    if (m_entry < 0) {
        m_typed = text();
        // What is entered already is no step back.
        if (entry == 0 && !history.isEmpty() && history.first() == m_typed) {
            ++entry;
        }
    }
    const int last = static_cast<int>(history.size()) - 1;
    const int wanted = std::clamp(entry, -1, last);
    if (wanted == m_entry) {
        return false;
    }
    m_entry = wanted;
    setText(m_entry < 0 ? m_typed : history[m_entry]);
    if (step > 0) {
        // So that the next step leads on through the history.
        moveCursor(QTextCursor::Start);
        moveCursor(QTextCursor::EndOfLine);
    }
    return true;
}
