// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Base/Scheduler.h"
#include "Commands/Responder.h"
#include "Find/TextFinder.h"
#include "Text/TextSearch.h"

#include <QPointer>
#include <QWidget>

#include <vector>

class FindField;
class ReplacementPreview;
class QHBoxLayout;
class QLabel;
class QToolButton;

/// The bar above a text in which one finds and replaces. It is closed at first, then as wide as its place and as high as it needs.
/// Main thread only. The scheduler must outlive it; so must the finder, but on the way out of their window it may go first.
class FindBar final : public QWidget {
    Q_OBJECT

public:
    FindBar(TextFinder &finder, Scheduler &scheduler, QWidget *parent = nullptr);
    ~FindBar() override;

    enum class Rows { find, findAndReplace };
    /// What is selected within one line becomes the search text, else it is the one that all windows share. Takes the focus.
    void open(Rows rows);
    /// Gives the focus to the text. The selection stays.
    void close();
    [[nodiscard]] bool isOpen() const { return m_isOpen; }

    /// For Actions::find and those named like it; works whether the bar is open or not. Unknown tags do nothing.
    void performTextFinderAction(const ActionSender &sender);
    /// Whether there is a bar or not.
    [[nodiscard]] static ActionState textFinderActionState(const TextFinder &finder, const ActionSender &sender);

    /// The keyboard comes to its controls right behind `widget`, of the same window.
    void comeAfter(QWidget &widget);
    /// Sets all texts anew.
    void retranslate();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] bool takesKey(const QObject *widget, const QKeyEvent &event);
    [[nodiscard]] QToolButton *buttonFor(const QKeyEvent &event) const;
    void makeRows();
    [[nodiscard]] std::vector<QWidget *> stops() const;
    void orderStops();
    void connectControls();
    void setRows(Rows rows);
    [[nodiscard]] SearchQuery enteredQuery() const;
    void enter(const SearchQuery &query);
    void queryEdited();
    void followShared();
    void showStatus();
    /// Those that go to a hit or replace it.
    void enableButtons(bool canFind);
    [[nodiscard]] QString noteText(const TextFinder::Status &status) const;
    void showMessage(const QString &message);
    void tintSymbols();
    void showPreview();
    void changeScope(bool isWanted);
    void replace();
    void replaceAll();

    void placeButtons();
    [[nodiscard]] int panelHeight() const;
    void slide();
    void fitHeight();

    TextFinder &m_finder;
    Scheduler &m_scheduler;
    NotificationCenter::Token m_sharedObserver;

    QWidget *m_panel = nullptr;
    FindField *m_pattern = nullptr;
    QToolButton *m_previous = nullptr;
    QToolButton *m_next = nullptr;
    QToolButton *m_selectAll = nullptr;
    QToolButton *m_matchCase = nullptr;
    QToolButton *m_wholeWords = nullptr;
    QToolButton *m_expression = nullptr;
    QToolButton *m_inSelection = nullptr;
    QToolButton *m_done = nullptr;
    FindField *m_replacement = nullptr;
    QToolButton *m_replace = nullptr;
    QToolButton *m_replaceAll = nullptr;
    QToolButton *m_keepCase = nullptr;
    QPointer<ReplacementPreview> m_preview;
    QLabel *m_message = nullptr;
    QHBoxLayout *m_findButtons = nullptr;
    QHBoxLayout *m_replaceButtons = nullptr;

    Rows m_rows = Rows::find;
    bool m_isNarrow = false;
    bool m_isOpen = false;
    bool m_isEntering = false;
    bool m_isAsking = false;
    RepeatingTimer m_sliding;
};
