// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Responder.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class AlertPresenter;
class LineEditResponder;
class QWidget;

/// Where the actions of one window begin: it hands them to the nearest responder of the focus widget, else of the window itself. A focused
/// line edit counts as one that undoes, redoes, cuts, copies, pastes, deletes and selects all.
///
/// While a bar, or a widget in it, has the focus, as it does when it is used with keys, what had the focus before counts as focused: the
/// commands of a menu bar or a toolbar act on the text behind.
class FirstResponder final : public QObject, public Responder {
public:
    /// What counts as focused when a bar is and nothing was before; null for nothing.
    using MainFocus = std::function<QWidget *()>;

    /// Both must outlive it.
    FirstResponder(QWidget &window, AlertPresenter &presenter, MainFocus mainFocus = {});
    ~FirstResponder() override;

    /// From now on `bar` is one.
    static void setBar(QWidget &bar);
    /// Null for nothing.
    [[nodiscard]] QWidget *focusBehindBars() const;
    /// Carries out what a menu, a toolbar or a key of the window offers; beeps when nobody takes it or the taker calls it disabled.
    void choose(const Action &action, const QVariant &represented = {});

    [[nodiscard]] Responder *nextResponder() const override;

private:
    QWidget &m_window;
    AlertPresenter &m_presenter;
    MainFocus m_mainFocus;
    /// What had the focus when a bar took it.
    QPointer<QWidget> m_behind;
    std::unique_ptr<LineEditResponder> m_lineEdit;
};
