// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Responder.h"

class AlertPresenter;
class QWidget;

/// Where the actions of `window` begin: the nearest responder of its focus widget, else of the window itself, else null. A focused line
/// edit counts as one that undoes, redoes, cuts, copies, pastes, deletes and selects all. Valid until the focus moves.
[[nodiscard]] Responder *firstResponder(QWidget *window);

/// A window that is about one thing, say a text: what its bars act on when nothing else had the focus before them.
class MainFocus {
public:
    MainFocus() = default;
    virtual ~MainFocus() = default;
    Q_DISABLE_COPY_MOVE(MainFocus)

    /// Null for nothing just now.
    [[nodiscard]] virtual QWidget *mainFocus() const = 0;
};

/// From now on what had the focus before counts as focused while `bar`, a menu bar, say, or a toolbar, or a widget in it has the focus, as
/// it does when it is used with keys: its commands act on the text behind.
void keepFirstResponderBehind(QWidget &bar);
/// What counts as focused in `window`, by the rule above, or its main focus when that is no longer to be seen; null for nothing.
[[nodiscard]] QWidget *focusBehindBars(const QWidget *window);

/// Carries out the command that a menu or a toolbar of `window` offers, on its first responder; beeps when that does not take it or calls
/// it disabled.
void chooseAction(QWidget &window, const Action &action, const QVariant &represented, AlertPresenter &presenter);
