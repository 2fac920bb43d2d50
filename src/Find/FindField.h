// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>
#include <QStringList>

#include <functional>

class QLabel;

/// A line edit that offers what was entered before (Up and Down), has room for a note at its end, and can show that its text is wrong.
class FindField final : public QLineEdit {
    Q_OBJECT

public:
    /// What is not found is shown by the colour of the note, what is wrong by that of the field.
    enum class State { normal, notFound, wrong };
    enum class Saying { aloud, silently };
    /// The latest first.
    using History = std::function<QStringList()>;

    explicit FindField(History history, QWidget *parent = nullptr);

    /// Hidden where it would leave no room to type. Screen readers say it when it changes aloud.
    void setNote(const QString &note, const QString &explanation, Saying saying);
    [[nodiscard]] QString note() const;
    /// What the button that empties the field is called.
    void nameClearButton(const QString &name) const;
    void setState(State state);
    [[nodiscard]] State state() const { return m_state; }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void stepThroughHistory(int step);
    void placeNote();
    void applyState();

    History m_history;
    QLabel *m_note = nullptr;
    State m_state = State::normal;
    bool m_isApplyingState = false;
    /// Which entry of the history is shown; -1 for what was typed.
    int m_entry = -1;
    QString m_typed;
};
