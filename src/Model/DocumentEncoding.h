// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Model/MissingCharacters.h"

#include <QString>

class EncodingMemory;
class UndoManager;

/// The encoding of a document: the one that it has, the one that its file looks like, the one that the user named for the file, and what
/// of the text it lacks. Main thread only.
class DocumentEncoding final {
public:
    /// What it uses; must outlive it.
    struct Services {
        TextStorage &storage;
        UndoManager &undoManager;
        Workers &workers;
        /// Null for none.
        EncodingMemory *memory;
        /// Of the document's file, now and later.
        const QString &path;
        /// Something here is another. May not change the text.
        std::function<void()> changed;
    };

    explicit DocumentEncoding(const Services &services)
        : m_services(services), m_missing(services.storage, services.workers, services.changed)
    {}

    [[nodiscard]] TextEncoding value() const { return m_value; }
    /// The user wants another one, and needs no suggestion any more.
    void set(TextEncoding encoding);
    /// The text was read as `encoding`; its bytes look like `suggested` rather.
    void take(TextEncoding encoding, std::optional<TextEncoding> suggested);

    /// None when the text looks right, or the user has said what it is.
    [[nodiscard]] std::optional<TextEncoding> suggested() const { return m_suggested; }
    /// The text is as it should be; that is remembered.
    void keep();

    /// The one that the user named for the file, if that was ever needed.
    [[nodiscard]] std::optional<TextEncoding> remembered() const;
    /// The file is to be read so from now on.
    void remember(TextEncoding encoding);
    /// A file in an encoding that was named, before or for this, is read in the one that it was written in, under whatever name.
    void noteWritten(const QString &path, TextEncoding encoding);

    /// What of the text it lacks.
    [[nodiscard]] const MissingCharacters &missing() const { return m_missing; }
    /// Puts what saving would put in their place, as a step that can be undone.
    void replaceMissing();
    /// The text was changed.
    void noteEdit(const TextChange &change) { m_missing.noteEdit(change); }

private:
    Services m_services;
    TextEncoding m_value = TextEncoding::utf8;
    /// The user has chosen it since the text was read.
    bool m_isWanted = false;
    std::optional<TextEncoding> m_suggested;
    MissingCharacters m_missing;
};
