// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Editor/SpellingController.h"

#include <QDialog>
#include <QPointer>

#include <memory>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class SpellChecker;

/// The window "Spelling" of the text view that was used last: the misspelled word that is selected there, what it may have
/// been meant to be, and what can be done about it. The text stays usable beside it. The window is made when it is first shown, and there
/// is one for the whole program. Main thread only.
class SpellingPanel final : public QObject {
    Q_OBJECT

public:
    /// `checker` must outlive the panel.
    explicit SpellingPanel(SpellChecker &checker);
    ~SpellingPanel() override;

    /// Shows the window for this view, at its next mistake unless one is selected.
    void show(SpellingController &target);
    /// The view got the focus: what is shown and done concerns it from now on.
    void follow(SpellingController &target);

    /// The interface speaks another language.
    void retranslate();

    /// Null until it is shown first.
    [[nodiscard]] QDialog *window() const { return m_window.get(); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// What was typed into the field.
    enum class Typed { replace, keep };

    void makeWindow();
    void place(const QWidget &owner);
    void connectControls();
    void update();
    [[nodiscard]] SpellChecker &checker() const;
    [[nodiscard]] QString message() const;
    void showCorrection(Typed typed);
    void change();
    void act(void (SpellingController::*action)(const QString &word));
    void findNext();

    SpellChecker &m_checker;
    QPointer<SpellingController> m_target;
    std::optional<SpellingController::Correction> m_correction;
    bool m_wasSearching = false;
    /// What goes on to the next word: in between there is nothing to show.
    bool m_isActing = false;

    std::unique_ptr<QDialog> m_window;
    QLabel *m_message = nullptr;
    QLabel *m_replacementTitle = nullptr;
    QLineEdit *m_replacement = nullptr;
    QLabel *m_guessesTitle = nullptr;
    QListWidget *m_guesses = nullptr;
    QPushButton *m_change = nullptr;
    QPushButton *m_findNext = nullptr;
    QPushButton *m_ignore = nullptr;
    QPushButton *m_learn = nullptr;
    QLabel *m_dictionaries = nullptr;
};
