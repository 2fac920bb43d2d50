// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractScrollArea>
#include <QPageLayout>
#include <QPixmap>

#include <functional>

/// Shows one printed page, as a sheet of paper. Page Up, Page Down and the wheel go to other pages where this one ends, Home and End to the
/// first and last. Logical pixels.
class PageView final : public QAbstractScrollArea {
    Q_OBJECT

public:
    /// How large the sheet is.
    enum class Fit { page, width, factor };

    explicit PageView(QWidget *parent = nullptr);

    /// `paint` draws what stands within the margins of `paper`, in points from their corner, whenever the sheet is drawn anew.
    void setPage(const QPageLayout &paper, std::function<void(QPainter &painter)> paint, const QString &name);
    /// `factor`, 1 for the size on paper, counts for that fit only.
    void setFit(Fit fit, double factor);

    enum class Step { previous, next, first, last };
    /// Shows another page; answers false when there is none.
    std::function<bool(Step step)> onStep;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    [[nodiscard]] QSize sheetSize() const;
    void layOut();
    void draw();
    void step(int direction);

    QPageLayout m_paper;
    std::function<void(QPainter &painter)> m_paint;
    Fit m_fit = Fit::page;
    double m_factor = 1;
    /// Null when it has to be drawn.
    QPixmap m_sheet;
};
