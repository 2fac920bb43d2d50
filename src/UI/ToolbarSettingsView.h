// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UI/ToolbarSelection.h"
#include "Widgets/SettingsForm.h"

class Preferences;
class QListWidget;
class QPushButton;
struct SettingRow;

/// A list of all actions, with those checked that the toolbar has. Rows are moved with the buttons below it, with Alt and the arrow keys,
/// or by dragging. Everything is stored at once.
class ToolbarSettingsView final : public QObject {
    Q_OBJECT

public:
    /// Adds the list to a page, which owns this. `preferences` must outlive it.
    ToolbarSettingsView(SettingsForm &form, const SettingRow &row, Preferences &preferences);

    /// Shows what the preferences say. Rows that are not checked stay where they are, as long as those that are have the same order.
    void refresh();

private:
    void addList(SettingsForm &form, const SettingRow &row);
    void addButtons(SettingsForm &form);
    void reload();
    void store();
    void moveSelected(int step);
    void rowsMoved(int from, int to);
    void restoreDefaults();
    void updateButtons();

    Preferences &m_preferences;
    ToolbarSelection m_selection;
    QListWidget *m_list = nullptr;
    QPushButton *m_moveUp = nullptr;
    QPushButton *m_moveDown = nullptr;
};
