// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <tl/expected.hpp>

#include <utility>

/// Why something failed, in words for the person in front of the program: what, which file, why.
struct Error {
    QString message;
    /// `errno` of the system call that failed, or a number that the failing operation documents; 0 when there is none.
    int code = 0;
};

/// A value, or the error that kept it from being made. `E` is another than Error where callers have to tell causes apart.
template<typename T, typename E = Error>
using Result = tl::expected<T, E>;

[[nodiscard]] inline tl::unexpected<Error> failure(QString message, int code = 0)
{
    return tl::make_unexpected(Error{std::move(message), code});
}
