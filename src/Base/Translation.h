// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <concepts>

/// The text that the interface shows for `english`, which is the key of the language tables, in the language chosen. Any thread.
[[nodiscard]] QString localized(QStringView english);

/// Puts `arguments` in place of "%@" and "%d", in order, or of "%1$@" and "%1$d" by number; "%%" is a per cent sign.
/// A placeholder without an argument stays as it is, so that a mistake in a translation shows.
[[nodiscard]] QString formattedList(QStringView pattern, const QStringList &arguments);

[[nodiscard]] inline QString formatArgument(const QString &text)
{
    return text;
}

[[nodiscard]] QString formatArgument(std::integral auto number)
{
    return QString::number(number);
}

/// `formattedList` for texts and whole numbers.
[[nodiscard]] QString formatted(QStringView pattern, const auto &...arguments)
{
    return formattedList(pattern, QStringList{formatArgument(arguments)...});
}

/// A file's size in decimal multiples as file managers write it: "999 bytes", "12 KB", "104.9 MB", "1.25 GB"; in the language chosen.
[[nodiscard]] QString formattedByteCount(qint64 bytes);
