// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/VimListPanel.h"

#include "View/FloatingNote.h"
#include "View/TextView.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace {

/// Around the panel, and within it.
constexpr int margin = 4;
constexpr int padding = 8;
/// Of the view's height at most.
constexpr double largestShare = 0.6;

} // namespace

VimListPanel::VimListPanel(TextView &view)
    : QFrame(view.viewport()), m_view(view), m_title(new QLabel(this)), m_lines(new QPlainTextEdit(this))
{
    m_title->setTextFormat(Qt::PlainText);
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    m_lines->setReadOnly(true);
    m_lines->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_lines->setUndoRedoEnabled(false);
    m_lines->setFrameShape(QFrame::NoFrame);
    m_lines->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_lines->document()->setDocumentMargin(0);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(padding / 2);
    layout->addWidget(m_title);
    layout->addWidget(m_lines, 1);
    setFocusProxy(m_lines);
    setCursor(Qt::ArrowCursor);
    m_lines->installEventFilter(this);
    view.viewport()->installEventFilter(this);
    hide();
}

void VimListPanel::showList(const QString &title, const QString &text)
{
    const TextLooks::Colors &colors = m_view.colors();
    QPalette palette = m_view.palette();
    palette.setColor(QPalette::Base, Qt::transparent);
    palette.setColor(QPalette::Text, colors.text);
    palette.setColor(QPalette::WindowText, colors.text);
    setPalette(palette);
    m_title->setText(title);
    m_lines->setFont(m_view.textFont());
    m_lines->setPlainText(text);
    m_lines->setAccessibleName(title);
    show();
    raise();
    place();
    m_lines->setFocus();
}

void VimListPanel::place()
{
    const QRect room = m_view.viewport()->rect().adjusted(margin, margin, -margin, -margin);
    // One row more, where the bar for scrolling sideways may come.
    const int lines = (m_lines->blockCount() + 1) * QFontMetrics(m_lines->font()).lineSpacing();
    const int wanted = lines + m_title->sizeHint().height() + 3 * padding;
    const int height = std::min(wanted, std::max(int(room.height() * largestShare), m_title->sizeHint().height() + 6 * padding));
    setGeometry(room.left(), room.bottom() - height + 1, room.width(), height);
}

void VimListPanel::leave(Closed how)
{
    if (!isVisible()) {
        return;
    }
    if (how == Closed::byKey) {
        m_view.setFocus();
    }
    hide();
}

bool VimListPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_lines) {
        if (event->type() == QEvent::Resize && isVisible()) {
            place();
        }
        return QFrame::eventFilter(watched, event);
    }
    if (event->type() == QEvent::ShortcutOverride && static_cast<const QKeyEvent &>(*event).key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress && takeKey(static_cast<const QKeyEvent &>(*event))) {
        return true;
    }
    if (event->type() == QEvent::FocusOut) {
        const Qt::FocusReason reason = static_cast<const QFocusEvent &>(*event).reason();
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason) {
            leave(Closed::byFocus);
        }
    }
    return QFrame::eventFilter(watched, event);
}

bool VimListPanel::takeKey(const QKeyEvent &event)
{
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) {
        return false;
    }
    if (event.text() == u":") {
        leave(Closed::byKey);
        QKeyEvent next(QEvent::KeyPress, event.key(), event.modifiers(), event.text());
        QCoreApplication::sendEvent(&m_view, &next);
        return true;
    }
    QScrollBar &bar = *m_lines->verticalScrollBar();
    switch (event.key()) {
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Q:
        leave(Closed::byKey);
        return true;
    case Qt::Key_J:
    case Qt::Key_K:
        bar.setValue(bar.value() + (event.key() == Qt::Key_J ? 1 : -1));
        return true;
    case Qt::Key_Space:
        bar.setValue(bar.value() + bar.pageStep());
        return true;
    case Qt::Key_G:
        bar.setValue(event.modifiers() & Qt::ShiftModifier ? bar.maximum() : bar.minimum());
        return true;
    default:
        return false;
    }
}

void VimListPanel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintFloatingNote(painter, rect(), m_view.colors());
}
