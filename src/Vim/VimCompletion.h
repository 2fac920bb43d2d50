// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

/// What may stand in a line behind ":" in place of the part that is typed. Pure functions; offsets are UTF-16 units.
namespace VimCompletion {

enum class Kind { nothing, command, option, file };

/// The part that ends where `line` does, which is a line up to its cursor without its prefix.
struct Part {
    Kind kind = Kind::nothing;
    qsizetype from = 0;
};
[[nodiscard]] Part partOf(QStringView line);

/// Names of commands that begin with `typed`, ascending. Short forms of the same are none.
[[nodiscard]] QStringList commands(QStringView typed);
/// Names of options, ascending; of switches that are to be turned off when it begins with "no".
[[nodiscard]] QStringList options(QStringView typed);
/// Names that begin with that of `typed`, of files in the folder that it names, as they would be typed: those of folders end with "/".
/// Hidden ones only when they are asked for. Relative ones are looked for in `folder`. Asks the file system; any thread.
[[nodiscard]] QStringList files(const QString &typed, const QString &folder);

} // namespace VimCompletion
