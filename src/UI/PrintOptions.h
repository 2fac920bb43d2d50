// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Print/PrintedText.h"
#include "UI/SettingControls.h"
#include "Widgets/SettingsForm.h"

#include <QPageLayout>

class Preferences;
class QCheckBox;

/// A text that can be printed as a whole, its range, or what is selected of it.
struct PrintSource {
    PrintedText text;
    /// Empty for none.
    TextRange selection;

    [[nodiscard]] PrintedText selected() const
    {
        PrintedText part = text;
        part.range = selection;
        return part;
    }
};

[[nodiscard]] PrintStyle printStyle(const Preferences &preferences);
[[nodiscard]] QPageLayout printPaper(const Preferences &preferences);
/// The next text is printed on such paper too, if it is one that can be chosen.
void rememberPaper(const QPageLayout &paper, Preferences &preferences);

/// What can be chosen before a text is printed or exported; it is remembered at once, but for the selection.
class PrintOptionsForm final : public SettingsForm {
    Q_OBJECT

public:
    enum class Purpose {
        pages,
        webPage,
        /// In a dialog that asks for paper and selection itself.
        printer,
    };

    PrintOptionsForm(Preferences &preferences, NotificationCenter &notifications, Purpose purpose, const PrintSource &source,
                     QWidget *parent = nullptr);

    /// What is to be printed.
    [[nodiscard]] PrintedText text() const;
    /// Remembers what is being typed.
    void commit() { m_controls.commit(); }

signals:
    void selectionToggled();

private:
    PrintSource m_source;
    SettingControls m_controls;
    QCheckBox *m_selectionOnly = nullptr;
    NotificationCenter::Token m_observer;
};
