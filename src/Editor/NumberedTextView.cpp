// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/NumberedTextView.h"

#include "Base/ColorContrast.h"

NumberedTextView::NumberedTextView(TextStorage &storage, UndoManager &undoManager, Services services, const QFont &font, QWidget *parent)
    : TextView(storage, undoManager, services, font, parent), m_ruler(new LineNumberRulerView(*this, this)),
      m_verticalBar(new MarkedScrollBar(*this)), m_horizontalBar(new TextScrollBar(Qt::Horizontal))
{
    setVerticalScrollBar(m_verticalBar);
    setHorizontalScrollBar(m_horizontalBar);
    connect(m_ruler, &LineNumberRulerView::thicknessChanged, this, &NumberedTextView::placeRuler);
    placeRuler();
}

void NumberedTextView::setTheme(const Theme &theme, CurrentLine currentLine)
{
    // Dark grounds take little of the colour, or comments could not be read on it.
    const quint32 shade = blended(theme.background, theme.isDark ? 0xFFD8A200 : 0xFFFFC800, theme.isDark ? 0.22 : 0.5);
    const quint32 mark = legible(shade, theme.background, limitsOf(theme.contrast).text, {theme.foreground});
    const auto colorOrNone = [](quint32 color) { return color == 0 ? QColor() : QColor::fromRgb(color); };
    setColors({.background = QColor::fromRgb(theme.background),
               .text = QColor::fromRgb(theme.foreground),
               .selection = QColor::fromRgb(theme.selection),
               .caret = QColor::fromRgb(theme.caret),
               .currentLine = currentLine == CurrentLine::highlighted ? QColor::fromRgb(theme.currentLine) : QColor(),
               .invisibles = QColor::fromRgb(theme.invisibles),
               .mark = QColor::fromRgb(mark),
               .selectedText = colorOrNone(theme.selectedText),
               .currentLineBorder = colorOrNone(currentLine == CurrentLine::highlighted ? theme.currentLineBorder : 0)});
    const bool isStark = theme.contrast == Contrast::high;
    for (TextScrollBar *bar : std::initializer_list<TextScrollBar *>{m_verticalBar, m_horizontalBar}) {
        bar->setColors(isStark ? QColor::fromRgb(theme.background) : QColor(), isStark ? QColor::fromRgb(theme.foreground) : QColor());
    }
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
