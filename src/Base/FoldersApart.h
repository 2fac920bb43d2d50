// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

/// For each of `paths`, which are absolute or empty, as few of its folders, the nearest ones, as tell it apart from others whose file has
/// the same name: "lib", or "a/lib" where there is a "b/lib" too; "/" for the root. Empty where the name does it. Asks no file system.
[[nodiscard]] QStringList foldersApart(const QStringList &paths);
