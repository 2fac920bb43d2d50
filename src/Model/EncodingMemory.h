// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/TextEncoding.h"

#include <QString>

#include <optional>

class FileMemory;

/// What the user said of the encodings of files, by path. Main thread only.
class EncodingMemory final {
public:
    /// `memory`, which keeps it, must outlive this.
    explicit EncodingMemory(FileMemory &memory) : m_memory(memory) {}

    /// The encoding in which the file is to be read; none for the one that is found out.
    [[nodiscard]] std::optional<TextEncoding> encodingOf(const QString &path) const;
    /// The user has said something, and is not asked any more.
    [[nodiscard]] bool knows(const QString &path) const;
    /// None: the one that was found out is right.
    void note(const QString &path, std::optional<TextEncoding> encoding);

private:
    FileMemory &m_memory;
};
