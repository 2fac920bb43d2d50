// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/FindField.h"

#include "Desktop/PaletteBlend.h"
#include "Widgets/AccessibleRole.h"

#include <QKeyEvent>
#include <QLabel>
#include <QScopedValueRollback>
#include <QToolButton>

#include <algorithm>

namespace {

constexpr QColor wrongColor(0xE0, 0x20, 0x20);
constexpr double wrongShare = 0.22;
constexpr double notFoundShare = 0.75;
/// Pixels that stay for what is typed.
constexpr int leastTextWidth = 56;
constexpr int noteGap = 4;

} // namespace

FindField::FindField(History history, QWidget *parent) : QLineEdit(parent), m_history(std::move(history)), m_note(new QLabel(this))
{
    becomeNotice(*m_note);
    setClearButtonEnabled(true);
    m_note->setForegroundRole(QPalette::PlaceholderText);
    m_note->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_note->hide();
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
    placeNote();
    // Said too where there is no room for it.
    if (saying == Saying::aloud && !note.isEmpty() && m_note->isVisible() == wasShown) {
        announce(*m_note);
    }
}

QString FindField::note() const
{
    return m_note->text();
}

void FindField::placeNote()
{
    const auto *clearButton = findChild<QToolButton *>();
    const int right = clearButton ? clearButton->x() : width() - noteGap;
    const int noteWidth = m_note->text().isEmpty() ? 0 : m_note->sizeHint().width();
    const bool fits = noteWidth > 0 && right - noteWidth >= leastTextWidth;
    m_note->setGeometry(right - noteWidth, 0, noteWidth, height());
    m_note->setVisible(fits);
    setTextMargins(0, 0, fits ? noteWidth + noteGap : 0, 0);
}

void FindField::nameClearButton(const QString &name) const
{
    if (auto *button = findChild<QToolButton *>()) {
        button->setAccessibleName(name);
        button->setToolTip(name);
    }
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
}

void FindField::changeEvent(QEvent *event)
{
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && !m_isApplyingState && m_state != State::normal) {
        applyState();
    }
}

void FindField::resizeEvent(QResizeEvent *event)
{
    QLineEdit::resizeEvent(event);
    placeNote();
}

void FindField::keyPressEvent(QKeyEvent *event)
{
    const bool isPlain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (isPlain && (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down)) {
        stepThroughHistory(event->key() == Qt::Key_Up ? 1 : -1);
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void FindField::stepThroughHistory(int step)
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
        return;
    }
    m_entry = wanted;
    setText(m_entry < 0 ? m_typed : history[m_entry]);
}
