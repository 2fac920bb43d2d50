// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/DocumentFile.h"
#include "Files/EditorConfig.h"
#include "Model/SaveTransformation.h"

/// A text on its way into a file, as its user and the .editorconfig files of that file want it to be written.
struct FinishedText {
    /// What a document that has no file yet leaves to the .editorconfig files.
    struct Open {
        bool encoding = false;
        bool lineEnding = false;
        /// The file has a byte-order mark, which stays where they want one.
        bool hasByteOrderMark = false;
    };

    DocumentFile::Snapshot snapshot;
    /// What was done to its text.
    TextEdits edits;
    EditorConfig config;

    /// `options` are those of the settings, which .editorconfig files go before. Walks through the text where they want the ends of its
    /// lines trimmed; for workers.
    [[nodiscard]] static FinishedText of(DocumentFile::Snapshot snapshot, SaveOptions options, Open open, FileCalls &files);
};
