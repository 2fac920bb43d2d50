// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/LineEndings.h"
#include "Files/TextEncoding.h"

#include <optional>

/// What a file has beside its text, as it was found in it.
struct FileForm {
    /// It began with a byte-order mark, which is not in the text.
    bool hasByteOrderMark = false;
    /// Of text in `TextEncoding::utf16`: the one of the two others that says in which order its bytes are.
    std::optional<TextEncoding> utf16Order = std::nullopt;
    LineEndings lineEndings = {};
};
