// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Commands/Responder.h"

#include <QDialog>
#include <QPointer>

#include <array>
#include <memory>

class AlertPresenter;
class Preferences;
class QLabel;
class QPushButton;
class QTabWidget;
class SettingControls;
class SettingsForm;
class ToolbarSettingsView;
class VimChordsPanel;
struct SettingRow;

/// What the settings window uses; must outlive it.
struct SettingsServices {
    Preferences &preferences;
    NotificationCenter &notifications;
    AlertPresenter &presenter;
    /// Where texts that are not saved are kept; absolute path.
    QString dataFolder;
};

/// The window in which the user changes the preferences. What is chosen counts at once; what is changed elsewhere shows at once. It stays
/// when it is closed, and is made of new controls when another language is chosen. Main thread only.
class SettingsWindowController final : public QDialog, public Responder {
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
    void addRow(SettingsForm &form, const SettingRow &row);
    void addFontRow(SettingsForm &form, const SettingRow &row);
    void addThemeRow(SettingsForm &form, const SettingRow &row);
    void addVimModeRow(SettingsForm &form, const SettingRow &row);
    void addKeymapRow(SettingsForm &form, const SettingRow &row);
    void addChordsRow(SettingsForm &form, const SettingRow &row);
    void addToolbarList(SettingsForm &form, const SettingRow &row);

    void refresh();
    void refreshFont();
    void chooseFont();
    void useDesktopFont();
    void showChords();

    SettingsServices m_services;
    std::unique_ptr<SettingControls> m_controls;
    QTabWidget *m_tabs = nullptr;
    QLabel *m_fontLabel = nullptr;
    /// Says so when there is no such font.
    QLabel *m_fontNote = nullptr;
    QPushButton *m_fontButton = nullptr;
    QPushButton *m_desktopFontButton = nullptr;
    ToolbarSettingsView *m_toolbarView = nullptr;
    QPointer<VimChordsPanel> m_chords;
    std::array<NotificationCenter::Token, 3> m_observers;
};
