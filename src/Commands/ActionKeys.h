// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Action.h"

#include <QKeySequence>
#include <QList>

/// Those that can be typed on the keyboard in use before the others.
[[nodiscard]] QList<QKeySequence> keySequences(const Action &action);
/// "Save (Ctrl+S)", or the title alone when there is no key. Titles are in the language of the interface already.
[[nodiscard]] QString titleWithKey(const QString &title, const QKeySequence &key);
/// The title, with the first key of the command if it has one, and what else there is to say about it.
[[nodiscard]] QString toolTipOf(const Action &action, const QString &title);
