// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollBar>

/// Beside a text: the style's, or one whose handle stands out more than styles let it.
class TextScrollBar : public QScrollBar {
    Q_OBJECT

public:
    explicit TextScrollBar(Qt::Orientation orientation, QWidget *parent = nullptr) : QScrollBar(orientation, parent) {}

    /// Of the bar, and of its handle and edge; invalid ones leave it to the style.
    virtual void setColors(const QColor &ground, const QColor &handle);

    struct Grounds {
        QColor bar;
        QColor handle;
    };
    /// What is drawn beside a text and under it, whatever the style; as it is now.
    [[nodiscard]] Grounds grounds() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_ground;
    QColor m_handle;
};
