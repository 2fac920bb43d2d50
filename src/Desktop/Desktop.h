// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"

#include <QStringList>

#include <functional>

/// What other programs of the desktop do with our files. Paths are absolute. Main thread only; nothing here waits for another program.
class Desktop {
public:
    Desktop() = default;
    Desktop(const Desktop &) = delete;
    Desktop &operator=(const Desktop &) = delete;
    virtual ~Desktop() = default;

    /// Takes what went wrong, in the language of the interface.
    using Failure = std::function<void(const QString &problem)>;

    /// Shows the file, selected, in the file manager; where none can do that, opens its folder. What cannot be done either is said to
    /// `failed`, perhaps later.
    virtual void reveal(const QString &path, Failure failed) = 0;
    /// Moves the file to the trash of its file system. Never deletes it. Any thread, since it takes its time.
    [[nodiscard]] virtual Result<void> moveToTrash(const QString &path) = 0;
    /// Opens a terminal in `folder`: that of the desktop entry `preferredTerminal` if it is installed, else the first that is.
    [[nodiscard]] virtual Result<void> openTerminal(const QString &folder, const QString &preferredTerminal) = 0;
};

/// Remembers what it was asked for and does nothing else.
class RecordingDesktop final : public Desktop {
public:
    void reveal(const QString &path, Failure failed) override
    {
        revealed << path;
        if (!result) {
            failed(result.error().message);
        }
    }
    [[nodiscard]] Result<void> moveToTrash(const QString &path) override
    {
        trashed << path;
        return result;
    }
    [[nodiscard]] Result<void> openTerminal(const QString &folder, const QString & /*preferredTerminal*/) override
    {
        terminals << folder;
        return result;
    }

    QStringList revealed;
    QStringList trashed;
    QStringList terminals;
    /// What the next requests come to.
    Result<void> result;
};
