// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

class QUrl;

/// Paths are bytes to the system and text to the rest of the program, and nearly always they are UTF-8. A byte that belongs to no character
/// stands in the text as one of 128 characters at the end of the last plane, which have no meaning of their own; what is such a character
/// in a name stands there byte by byte. So every name has a text of its own that leads back to it, and which can be stored, compared and
/// sent as any other. All paths go through these two where they come from the system or go to it.
[[nodiscard]] QString decodedPath(QByteArrayView bytes);
[[nodiscard]] QByteArray encodedPath(const QString &path);

/// Something has that name; asks the file system, which takes its time.
[[nodiscard]] bool isThere(const QString &path);

/// The one name of what `path`, in bytes, leads to, with no symbolic link on the way; empty where that is nothing. Asks the file system.
[[nodiscard]] QByteArray realPath(const QByteArray &path);

/// A path, or part of one, for people to read: what is no character is shown as such.
[[nodiscard]] QString shownPath(const QString &path);

/// The path that a "file:" address leads to, whatever its bytes; empty for other addresses.
[[nodiscard]] QString localPath(const QUrl &url);
/// With as few characters escaped as most programs do it, some of which look for the very same address.
[[nodiscard]] QString addressOf(const QString &path);

/// Of the process.
[[nodiscard]] QString workingFolder();
/// The clean absolute path of what somebody typed in `folder`; "~" at its start is the home folder.
[[nodiscard]] QString absoluteFilePath(const QString &name, const QString &folder);
