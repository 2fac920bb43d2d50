// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <chrono>
#include <functional>
#include <vector>

struct stat;

/// What a name leads to, symbolic links followed.
enum class PathKind {
    missing,
    file,
    folder,
    /// A pipe, a socket or a device.
    special,
    /// It cannot be asked, or does not answer.
    unknown,
};

[[nodiscard]] PathKind kindOf(const struct stat &status);
/// As slow as the file system.
[[nodiscard]] PathKind kindOf(const QString &path);

/// One for each of `paths`, which are absolute.
using PathKindQuery = std::function<std::vector<PathKind>(const QStringList &paths)>;
/// Asks on threads of their own, side by side, since a share whose server is gone answers in minutes or never; those that have not
/// answered within `timeout` are unknown. Any thread.
[[nodiscard]] std::vector<PathKind> kindsOf(const QStringList &paths, std::chrono::milliseconds timeout = std::chrono::milliseconds(100));
