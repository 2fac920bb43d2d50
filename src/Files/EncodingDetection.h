// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/TextEncoding.h"
#include "Text/Rope.h"

#include <QLocale>
#include <QStringList>

#include <optional>
#include <vector>

/// Guesses at the encoding of bytes, for people to choose from; which one a file is read in is decided elsewhere. Pure functions, any
/// thread; they look at no more than some hundred kilobytes.
class EncodingDetection final {
public:
    EncodingDetection() = delete;

    struct Candidate {
        TextEncoding encoding = TextEncoding::utf8;
        /// The bytes are valid in it.
        bool isPossible = true;
        /// The first lines which others read otherwise, else the first ones.
        QStringList lines = {};
    };
    /// All encodings, the likeliest first, those in which the bytes are not valid last. `language` is the user's.
    [[nodiscard]] static std::vector<Candidate> candidates(QByteArrayView head, QLocale::Language language);

    /// Where `text`, which was read as `encoding` with no sign of it but that it was possible, rather looks like another: what that is.
    /// None for whatever may be right.
    [[nodiscard]] static std::optional<TextEncoding> suggestion(const Rope &text, TextEncoding encoding, QLocale::Language language);
};
