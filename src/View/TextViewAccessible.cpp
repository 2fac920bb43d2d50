// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/TextViewAccessible.h"

#include "Text/TextBoundaries.h"
#include "Text/TextStorage.h"
#include "View/TextView.h"

#include <QAccessible>

#include <algorithm>

namespace {

// What is copied out for one answer at the most; a screen reader that asks for "the text" gets its beginning.
constexpr qsizetype answerLimit = 64 * 1024;
/// Of more edits at once a screen reader hears as of one.
constexpr size_t mostReported = 100;

QAccessibleInterface *makeAccessible(const QString &, QObject *object)
{
    auto *view = qobject_cast<TextView *>(object);
    return view ? new TextViewAccessible(*view) : nullptr;
}

} // namespace

void TextViewAccessible::install()
{
    static const bool installed = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    Q_UNUSED(installed)
}

TextViewAccessible::TextViewAccessible(TextView &view) : QAccessibleWidget(&view, QAccessible::EditableText) {}

TextView &TextViewAccessible::view() const
{
    return *static_cast<TextView *>(widget());
}

void *TextViewAccessible::interface_cast(QAccessible::InterfaceType type)
{
    switch (type) {
    case QAccessible::TextInterface:
        return static_cast<QAccessibleTextInterface *>(this);
    case QAccessible::EditableTextInterface:
        return static_cast<QAccessibleEditableTextInterface *>(this);
    default:
        return QAccessibleWidget::interface_cast(type);
    }
}

QAccessibleInterface *TextViewAccessible::child(int /*index*/) const
{
    return nullptr;
}

int TextViewAccessible::indexOfChild(const QAccessibleInterface * /*child*/) const
{
    return -1;
}

QAccessible::State TextViewAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.multiLine = true;
    state.selectableText = true;
    state.readOnly = view().isReadOnly();
    state.editable = !view().isReadOnly();
    return state;
}

QString TextViewAccessible::text(QAccessible::Text kind) const
{
    if (kind != QAccessible::Value) {
        return QAccessibleWidget::text(kind);
    }
    return view().storage().string({0, std::min(view().storage().length(), answerLimit)});
}

void TextViewAccessible::setText(QAccessible::Text kind, const QString &text)
{
    if (kind == QAccessible::Value) {
        view().insertText(text, {0, view().storage().length()});
    } else {
        QAccessibleWidget::setText(kind, text);
    }
}

qsizetype TextViewAccessible::resolved(int character) const
{
    if (character == -1) {
        return view().storage().length();
    }
    return character == -2 ? view().selection().caret : view().storage().text().characterStart(character);
}

int TextViewAccessible::characterOffset(qsizetype offset) const
{
    return static_cast<int>(view().storage().text().characterAt(offset));
}

/// Which of the selections is the one of that number for a screen reader, which does not count bare carets.
std::optional<size_t> TextViewAccessible::selectionNumber(int index) const
{
    const Selections &all = view().selections();
    for (size_t i = 0; i < all.count(); ++i) {
        if (!all[i].isEmpty() && index-- == 0) {
            return i;
        }
    }
    return std::nullopt;
}

void TextViewAccessible::selection(int index, int *start, int *end) const
{
    const auto number = selectionNumber(index);
    const TextRange range = number ? view().selections()[*number].range() : TextRange{};
    *start = characterOffset(range.location);
    *end = characterOffset(range.end());
}

int TextViewAccessible::selectionCount() const
{
    return static_cast<int>(std::ranges::count_if(view().selections(), [](const CaretSelection &one) { return !one.isEmpty(); }));
}

void TextViewAccessible::addSelection(int start, int end)
{
    const CaretSelection added = CaretSelection::of({resolved(start), resolved(end)});
    const bool isFirst = !view().selections().hasSelected();
    view().setSelection(isFirst ? Selections(added) : view().selections().with(added), TextView::Reveal::nearest);
}

void TextViewAccessible::removeSelection(int index)
{
    const auto number = selectionNumber(index);
    if (number && view().selections().isSingle()) {
        view().setSelection(TextSelection::at(view().selection().caret));
    } else if (number) {
        view().setSelection(view().selections().without(*number));
    }
}

void TextViewAccessible::setSelection(int index, int start, int end)
{
    const CaretSelection wanted = CaretSelection::of({resolved(start), resolved(end)});
    const Selections &all = view().selections();
    const auto number = selectionNumber(index);
    if (number && !all.isSingle()) {
        view().setSelection(all.without(*number).with(wanted), TextView::Reveal::nearest);
    } else if (index == 0) {
        view().setSelection(Selections(wanted), TextView::Reveal::nearest);
    }
}

int TextViewAccessible::cursorPosition() const
{
    return characterOffset(view().selection().caret);
}

