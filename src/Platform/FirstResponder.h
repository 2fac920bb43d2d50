// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

class QMenuBar;
class QWidget;
class Responder;

/// Where the actions of `window` begin: the nearest responder of its focus widget, else of the window itself, else null. A focused line
/// edit counts as one that takes "undo:", "redo:", "cut:", "copy:", "paste:", "delete:" and "selectAll:". Valid until the focus moves.
[[nodiscard]] Responder *firstResponder(QWidget *window);

/// From now on the focus widget of `menuBar`'s window counts as focused while the menu bar itself has the focus, as it does when it is
/// used with keys: the menus act on the text behind them.
void keepFirstResponderBehind(QMenuBar &menuBar);
