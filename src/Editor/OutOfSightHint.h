// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QLabel;
class TextView;

/// A line of text over an edge of a view that says what is outside it, in the colours of the view. A click goes there.
class OutOfSightHint final : public QWidget {
    Q_OBJECT

public:
    explicit OutOfSightHint(TextView &view);

    /// In the upper right corner, or in the lower one where the caret is in the upper.
    void show(const QString &text);

signals:
    void clicked();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void place();

    TextView &m_view;
    QLabel *m_label;
};