void TextViewAccessible::setCursorPosition(int position)
{
    view().setSelection(TextSelection::at(resolved(position)), TextView::Reveal::nearest);
}

QString TextViewAccessible::text(int start, int end) const
{
    const qsizetype from = resolved(start);
    const qsizetype to = std::clamp(resolved(end), from, from + answerLimit);
    return view().storage().string(TextRange::between(from, to));
}

TextRange TextViewAccessible::wholePieceAt(qsizetype offset, QAccessible::TextBoundaryType boundary) const
{
    const Rope &text = view().storage().text();
    switch (boundary) {
    case QAccessible::CharBoundary: {
        const qsizetype start = TextBoundaries::snapped(text, offset);
        return TextRange::between(start, TextBoundaries::nextGrapheme(text, start));
    }
    case QAccessible::WordBoundary:
        // At a line's end that is the word before; from there a reader would never come to the next line.
        if (const TextRange word = TextBoundaries::wordAt(text, offset); word.contains(offset) || offset >= text.length()) {
            return word;
        }
        return wholePieceAt(offset, QAccessible::CharBoundary);
    case QAccessible::LineBoundary: {
        LayoutManager &layout = view().layoutManager();
        const RowPosition row = layout.rowOf(offset);
        TextRange range = layout.rangeOf(row);
        // The row's break is part of it, so that rows follow one another without a gap.
        if (const auto next = layout.next(row)) {
            range = TextRange::between(range.location, layout.rangeOf(*next).location);
        }
        return range;
    }
    case QAccessible::SentenceBoundary:
    case QAccessible::ParagraphBoundary: {
        const qsizetype line = text.lineAt(offset);
        return TextRange::between(text.lineStart(line), line + 1 < text.lineCount() ? text.lineStart(line + 1) : text.length());
    }
    case QAccessible::NoBoundary:
        break;
    }
    return {0, text.length()};
}

TextRange TextViewAccessible::pieceAt(qsizetype offset, QAccessible::TextBoundaryType boundary) const
{
    const TextRange whole = wholePieceAt(offset, boundary);
    if (whole.length <= answerLimit) {
        return whole;
    }
    // Parts begin and end between letters.
    const Rope &text = view().storage().text();
    const qsizetype at = TextBoundaries::snapped(text, std::min(offset, whole.end() - 1));
    const auto bound = [&](qsizetype part) {
        return part == 0 ? whole.location : TextBoundaries::snapped(text, std::min(whole.location + part * answerLimit, whole.end()));
    };
    qsizetype part = (at - whole.location) / answerLimit;
    if (bound(part + 1) <= at) {
        ++part;
    }
    return TextRange::between(bound(part), bound(part + 1));
}

QString TextViewAccessible::answer(TextRange piece, int *start, int *end) const
{
    *start = characterOffset(piece.location);
    *end = characterOffset(piece.end());
    return view().storage().string(piece);
}

QString TextViewAccessible::textAtOffset(int offset, QAccessible::TextBoundaryType boundary, int *start, int *end) const
{
    return answer(pieceAt(resolved(offset), boundary), start, end);
}

QString TextViewAccessible::textBeforeOffset(int offset, QAccessible::TextBoundaryType boundary, int *start, int *end) const
{
    const qsizetype from = pieceAt(resolved(offset), boundary).location;
    if (from == 0) {
        return answer({0, 0}, start, end);
    }
    return answer(pieceAt(from - 1, boundary), start, end);
}

QString TextViewAccessible::textAfterOffset(int offset, QAccessible::TextBoundaryType boundary, int *start, int *end) const
{
    const qsizetype to = pieceAt(resolved(offset), boundary).end();
    if (to >= view().storage().length()) {
        return answer({view().storage().length(), 0}, start, end);
    }
    return answer(pieceAt(to, boundary), start, end);
}

int TextViewAccessible::characterCount() const
{
    return characterOffset(view().storage().length());
}

QRect TextViewAccessible::characterRect(int offset) const
{
    const qsizetype at = resolved(offset);
    LayoutManager &layout = view().layoutManager();
    Viewport &port = view().textViewport();
    const RowPosition row = layout.rowOf(at);
    const auto top = port.topOf(row);
    if (!top) {
        return {};
    }
    const double left = layout.xOf(row, at);
    const qsizetype next = TextBoundaries::nextGrapheme(view().storage().text(), at);
    const double right = next <= layout.rangeOf(row).end() ? layout.xOf(row, next) : left + layout.cellWidth();
    const QRectF inViewport(port.left() + std::min(left, right), *top, std::abs(right - left), layout.rowHeight());
    return inViewport.toAlignedRect().translated(view().viewport()->mapToGlobal(QPoint(0, 0)));
}

