// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/LineEnding.h"
#include "Files/TextEncoding.h"
#include "Text/LineEditing.h"

#include <QString>

#include <optional>

class FileCalls;

/// What the .editorconfig files in a file's folder and in those above it say of the file. What they do not say, or say in no way that is
/// understood, is none.
struct EditorConfig {
    struct Charset {
        TextEncoding encoding = TextEncoding::utf8;
        bool hasByteOrderMark = false;

        friend bool operator==(Charset, Charset) = default;
    };

    /// Bytes of an .editorconfig file that is still read.
    static constexpr qint64 largestFile = qint64(1024) * 1024;

    std::optional<Indentation::Unit> indentStyle;
    /// Columns, as are the others.
    std::optional<int> indentSize;
    std::optional<int> tabWidth;
    std::optional<int> longestLine;
    std::optional<LineEnding> lineEnding;
    std::optional<Charset> charset;
    /// Of every line.
    std::optional<bool> trimsTrailingWhitespace;
    std::optional<bool> endsWithNewline;
    /// Which of the files does not count, and why, as a sentence for the user; empty where all do.
    QString problem;

    /// Of the file at `path`, which is absolute and need not be there. Looks into every folder up to the root; for workers.
    [[nodiscard]] static EditorConfig of(const QString &path, FileCalls &calls);

    friend bool operator==(const EditorConfig &, const EditorConfig &) = default;
};
