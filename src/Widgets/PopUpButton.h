// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Scheduler.h"
#include "Widgets/FlatButton.h"

#include <QMenu>
#include <QStringList>

#include <optional>
#include <vector>

class QActionGroup;

/// A menu whose entries are found by typing how they begin. What is typed within a second belongs together; the same letter again and
/// again goes through all entries that begin with it.
class ChoiceMenu final : public QMenu {
    Q_OBJECT

public:
    explicit ChoiceMenu(const Scheduler &scheduler, QWidget *parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    [[nodiscard]] bool search(const QString &typed);

    const Scheduler &m_scheduler;
    QString m_searched;
    Scheduler::Milliseconds m_lastKey{};
};

/// A flat button that shows one of several choices, or some of them, and offers the others in a menu, the shown ones checked. Choosing
/// changes nothing by itself: whoever is notified sets what is shown then.
class PopUpButton final : public FlatButton {
    Q_OBJECT

public:
    explicit PopUpButton(const Scheduler &scheduler, QWidget *parent = nullptr);

    /// What is chosen here: the tool tip, and for screen readers in front of the choice.
    void setTitle(const QString &title);
    /// The index shown stays if there are as many choices, else it is the first.
    void setChoices(const QStringList &titles);
    [[nodiscard]] QStringList choices() const;
    /// What else its menu offers, below a line: a command, which is never shown as chosen.
    void setCommand(const QString &title);
    void setCommandEnabled(bool isEnabled);
    /// The same with a menu, which the button takes.
    void addSubmenu(QMenu *menu);
    /// `index` must be that of a choice. The button says `text` where that is more than the title of the choice.
    void setShownIndex(int index, const QString &text = {});
    [[nodiscard]] int shownIndex() const { return m_shownIndex; }
    /// Several may be checked from now on, none of them radio buttons, and `text` is shown for them.
    void setShownIndices(const QList<int> &indices, const QString &text);

    [[nodiscard]] QSize sizeHint() const override;

signals:
    void chosen(int index);
    void commandTriggered();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void separate();
    void showMarks();
    void showTitle(const QString &title);

    ChoiceMenu *m_menu;
    QActionGroup *m_group;
    /// None before there is one.
    QAction *m_command = nullptr;
    QAction *m_separator = nullptr;
    QString m_title;
    int m_shownIndex = 0;
    /// None while there is one.
    std::optional<QList<int>> m_shownIndices;
    QString m_shownText;
};
