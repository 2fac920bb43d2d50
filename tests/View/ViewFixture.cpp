// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "ViewFixture.h"

#include <QApplication>
#include <QTest>

using namespace Qt::StringLiterals;

MarkedText::MarkedText(const QString &marked)
{
    std::optional<qsizetype> anchor;
    for (const QChar c : marked) {
        if (c == u'|') {
            selection.caret = text.length();
        } else if (c == u'^') {
            anchor = text.length();
        } else {
            text += c;
        }
    }
    selection.anchor = anchor.value_or(selection.caret);
}

QString MarkedText::marked(QString text, TextSelection selection)
{
    const bool isCaretLast = selection.caret >= selection.anchor;
    text.insert(std::max(selection.caret, selection.anchor), isCaretLast ? u'|' : u'^');
    if (!selection.isEmpty()) {
        text.insert(std::min(selection.caret, selection.anchor), isCaretLast ? u'^' : u'|');
    }
    return text;
}

QFont testFont()
{
    QFont font(u"DejaVu Sans Mono"_s);
    font.setPixelSize(13);
    return font;
}

ViewFixture::ViewFixture(const QString &text, QSize size)
{
    const UndoManager::Pause pause(undo);
    storage.apply({{0, 0}, text});
    view.setTextFont(testFont());
    view.resize(size);
    view.show();
    view.setFocus();
    (void)QTest::qWaitForWindowActive(&view);
}

void sendKeys(QWidget &widget, const QString &keys)
{
    static const QHash<QString, Qt::Key> names{
        {u"Left"_s, Qt::Key_Left},     {u"Right"_s, Qt::Key_Right}, {u"Up"_s, Qt::Key_Up},         {u"Down"_s, Qt::Key_Down},
        {u"Home"_s, Qt::Key_Home},     {u"End"_s, Qt::Key_End},     {u"PageUp"_s, Qt::Key_PageUp}, {u"PageDown"_s, Qt::Key_PageDown},
        {u"BS"_s, Qt::Key_Backspace},  {u"Del"_s, Qt::Key_Delete},  {u"CR"_s, Qt::Key_Return},     {u"Tab"_s, Qt::Key_Tab},
        {u"Insert"_s, Qt::Key_Insert}, {u"Esc"_s, Qt::Key_Escape}};
    for (qsizetype i = 0; i < keys.length(); ++i) {
        if (keys[i] != u'<') {
            QTest::keyClick(&widget, keys[i].toLatin1());
            continue;
        }
        const qsizetype end = keys.indexOf(u'>', i);
        QStringList parts = keys.mid(i + 1, end - i - 1).split(u'-');
        i = end;
        const QString name = parts.takeLast();
        Qt::KeyboardModifiers modifiers;
        for (const QString &part : parts) {
            modifiers |= part == u"C" ? Qt::ControlModifier : part == u"S" ? Qt::ShiftModifier : Qt::AltModifier;
        }
        Qt::Key key = names.value(name, name.length() == 1 ? static_cast<Qt::Key>(name.front().toUpper().unicode()) : Qt::Key_unknown);
        if (key == Qt::Key_Tab && modifiers == Qt::ShiftModifier) {
            key = Qt::Key_Backtab;
        }
        if (key == Qt::Key_unknown) {
            qFatal("no such key: %s", qPrintable(name));
        }
        QTest::keyClick(&widget, key, modifiers);
    }
}

void ViewFixture::setText(const QString &marked)
{
    const MarkedText text(marked);
    const UndoManager::Pause pause(undo);
    storage.apply({{0, storage.length()}, text.text});
    view.setSelection(text.selection);
}

void dragMouse(TextView &view, QPoint point)
{
    QMouseEvent event(QEvent::MouseMove, point, view.viewport()->mapToGlobal(point), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(view.viewport(), &event);
}

QPoint pointIn(TextView &view, qsizetype offset)
{
    LayoutManager &layout = view.layoutManager();
    const RowPosition row = layout.rowOf(offset);
    const double top = view.textViewport().topOf(row).value_or(-1000);
    return QPointF(view.textViewport().left() + layout.xOf(row, offset), top + layout.rowHeight() / 2).toPoint();
}
