// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <QScrollArea>

#include <vector>

class QGridLayout;
class QLabel;

/// A pop-up button of a form that may scroll and has underlined letters: neither the wheel nor a letter with Alt chooses by accident.
class FormPopUp final : public QComboBox {
    Q_OBJECT

public:
    explicit FormPopUp(QWidget *parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
};

/// One page of settings: a column of labels beside a column of controls, with notes below what they explain. It takes the widgets given
/// to it; the order in which they are added is that of the Tab key.
class SettingsForm : public QWidget {
    Q_OBJECT

public:
    enum class Level {
        top,
        /// Belongs to the check box above.
        below,
    };

    explicit SettingsForm(QWidget *parent = nullptr);

    /// `label` names `control` for screen readers.
    void addRow(const QString &label, QWidget &control);
    /// `row` holds `control` and what goes with it.
    void addRow(const QString &label, QLayout &row, QWidget &control);
    void addControl(QWidget &control, Level level = Level::top);
    /// Small text that explains `control`, the one added before.
    QLabel &addNote(const QString &text, QWidget &control, Level level = Level::top);
    /// Small text over both columns that explains `widget`, which comes next.
    void addWideNote(const QString &text, QWidget &widget);
    /// Over both columns, and as high as there is room.
    void addWide(QWidget &widget);
    void addWide(QLayout &row);
    /// Sets what follows apart from what came.
    void addGap();
    /// All that the page has was added.
    void finish();

    /// Gives all labels and buttons their underlined letters, others than `taken`. Once, after all were added.
    void markTitles(QString taken);

private:
    [[nodiscard]] int indentOf(Level level) const;

    QGridLayout *m_grid;
    int m_row = 0;
    bool m_hasTallRow = false;
};

/// Shows a page as high as it wants to be, and lets it scroll where the screen is lower than that.
class SettingsPage final : public QScrollArea {
    Q_OBJECT

public:
    explicit SettingsPage(SettingsForm &form);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

private:
    SettingsForm &m_form;
};
