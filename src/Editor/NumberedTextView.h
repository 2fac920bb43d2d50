// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Editor/LineNumberRulerView.h"
#include "Highlighting/Theme.h"
#include "View/MarkedScrollBar.h"
#include "View/TextView.h"

/// A text view in the colours of a theme, with the numbers of its lines beside it.
class NumberedTextView : public TextView {
    Q_OBJECT

public:
    using CurrentLine = LineNumberRulerView::CurrentLine;

    NumberedTextView(TextStorage &storage, UndoManager &undoManager, Services services, const QFont &font, QWidget *parent = nullptr);

    void setTheme(const Theme &theme, CurrentLine currentLine);
    [[nodiscard]] LineNumberRulerView &ruler() { return *m_ruler; }
    void setLineNumbers(Visibility visibility);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void placeRuler();

    LineNumberRulerView *m_ruler;
    MarkedScrollBar *m_verticalBar;
    TextScrollBar *m_horizontalBar;
};
