// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineDiff.h"

#include <QWidget>

#include <memory>

struct Theme;

/// The thin strip beside a scroll bar that shows where all changes of a comparison are, and goes where it is clicked. Pointer only: the
/// same places are reached by keys.
class DiffOverview final : public QWidget {
    Q_OBJECT

public:
    explicit DiffOverview(QWidget *parent = nullptr);

    void setResult(std::shared_ptr<const LineDiff::Result> result);
    void applyTheme(const Theme &theme);

    [[nodiscard]] QSize sizeHint() const override;

    /// A mark of the strip: what lies between two heights (0 … `height`), at least 2 pixels apart.
    struct Mark {
        LineDiff::Row::Kind kind = LineDiff::Row::Kind::equal;
        int top = 0;
        int bottom = 0;

        friend bool operator==(const Mark &, const Mark &) = default;
    };
    /// Top to bottom; of a strip of `height` pixels there are never more than that.
    [[nodiscard]] static std::vector<Mark> marks(const LineDiff::Result &result, int height);

signals:
    /// Into the middle of the view.
    void rowWanted(qsizetype row);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    std::shared_ptr<const LineDiff::Result> m_result;
    const Theme *m_theme;
};
