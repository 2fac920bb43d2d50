// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileCalls.h"
#include "Base/NotificationCenter.h"
#include "Base/Scheduler.h"

#include <QString>
#include <QUuid>

#include <chrono>
#include <functional>
#include <memory>

class Administrator;
class EncodingMemory;
class FileWatcherQueue;
class Preferences;
class TextDocument;
class Workers;

/// What documents use; must outlive them.
struct DocumentServices {
    Scheduler &scheduler;
    NotificationCenter &notifications;
    const Preferences &preferences;
    Workers &workers;
    FileWatcherQueue &watchers;
    /// The text is safe in its file: what was kept of it elsewhere may go. May be empty.
    std::function<void(const QUuid &id)> discardDraft;
    /// How long the main thread waits for a file that is asked for, so that what a healthy disk answers is there at once.
    std::chrono::milliseconds timeout{0};
    /// What files are read and written with.
    FileCalls &files = FileCalls::system();
    /// See AtomicFile::open().
    QString rescueFolder = {};
    /// Adds to the store what an earlier program kept of the file's text and nobody has brought back yet, if there is such a text.
    std::function<void(const QString &path)> bringBack = {};
    /// Another open document of the file with this identity; null for none. The store's own are given here by it.
    std::function<std::shared_ptr<TextDocument>(const QString &identity, const TextDocument &asking)> otherOfFile = {};
    /// What the user said of files' encodings; null for nothing.
    EncodingMemory *encodings = nullptr;
    /// For files that the user may not write; null where nobody can be asked. Must live as long as workers may use it.
    Administrator *administrator = nullptr;
};
