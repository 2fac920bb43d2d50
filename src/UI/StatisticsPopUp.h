// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UI/TextStatistics.h"

#include <QFrame>

class QGridLayout;
class QLabel;

/// A small table of what there is in a text and in its selection. It goes with the next click elsewhere or key.
class StatisticsPopUp final : public QFrame {
    Q_OBJECT

public:
    explicit StatisticsPopUp(const TextStatistics &statistics, QWidget *parent = nullptr);

    void setStatistics(const TextStatistics &statistics);
    void showAbove(const QWidget &button);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void setCell(int row, int column, const QString &text);

    QGridLayout *m_grid;
};
