// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Settings/Setting.h"
#include "Widgets/SettingsForm.h"

#include <QHash>

#include <functional>
#include <vector>

class Preferences;

/// Gives the rows of settings the controls of their types: a check box, a pop-up button, a field for a number. What the user chooses is
/// stored at once. The controls belong to their forms, and go on without this when it is gone, but store nothing more.
class SettingControls final : public QObject {
    Q_OBJECT

public:
    struct Choice {
        /// Empty for a line between the others.
        QString title;
        /// As the settings file has it.
        QString value;

        friend bool operator==(const Choice &, const Choice &) = default;
    };

    /// `folder` is put into the notes that name one.
    SettingControls(Preferences &preferences, QString folder);

    /// Adds a row to its page, with `beside` behind the control.
    void add(SettingsForm &form, const SettingRow &row, QWidget *beside = nullptr);
    /// Adds the row of a text of which only a few make sense; any other is shown as the first.
    void addChoices(SettingsForm &form, const SettingRow &row, const std::vector<Choice> &choices);

    /// Shows what is stored.
    void refresh();
    /// Stores what is being typed.
    void commit();

private:
    [[nodiscard]] QWidget &makeControl(const SettingRow &row);
    [[nodiscard]] QWidget &makeCheckBox(const Setting<bool> &setting);
    [[nodiscard]] QWidget &makeField(const Setting<double> &setting);
    /// `choices` is asked again whenever the setting is shown.
    [[nodiscard]] QWidget &makePopUp(const AnySetting &setting, std::function<std::vector<Choice>()> choices);
    void place(SettingsForm &form, const SettingRow &row, QWidget &control, QWidget *beside);

    Preferences &m_preferences;
    QString m_folder;
    std::vector<std::function<void()>> m_refreshers;
    std::vector<std::function<void()>> m_commits;
    QHash<const AnySetting *, QWidget *> m_controls;
};
