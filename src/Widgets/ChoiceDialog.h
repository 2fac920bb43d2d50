// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Widgets/AlertPresenter.h"

#include <QDialog>

class QTreeWidget;

/// Offers choices in a table; a click on one, or Return, takes it.
class ChoiceDialog final : public QDialog {
    Q_OBJECT

public:
    explicit ChoiceDialog(const ChoicePanel &panel, QWidget *window = nullptr);

    /// None before one was taken.
    [[nodiscard]] std::optional<int> chosen() const { return m_chosen; }

private:
    void take();

    QTreeWidget *m_list;
    std::optional<int> m_chosen;
};
