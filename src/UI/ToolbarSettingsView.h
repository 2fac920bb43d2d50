// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UI/ToolbarSelection.h"
#include "Widgets/SettingsForm.h"

class Preferences;
class QCheckBox;
class QListWidget;
class QPushButton;

/// The page about the toolbar: where it is, and a list of all actions, with those checked that it has. Rows are moved with the buttons,
/// with Alt and the arrow keys, or by dragging. Everything is stored at once.
class ToolbarSettingsView final : public SettingsForm {
    Q_OBJECT

public:
    /// `preferences` must outlive the view.
    explicit ToolbarSettingsView(Preferences &preferences, QWidget *parent = nullptr);

    /// Shows what the preferences say. Rows that are not checked stay where they are, as long as those that are have the same order.
    void refresh();

private:
    void makeControls();
    void makeList();
    void makeButtons();
    void reload();
    void store();
    void moveSelected(int step);
    void rowsMoved(int from, int to);
    void restoreDefaults();
    void updateButtons();

    Preferences &m_preferences;
    ToolbarSelection m_selection;
    FormPopUp *m_stylePopUp = nullptr;
    QCheckBox *m_showsTitle = nullptr;
    QCheckBox *m_showsLabels = nullptr;
    QListWidget *m_list = nullptr;
    QPushButton *m_moveUp = nullptr;
    QPushButton *m_moveDown = nullptr;
};
