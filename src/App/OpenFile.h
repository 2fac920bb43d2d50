// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Model/TextFile.h"
#include "Text/TextStorage.h"
#include "Text/UndoManager.h"

#include <memory>

/// A text that is being edited, its history, and the file that it came from or goes to. Main thread only.
class OpenFile final {
public:
    /// An empty text without a file.
    explicit OpenFile(UndoManager::Clock clock);

    /// `path` is absolute. Waits for the disk.
    [[nodiscard]] static tl::expected<std::unique_ptr<OpenFile>, TextFile::ReadError> read(const QString &path, UndoManager::Clock clock);

    /// Writes the text to `path`, which becomes its file. When that fails nothing has changed.
    [[nodiscard]] Result<void> save(const QString &path);

    [[nodiscard]] TextStorage &storage() { return m_storage; }
    [[nodiscard]] UndoManager &undoManager() { return m_undoManager; }
    /// Absolute; empty while there is no file.
    [[nodiscard]] const QString &path() const { return m_path; }
    /// The file's name, or what a text without a file is called.
    [[nodiscard]] QString displayName() const;
    /// The text is not the one that was read or saved last.
    [[nodiscard]] bool isDirty() const { return !m_undoManager.isAtSavePoint(); }

private:
    OpenFile(const TextFile::Contents &contents, QString path, UndoManager::Clock clock);

    TextStorage m_storage;
    UndoManager m_undoManager;
    QString m_path;
    TextEncoding m_encoding = TextEncoding::utf8;
    LineEnding m_lineEnding = LineEnding::lf;
};
