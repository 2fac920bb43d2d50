// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// A TextView and the input methods: dead keys, Compose, and whole sentences composed before they become text.
//
// What is being composed (the preedit) is shown in the view and never enters the storage or the undo history. An input method may ask
// for the text around the caret; it gets an excerpt, since some protocols break at 4000 bytes and a line may have ten million.

#include "Text/TextStorage.h"
#include "View/TextView.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QTextCharFormat>

namespace {

// Units to either side of the caret; even three bytes each stay below 4000 together.
constexpr qsizetype surroundingReach = 600;

TextRange surroundingRange(const Rope &text, qsizetype caret)
{
    qsizetype from = std::max<qsizetype>(0, caret - surroundingReach);
    qsizetype to = std::min(text.length(), caret + surroundingReach);
    if (from > 0 && QChar::isLowSurrogate(text.at(from))) {
        ++from;
    }
    if (to < text.length() && QChar::isLowSurrogate(text.at(to))) {
        --to;
    }
    return TextRange::between(from, std::max(from, to));
}

/// An input method that counts letters otherwise may point into a surrogate pair.
TextRange wholePairs(const Rope &text, TextRange range)
{
    return TextRange::between(range.location - (text.splitsPair(range.location) ? 1 : 0),
                              range.end() + (text.splitsPair(range.end()) ? 1 : 0));
}

struct PreeditLook {
    QList<QTextLayout::FormatRange> formats;
    qsizetype caret = 0;
    bool isCaretShown = true;
};

PreeditLook lookOf(const QInputMethodEvent &event)
{
    PreeditLook look;
    look.caret = event.preeditString().length();
    bool isUnderlined = false;
    for (const QInputMethodEvent::Attribute &attribute : event.attributes()) {
        if (attribute.type == QInputMethodEvent::Cursor) {
            look.caret = std::clamp<qsizetype>(attribute.start, 0, event.preeditString().length());
            look.isCaretShown = attribute.length != 0;
        } else if (attribute.type == QInputMethodEvent::TextFormat) {
            const QTextCharFormat format = qvariant_cast<QTextFormat>(attribute.value).toCharFormat();
            if (format.isValid() && attribute.length > 0) {
                look.formats.append({attribute.start, attribute.length, format});
                isUnderlined = true;
            }
        }
    }
    if (!isUnderlined) {
        QTextCharFormat format;
        format.setFontUnderline(true);
        look.formats.append({0, static_cast<int>(event.preeditString().length()), format});
    }
    return look;
}

} // namespace

void TextView::inputMethodEvent(QInputMethodEvent *event)
{
    if (isReadOnly()) {
        event->ignore();
        return;
    }
    const bool changesText = !event->commitString().isEmpty() || event->replacementLength() > 0;
    const bool beginsComposing = !event->preeditString().isEmpty() && !isComposing();
    if (isComposing()) {
        m_layout.setPreedit({});
    }
    if (changesText) {
        commitText(*event);
    } else if (beginsComposing && !selection().isEmpty()) {
        deleteSelection();
    }
    for (const QInputMethodEvent::Attribute &attribute : event->attributes()) {
        if (attribute.type == QInputMethodEvent::Selection) {
            const TextRange around = surroundingRange(m_storage.text(), m_caret.offset);
            const qsizetype from = around.location + attribute.start;
            setSelection({from, from + attribute.length}, Reveal::nearest);
        }
    }
    if (!event->preeditString().isEmpty()) {
        const PreeditLook look = lookOf(*event);
        m_preeditCaret = look.caret;
        m_isPreeditCaretShown = look.isCaretShown;
        m_layout.setPreedit({m_caret.offset, event->preeditString(), look.formats});
    }
    m_port.settle();
    revealCaret();
    restartBlinking();
    viewMoved();
    viewport()->update();
    QGuiApplication::inputMethod()->update(Qt::ImCursorRectangle | Qt::ImSurroundingText | Qt::ImCursorPosition | Qt::ImAnchorPosition);
    event->accept();
}

void TextView::commitText(const QInputMethodEvent &event)
{
    const QString text = event.commitString();
    if (event.replacementLength() == 0 && event.replacementStart() == 0) {
        typeText(text);
        return;
    }
    // The replacement counts from the caret, which after a selection is deleted stands at its start.
    const TextRange selected = selection().range();
    const TextEdits removal(selected, Rope());
    const Rope rest = removal.applied(m_storage.text());
    const qsizetype from = std::clamp<qsizetype>(selected.location + event.replacementStart(), 0, rest.length());
    const TextRange range = wholePairs(rest, TextRange{from, event.replacementLength()}.clampedTo(rest.length()));
    apply(removal.followedBy({range, text}), GroupKind::typing, TextSelection::at(range.location + text.length()));
}

void TextView::movePreedit()
{
    LayoutManager::Preedit preedit = m_layout.preedit();
    preedit.offset = m_caret.offset;
    m_layout.setPreedit(std::move(preedit));
    viewport()->update();
}

void TextView::commitPreedit()
{
    if (!isComposing()) {
        return;
    }
    // The input method answers with an event that commits; one that does not has nothing to keep.
    QGuiApplication::inputMethod()->commit();
    if (isComposing()) {
        m_layout.setPreedit({});
        viewport()->update();
    }
}

bool TextView::cancelsPreedit(const QKeyEvent &event)
{
    if (!isComposing() || event.key() != Qt::Key_Escape) {
        return false;
    }
    QGuiApplication::inputMethod()->reset();
    m_layout.setPreedit({});
    viewport()->update();
    return true;
}

QVariant TextView::inputMethodQuery(Qt::InputMethodQuery query) const
{
    // Layout is made on demand, so even a question changes the cache.
    auto *self = const_cast<TextView *>(this);
    const Rope &text = m_storage.text();
    const TextRange around = surroundingRange(text, m_caret.offset);
    const TextRange selected = selection().range();
    switch (query) {
    case Qt::ImEnabled:
        return testAttribute(Qt::WA_InputMethodEnabled) && isEnabled() && !isReadOnly();
    case Qt::ImReadOnly:
        return isReadOnly();
    case Qt::ImHints:
        return static_cast<int>(inputMethodHints());
    case Qt::ImFont:
        return m_layout.settings().font;
    case Qt::ImCursorRectangle:
        return self->caretRectangle();
    case Qt::ImAnchorRectangle: {
        const RowPosition row = self->m_layout.rowOf(m_anchor);
        const double top = self->m_port.topOf(row).value_or(0);
        return QRectF(m_port.left() + self->m_layout.xOf(row, m_anchor), top, 1, m_layout.rowHeight())
            .toAlignedRect()
            .translated(viewport()->pos());
    }
    case Qt::ImInputItemClipRectangle:
        return viewport()->geometry();
    case Qt::ImSurroundingText:
        return text.toString(around);
    case Qt::ImCursorPosition:
        return static_cast<int>(m_caret.offset - around.location);
    case Qt::ImAnchorPosition:
        return static_cast<int>(std::clamp(m_anchor, around.location, around.end()) - around.location);
    case Qt::ImAbsolutePosition:
        return static_cast<int>(m_caret.offset);
    case Qt::ImCurrentSelection:
        return text.toString({selected.location, std::min(selected.length, 2 * surroundingReach)});
    case Qt::ImTextBeforeCursor:
        return text.toString(TextRange::between(around.location, m_caret.offset));
    case Qt::ImTextAfterCursor:
        return text.toString(TextRange::between(m_caret.offset, around.end()));
    default:
        return QAbstractScrollArea::inputMethodQuery(query);
    }
}
