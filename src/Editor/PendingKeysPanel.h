// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Scheduler.h"
#include "Vim/VimKeymap.h"

#include <QWidget>

class TextView;

/// What the keys of a mapping that were typed may become, over the lower end of a text: a key and its label a cell, in columns. It comes
/// when nothing was typed for a while, takes neither keys nor clicks, and is seen while the text has the keyboard only. What does not fit
/// into a third of the view is left out.
class PendingKeysPanel final : public QWidget {
    Q_OBJECT

public:
    /// Whoever knows the keys does not see it.
    static constexpr Scheduler::Milliseconds delay{400};

    /// Both must outlive it.
    PendingKeysPanel(TextView &view, Scheduler &scheduler);

    /// What may come now; nothing hides it.
    void follow(const std::vector<VimKeymap::Mapping> &continuations);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    struct Cell {
        QString keys;
        QString label;
    };
    /// In pixels; cells go down a column, then on to the next.
    struct Grid {
        int keyWidth = 0;
        int cellWidth = 0;
        int rowHeight = 0;
        int columns = 1;
        int rows = 1;
    };

    void reveal();
    void place();
    [[nodiscard]] QFont keyFont() const;
    /// For so much room.
    [[nodiscard]] Grid grid(QSize room) const;

    TextView &m_view;
    Scheduler &m_scheduler;
    std::vector<Cell> m_cells;
    Grid m_grid;
    DelayedTask m_soon;
};
