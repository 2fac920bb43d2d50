// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Vim/VimChords.h"

#include <QDialog>

class Preferences;
class QRadioButton;
class QScrollArea;

/// A table of the Control chords that Vim has a use for: what each does there, what it does in the menus, and which of the two counts.
/// What is chosen counts at once. It blocks no window, shows what is chosen elsewhere, and is gone when it is closed.
class VimChordsPanel final : public QDialog {
    Q_OBJECT

public:
    /// All must outlive it.
    VimChordsPanel(Preferences &preferences, NotificationCenter &notifications, QWidget *window);

private:
    /// One line of the table, in the order of `m_chords`.
    struct Choice {
        QRadioButton *vim;
        QRadioButton *quillet;
    };

    void refresh();
    void makeTable();
    [[nodiscard]] VimChords stored() const;
    void store(const VimChords &chords);

    Preferences &m_preferences;
    QScrollArea *m_area;
    std::vector<VimChords::Chord> m_chords;
    std::vector<Choice> m_choices;
    NotificationCenter::Token m_observer;
};
