// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Administrator.h"
#include "Base/FileCalls.h"

class QByteArray;

/// Makes the folder at `path` the working folder, having followed no symbolic link on the way: what is renamed or linked anew afterwards
/// leads nowhere else. `path` is absolute, clean and ends with a slash. Returns `errno`, 0 when it is done.
[[nodiscard]] int enterFolder(const QByteArray &path, Administrator::MissingFolder missing);

/// For a file in the working folder, whoever else may write there: it follows no link; it knows no file that has further names or the
/// rights of its owner; it gives nothing away that was given to the old content, and takes no owner from it.
class PinnedCalls final : public FileCalls {
public:
    int stat(const char *path, struct stat *status) override;
    int lstat(const char *path, struct stat *status) override { return stat(path, status); }
    int fchown(int file, uid_t owner, gid_t group) override;
    ssize_t listxattr(const char *path, char *names, size_t size) override;
    ssize_t getxattr(const char *path, const char *name, void *value, size_t size) override;
    int fsetxattr(int file, const char *name, const void *value, size_t size) override;
};
