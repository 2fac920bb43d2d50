// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/AtomicFile.h"

#include <stop_token>

/// Somebody with all rights on this machine, who writes a file for the user when the user has proven to be allowed that.
class Administrator {
public:
    enum class MissingFolder { isError, isMade };
    struct Request {
        /// Absolute.
        QString path;
        AtomicFile::NewFile newFile = AtomicFile::NewFile::readableByOthers;
        /// None when any file may be replaced.
        std::optional<AtomicFile::Expectation> expected = std::nullopt;
        MissingFolder missingFolder = MissingFolder::isError;
    };
    /// `Error::code` of a write that the user called off.
    static constexpr int dismissedError = 520;

    Administrator() = default;
    Administrator(const Administrator &) = delete;
    Administrator &operator=(const Administrator &) = delete;
    virtual ~Administrator() = default;

    /// There is one to be asked. Main thread.
    [[nodiscard]] virtual bool isAvailable() const = 0;
    /// Writes `text` in the manner of AtomicFile and returns the file as it was before others could touch it. Waits for the user, who may
    /// take hours; a stop calls it off as long as nothing is being written. Any thread.
    [[nodiscard]] virtual Result<FileState, AtomicFile::WriteError> write(const Request &request, QByteArrayView text,
                                                                          const std::stop_token &stop) = 0;
};
