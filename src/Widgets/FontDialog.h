// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Widgets/AlertPresenter.h"

#include <QDialog>

class QCheckBox;
class QDoubleSpinBox;
class QLabel;
class QListWidget;
class QPushButton;

/// Offers families and a size, and nothing else of a font, since no more is kept. Only fixed-width fonts are listed unless the current one
/// is another or the user wants all.
class FontDialog final : public QDialog {
    Q_OBJECT

public:
    explicit FontDialog(const FontPanel &panel, QWidget *window = nullptr);

    [[nodiscard]] FontChoice chosen() const;

private:
    void arrange();
    void listFamilies(const QString &current);
    void update();

    QListWidget *m_families;
    QCheckBox *m_fixedOnly;
    QDoubleSpinBox *m_size;
    QLabel *m_sample;
    QPushButton *m_accept = nullptr;
};
