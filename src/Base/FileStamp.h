// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <sys/stat.h>

/// What tells one content of a file from another without reading it.
struct FileStamp {
    timespec modified = {};
    /// Bytes.
    qint64 size = 0;

    [[nodiscard]] static FileStamp of(const struct stat &status) { return {.modified = status.st_mtim, .size = status.st_size}; }

    friend bool operator==(const FileStamp &a, const FileStamp &b)
    {
        return a.modified.tv_sec == b.modified.tv_sec && a.modified.tv_nsec == b.modified.tv_nsec && a.size == b.size;
    }
};
