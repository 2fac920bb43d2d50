// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Widgets/AlertPresenter.h"

#include <QDialog>

/// An alert that lists something, in columns where one would be too high for the screen. What is too high all the same is scrolled.
class GroupsDialog final : public QDialog {
    Q_OBJECT

public:
    explicit GroupsDialog(const Alert &alert, QWidget *window = nullptr);
};
