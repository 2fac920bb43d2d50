// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>

class QWidget;

/// Has screen readers know `widget` as `role` instead of what its class says. Call it in the constructor, before it is given a name: what
/// was asked about once keeps its role. Main thread only.
void setAccessibleRole(QWidget &widget, QAccessible::Role role);

/// Makes `widget`, a label or anything with an accessible name, a notice: screen readers say it when it comes to be shown. As above.
void becomeNotice(QWidget &widget);

/// Has a notice said that changed while it was shown.
void announce(QWidget &notice);
