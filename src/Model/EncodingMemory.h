// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/TextEncoding.h"

#include <QString>

#include <optional>
#include <vector>

/// What the user said of the encodings of files, by path, kept from one run to the next. Main thread only.
///
/// The file is a JSON array, the latest first, of objects with "path" and either the number of the "encoding" or nothing: then the user
/// keeps the text as it was read. It is never trusted: what is no entry is left out.
class EncodingMemory final {
public:
    static constexpr size_t largestCount = 500;
    /// Bytes of a file that is still read.
    static constexpr qint64 largestFile = 1024 * 1024;

    /// `file` is absolute; its folder is made, for its user only, when something is first written. An empty one keeps all in memory.
    explicit EncodingMemory(QString file);

    struct Entry {
        /// Absolute and clean.
        QString path;
        /// None: the one that was found out is right.
        std::optional<TextEncoding> encoding = std::nullopt;
    };
    /// The encoding in which the file is to be read; none for the one that is found out.
    [[nodiscard]] std::optional<TextEncoding> encodingOf(const QString &path) const;
    /// The user has said something, and is not asked any more.
    [[nodiscard]] bool knows(const QString &path) const { return find(path) != nullptr; }
    void note(const QString &path, std::optional<TextEncoding> encoding);

private:
    [[nodiscard]] const Entry *find(const QString &path) const;
    void load();
    void write() const;

    QString m_file;
    std::vector<Entry> m_entries;
};
