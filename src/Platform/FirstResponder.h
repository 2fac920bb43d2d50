// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

class QWidget;
class Responder;

/// Where the actions of `window` begin: the nearest responder of its focus widget, else of the window itself, else null. A focused line
/// edit counts as one that takes "undo:", "redo:", "cut:", "copy:", "paste:", "delete:" and "selectAll:". Valid until the focus moves.
[[nodiscard]] Responder *firstResponder(QWidget *window);
