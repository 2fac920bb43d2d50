// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QToolButton>

/// A small flat button with a drawn symbol: sharp at every scale and in the colours of the palette.
class GlyphButton final : public QToolButton {
    Q_OBJECT

public:
    enum class Glyph { up, down, close, matchCase, wholeWord, expression };

    explicit GlyphButton(Glyph glyph, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void paintLines(QPainter &painter) const;
    void paintLetters(QPainter &painter) const;

    Glyph m_glyph;
};
