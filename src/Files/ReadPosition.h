// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/FilePrefix.h"
#include "Files/LineEnding.h"
#include "Files/TextEncoding.h"

#include <sys/stat.h>

/// Where the reading of a file ended, and all that it takes to go on from there when the file has grown. A value.
struct ReadPosition {
    /// Of a smaller file, in bytes, there is none: to read it as a whole costs no more than to look for changes in it.
    static constexpr qint64 smallestFile = 256 * 1024;

    quint64 device = 0;
    quint64 inode = 0;
    FilePrefix bytes;
    /// What the file is tried as first, and it was that.
    TextEncoding encoding = TextEncoding::utf8;
    LineBreakCounter breaks;
    /// That the bytes were the same all the time until the last ones had been read was concluded from samples.
    bool isAssumed = false;
    /// How often the reading went on. Each time other samples are looked at.
    size_t continuations = 0;

    [[nodiscard]] bool isOf(const struct stat &status) const { return device == status.st_dev && inode == status.st_ino; }
};
