// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QToolButton>

/// A borderless button in the colours of its palette: a symbol or a text, on a ground only while it is pointed at or pressed. Return
/// presses it as Space does.
class FlatButton : public QToolButton {
    Q_OBJECT

public:
    /// How far a text stands from the edges, in pixels; for those who line something up with it.
    static constexpr int textMargin = 5;

    explicit FlatButton(QWidget *parent = nullptr);

    /// A symbol of `symbolIcon` in the colour of the button's text.
    void setSymbol(const QString &name, int side);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] QSize measured() const;
    void tintSymbol();
    void paintGround(QPainter &painter) const;

    QString m_symbol;
    /// What the hint of a text was: a status bar asks for all of them at every key.
    struct Measured {
        QString text;
        QFont font;
        QSize size;
    };
    mutable Measured m_measured;
};
