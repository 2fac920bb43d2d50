// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QLatin1StringView>
#include <QString>

#include <vector>

/// What the user chose for single files, kept from one run to the next. Of more than `largestCount` files those are forgotten for which
/// nothing was chosen the longest. Main thread only.
///
/// The file is a JSON array of objects, the latest first, with "path" and what was chosen by the keys below. It is never trusted: what is
/// no entry is left out, keys that are not known are kept. When it cannot be read nothing is known, and when it cannot be written nobody
/// is notified.
class FileMemory final {
public:
    static constexpr size_t largestCount = 500;
    /// Bytes of a file that is still read.
    static constexpr qint64 largestFile = 1024 * 1024;

    /// A list of names of dictionaries.
    static constexpr QLatin1StringView dictionaries{"dictionaries"};
    /// A boolean.
    static constexpr QLatin1StringView checksSpelling{"checksSpelling"};
    /// The number of a TextEncoding; null to have it found out and to ask no more.
    static constexpr QLatin1StringView encoding{"encoding"};

    /// `file` is absolute; its folder is made, for its user only, when something is first written. An empty one keeps all in memory.
    explicit FileMemory(QString file);
    FileMemory(const FileMemory &) = delete;
    FileMemory &operator=(const FileMemory &) = delete;

    /// Undefined when nothing was chosen, or the path is empty.
    [[nodiscard]] QJsonValue value(const QString &path, QLatin1StringView key) const;
    /// An undefined value forgets what was chosen. Nothing is kept for an empty path.
    void set(const QString &path, QLatin1StringView key, const QJsonValue &value);

private:
    void write() const;

    QString m_file;
    std::vector<QJsonObject> m_entries;
};