int TextViewAccessible::offsetAtPoint(const QPoint &point) const
{
    const QPoint local = view().viewport()->mapFromGlobal(point);
    if (!view().viewport()->rect().contains(local)) {
        return -1;
    }
    const Viewport::VisibleRow row = view().textViewport().rowAt(local.y());
    return characterOffset(view().layoutManager().graphemeAt(row.row, local.x() - view().textViewport().left()));
}

void TextViewAccessible::scrollToSubstring(int start, int end)
{
    Q_UNUSED(end)
    view().revealOffset(resolved(start));
}

QString TextViewAccessible::attributes(int offset, int *start, int *end) const
{
    const qsizetype at = resolved(offset);
    TextRange found{at, 0};
    QString description;
    const TextStorage &storage = view().storage();
    constexpr qsizetype reach = 4096;
    const TextRange window = TextRange::between(std::max<qsizetype>(0, at - reach), std::min(storage.length(), at + reach));
    storage.forEachStyle(window, [&](TextRange run, StyleId style) {
        if (!run.contains(at)) {
            return;
        }
        found = run;
        const TextAttributes &attributes = storage.styles().attributes(style);
        if (attributes.foreground) {
            const QColor color = QColor::fromRgba(*attributes.foreground);
            description += QStringLiteral("color:rgb(%1,%2,%3);").arg(color.red()).arg(color.green()).arg(color.blue());
        }
        if (attributes.isBold) {
            description += QStringLiteral("font-weight:bold;");
        }
        if (attributes.isItalic) {
            description += QStringLiteral("font-style:italic;");
        }
        if (attributes.isUnderlined) {
            description += QStringLiteral("text-underline-style:solid;");
        }
    });
    *start = characterOffset(found.location);
    *end = characterOffset(found.end());
    return description;
}

void TextViewAccessible::deleteText(int start, int end)
{
    replaceText(start, end, {});
}

void TextViewAccessible::insertText(int offset, const QString &text)
{
    // The bridge to the bus fills up to the length that it was given, which readers count in bytes.
    qsizetype length = text.length();
    while (length > 0 && text.at(length - 1).isNull()) {
        --length;
    }
    replaceText(offset, offset, text.first(length));
}

void TextViewAccessible::replaceText(int start, int end, const QString &text)
{
    const Rope &content = view().storage().text();
    const qsizetype first = resolved(start);
    const qsizetype last = resolved(end);
    // Whole letters, and none where nothing is to be replaced.
    const qsizetype from = TextBoundaries::snapped(content, first);
    const qsizetype before = TextBoundaries::snapped(content, last);
    const qsizetype to = before < last ? TextBoundaries::nextGrapheme(content, before) : last;
    view().insertText(text, TextRange::between(from, last > first ? to : from));
}

// What a view reports

void TextViewAccessible::reportChange(TextView &view, const TextChange &change)
{
    if (!QAccessible::isActive()) {
        return;
    }
    const auto spoken = [](const Rope &text, TextRange range) {
        return text.toString({range.location, std::min(range.length, answerLimit)});
    };
    const auto report = [&](TextRange gone, TextRange fresh) {
        const auto position = static_cast<int>(change.after.characterAt(fresh.location));
        if (!gone.isEmpty()) {
            QAccessibleTextRemoveEvent event(&view, position, spoken(change.before, gone));
            QAccessible::updateAccessibility(&event);
        }
        if (!fresh.isEmpty()) {
            QAccessibleTextInsertEvent event(&view, position, spoken(change.after, fresh));
            QAccessible::updateAccessibility(&event);
        }
    };
    const TextEdits &edits = change.edits;
    if (edits.count() > mostReported) {
        const ReplacedStretch hull = edits.hull();
        report({hull.location, hull.removed}, {hull.location, hull.inserted});
        return;
    }
    for (size_t index = 0; index < edits.count(); ++index) {
        report(edits[index].range, edits.newRange(index));
    }
}

void TextViewAccessible::reportSelection(TextView &view, TextSelection before)
{
    if (!QAccessible::isActive()) {
        return;
    }
    const auto characterOffset = [&text = view.storage().text()](qsizetype offset) { return static_cast<int>(text.characterAt(offset)); };
    if (!before.isEmpty() || !view.selection().isEmpty()) {
        const TextRange range = view.selection().range();
        QAccessibleTextSelectionEvent event(&view, characterOffset(range.location), characterOffset(range.end()));
        event.setCursorPosition(characterOffset(view.selection().caret));
        QAccessible::updateAccessibility(&event);
    }
    QAccessibleTextCursorEvent event(&view, characterOffset(view.selection().caret));
    QAccessible::updateAccessibility(&event);
}
