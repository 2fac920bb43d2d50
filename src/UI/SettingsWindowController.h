// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"

#include <QDialog>
#include <QHash>

#include <array>
#include <functional>

class AlertPresenter;
class FormPopUp;
class Preferences;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;
class SettingsForm;
class ToolbarSettingsView;

/// What the settings window uses; must outlive it.
struct SettingsServices {
    Preferences &preferences;
    NotificationCenter &notifications;
    AlertPresenter &presenter;
    /// Where texts that are not saved are kept; absolute path.
    QString dataFolder;
    std::function<void()> showKeyReference;
};

/// The window in which the user changes the preferences. What is chosen counts at once; what is changed elsewhere shows at once. It stays
/// when it is closed, and is made of new controls when another language is chosen. Main thread only.
class SettingsWindowController final : public QDialog {
    Q_OBJECT

public:
    explicit SettingsWindowController(SettingsServices services);
    ~SettingsWindowController() override;

    /// Shows it before all others; the first time in the middle of the screen of `beside`, which may be null.
    void comeToFront(const QWidget *beside);

protected:
    void hideEvent(QHideEvent *event) override;

private:
    void build();
    void rebuild();
    [[nodiscard]] SettingsForm *makeAppearancePage();
    [[nodiscard]] SettingsForm *makeEditingPage();
    void addVimControls(SettingsForm &form);
    [[nodiscard]] SettingsForm *makeSavingPage();
    void addFontRow(SettingsForm &form);
    void addIntervalRow(SettingsForm &form);
    QCheckBox &makeCheckbox(QLatin1StringView name);

    void refresh();
    void refreshFont();
    void refreshTabWidths();
    void refreshInterval();
    void chooseFont();
    void storeInterval();

    SettingsServices m_services;
    QTabWidget *m_tabs = nullptr;
    QLabel *m_fontLabel = nullptr;
    /// Says so when there is no such font.
    QLabel *m_fontNote = nullptr;
    QPushButton *m_fontButton = nullptr;
    QHash<QString, QCheckBox *> m_checkboxes;
    FormPopUp *m_themePopUp = nullptr;
    FormPopUp *m_tabWidthPopUp = nullptr;
    FormPopUp *m_vimPresetPopUp = nullptr;
    FormPopUp *m_languagePopUp = nullptr;
    QLineEdit *m_intervalField = nullptr;
    ToolbarSettingsView *m_toolbarView = nullptr;
    std::array<NotificationCenter::Token, 3> m_observers;
};
