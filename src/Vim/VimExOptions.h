// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"

#include <QStringList>

class Preferences;

/// `:set` as Vim has it, over the preferences that are options.
namespace VimExOptions {

/// Whether what is set is the user's preference from now on, or holds as long as the program runs.
enum class Lasting { stored, thisRun };

/// What was asked to be shown, a line an option. Ends with the first option that there is not, or whose value is none, and says so.
[[nodiscard]] Result<QStringList> apply(QStringView typed, Preferences &preferences, Lasting lasting);
/// The names of all options, for completion.
[[nodiscard]] QStringList names();

} // namespace VimExOptions
