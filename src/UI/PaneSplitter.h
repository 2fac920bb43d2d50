// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QSplitter>

/// The panes of a window with thin dividers between them.
class PaneSplitter final : public QSplitter {
public:
    explicit PaneSplitter(QWidget *parent = nullptr);

    void setDividerColor(const QColor &color);
    [[nodiscard]] const QColor &dividerColor() const { return m_dividerColor; }

protected:
    [[nodiscard]] QSplitterHandle *createHandle() override;

private:
    QColor m_dividerColor;
};
