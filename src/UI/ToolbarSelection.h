// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <vector>

struct ToolbarAction;

/// All that toolbars can offer, in an order of the user's, and which of it they do. Rows count from 0.
class ToolbarSelection final {
public:
    struct Row {
        const ToolbarAction *action;
        bool isChosen;
    };

    /// The actions of `ids` in their order, chosen; then the others of the catalogue in its order. What the catalogue does not know, and
    /// what comes a second time, is left out.
    explicit ToolbarSelection(const QStringList &ids);

    [[nodiscard]] const std::vector<Row> &rows() const { return m_rows; }
    /// Of what is chosen, in the order of the rows.
    [[nodiscard]] QStringList ids() const;

    void setChosen(qsizetype row, bool isChosen) { m_rows[size_t(row)].isChosen = isChosen; }
    /// The row becomes the one with the index `to`; those between make room. False when one of them does not exist.
    bool move(qsizetype from, qsizetype to);

private:
    std::vector<Row> m_rows;
};
