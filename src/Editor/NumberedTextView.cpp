// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/NumberedTextView.h"

NumberedTextView::NumberedTextView(TextStorage &storage, UndoManager &undoManager, Services services, const QFont &font, QWidget *parent)
    : TextView(storage, undoManager, services, font, parent), m_ruler(new LineNumberRulerView(*this, this))
{
    connect(m_ruler, &LineNumberRulerView::thicknessChanged, this, &NumberedTextView::placeRuler);
    connect(this, &TextView::visibleRowsChanged, m_ruler, &LineNumberRulerView::refresh);
    connect(this, &TextView::selectionChanged, m_ruler, &LineNumberRulerView::refresh);
    placeRuler();
}

void NumberedTextView::setTheme(const Theme &theme, CurrentLine currentLine)
{
    // Dark grounds take little of the colour, or comments could not be read on it.
    setColors({.background = QColor::fromRgb(theme.background),
               .text = QColor::fromRgb(theme.foreground),
               .selection = QColor::fromRgb(theme.selection),
               .caret = QColor::fromRgb(theme.caret),
               .currentLine = currentLine == CurrentLine::highlighted ? QColor::fromRgb(theme.currentLine) : QColor(),
               .invisibles = QColor::fromRgb(theme.invisibles),
               .mark = QColor::fromRgb(blended(theme.background, theme.isDark ? 0xFFD8A200 : 0xFFFFC800, theme.isDark ? 0.22 : 0.5))});
    m_ruler->setTheme(theme);
    m_ruler->setHighlightsCurrentLine(currentLine);
}

void NumberedTextView::setLineNumbers(Visibility visibility)
{
    m_ruler->setVisible(visibility == Visibility::shown);
    placeRuler();
}

void NumberedTextView::placeRuler()
{
    const int thickness = m_ruler->isHidden() ? 0 : m_ruler->thickness();
    if (viewportMargins().left() != thickness) {
        setViewportMargins(thickness, 0, 0, 0);
    }
    const QRect port = viewport()->geometry();
    m_ruler->setGeometry(port.left() - thickness, port.top(), thickness, port.height());
}

void NumberedTextView::resizeEvent(QResizeEvent *event)
{
    TextView::resizeEvent(event);
    placeRuler();
}
