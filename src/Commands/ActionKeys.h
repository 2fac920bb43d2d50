// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Action.h"

#include <QKeySequence>
#include <QList>

[[nodiscard]] QList<QKeySequence> keySequences(const Action &action);
/// The first key of a command as the user reads it; empty when it has none.
[[nodiscard]] QString keyText(const Action &action);
/// "Save (Ctrl+S)": what a tool tip says. `title` is in the language of the interface.
[[nodiscard]] QString titleWithKey(const QString &title, const Action &action);
