// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/TextViewInput.h"

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

void TextViewInput::handle(QInputMethodEvent &event)
{
    if (m_view.isReadOnly()) {
        event.ignore();
        return;
    }
    const bool changesText = !event.commitString().isEmpty() || event.replacementLength() > 0;
    const bool beginsComposing = !event.preeditString().isEmpty() && !isComposing();
    endComposing();
    if (changesText) {
        insert(event);
    } else if (beginsComposing && m_view.selections().hasSelected()) {
        m_view.deleteSelection();
    }
    for (const QInputMethodEvent::Attribute &attribute : event.attributes()) {
        if (attribute.type == QInputMethodEvent::Selection) {
            const TextRange around = surroundingRange(m_view.m_storage.text(), m_view.m_caret.place().offset);
            const qsizetype from = around.location + attribute.start;
            m_view.setSelection({from, from + attribute.length}, TextView::Reveal::nearest);
        }
    }
    if (!event.preeditString().isEmpty()) {
        const PreeditLook look = lookOf(event);
        m_caret = look.caret;
        m_isCaretShown = look.isCaretShown;
        m_view.m_layout.setPreedit({m_view.m_caret.place().offset, event.preeditString(), look.formats});
    }
    m_view.m_port.settle();
    m_view.revealCaret();
    m_view.m_caret.restartBlinking();
    m_view.viewMoved();
    m_view.viewport()->update();
    QGuiApplication::inputMethod()->update(Qt::ImCursorRectangle | Qt::ImSurroundingText | Qt::ImCursorPosition | Qt::ImAnchorPosition);
    event.accept();
}

void TextViewInput::insert(const QInputMethodEvent &event)
{
    const QString text = event.commitString();
    if (event.replacementLength() == 0 && event.replacementStart() == 0) {
        m_view.typeText(text);
        return;
    }
    // The replacement counts from the caret, which after a selection is deleted stands at its start. At the other carets the same is
    // replaced beside them.
    const CaretStep removal = CaretEditing::withoutSelected(m_view.selections());
    const Rope rest = removal.edits.applied(m_view.m_storage.text());
    const CaretStep step = CaretEditing::replaced(removal.after, [&](const CaretSelection &one, size_t) {
        const qsizetype from = std::clamp<qsizetype>(one.caret.offset + event.replacementStart(), 0, rest.length());
        const TextRange range = wholePairs(rest, TextRange{from, event.replacementLength()}.clampedTo(rest.length()));
        return CaretEditing::Replacement{range, Rope(text)};
    });
    m_view.apply(removal.edits.followedBy(step.edits), GroupKind::typing, step.after);
}

bool TextViewInput::isComposing() const
{
    return !m_view.m_layout.preedit().text.isEmpty();
}

void TextViewInput::endComposing()
{
    if (isComposing()) {
        m_view.m_layout.setPreedit({});
        m_view.viewport()->update();
    }
}

void TextViewInput::movePreedit()
{
    LayoutManager::Preedit preedit = m_view.m_layout.preedit();
    preedit.offset = m_view.m_caret.place().offset;
    m_view.m_layout.setPreedit(std::move(preedit));
    m_view.viewport()->update();
}

void TextViewInput::commit()
{
    m_view.finishTyping();
    if (!isComposing()) {
        return;
    }
    // The input method answers with an event that commits; one that does not has nothing to keep.
    QGuiApplication::inputMethod()->commit();
    endComposing();
}

bool TextViewInput::isCancelledBy(const QKeyEvent &event)
{
    if (!isComposing() || event.key() != Qt::Key_Escape) {
        return false;
    }
    QGuiApplication::inputMethod()->reset();
    endComposing();
    return true;
}

QVariant TextViewInput::answer(Qt::InputMethodQuery query) const
{
    const Rope &text = m_view.m_storage.text();
    const TextRange around = surroundingRange(text, m_view.m_caret.place().offset);
    const TextRange selected = m_view.selection().range();
    switch (query) {
    case Qt::ImEnabled:
        return m_view.testAttribute(Qt::WA_InputMethodEnabled) && m_view.isEnabled() && !m_view.isReadOnly();
    case Qt::ImReadOnly:
        return m_view.isReadOnly();
    case Qt::ImHints:
        return static_cast<int>(m_view.inputMethodHints());
    case Qt::ImFont:
        return m_view.m_layout.settings().font;
    case Qt::ImCursorRectangle:
        return m_view.caretRectangle();
    case Qt::ImAnchorRectangle: {
        const RowPosition row = m_view.m_layout.rowOf(m_view.m_caret.anchor());
        const double top = m_view.m_port.topOf(row).value_or(0);
        return QRectF(m_view.m_port.left() + m_view.m_layout.xOf(row, m_view.m_caret.anchor()), top, 1, m_view.m_layout.rowHeight())
            .toAlignedRect()
            .translated(m_view.viewport()->pos());
    }
    case Qt::ImInputItemClipRectangle:
        return m_view.viewport()->geometry();
    case Qt::ImSurroundingText:
        return text.toString(around);
    case Qt::ImCursorPosition:
        return static_cast<int>(m_view.m_caret.place().offset - around.location);
    case Qt::ImAnchorPosition:
        return static_cast<int>(std::clamp(m_view.m_caret.anchor(), around.location, around.end()) - around.location);
    case Qt::ImAbsolutePosition:
        return static_cast<int>(m_view.m_caret.place().offset);
    case Qt::ImCurrentSelection:
        return text.toString({selected.location, std::min(selected.length, 2 * surroundingReach)});
    case Qt::ImTextBeforeCursor:
        return text.toString(TextRange::between(around.location, m_view.m_caret.place().offset));
    case Qt::ImTextAfterCursor:
        return text.toString(TextRange::between(m_view.m_caret.place().offset, around.end()));
    default:
        return {};
    }
}
