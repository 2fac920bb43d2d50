// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileCalls.h"
#include "Base/Result.h"
#include "Text/Rope.h"

#include <QString>
#include <QUuid>

#include <optional>

/// A text that was not saved, kept aside: UTF-8 without a mark, its breaks as they are in the text. Keeps no state. Any thread.
class DraftFile final {
public:
    DraftFile() = delete;

    /// "1B4E28BA-2FA1-11D2-883F-0016D3CCA427.draft".
    [[nodiscard]] static QString nameFor(const QUuid &document);
    /// The document whose draft has this name; null when it is no such name.
    [[nodiscard]] static QUuid documentOf(const QString &name);

    /// In the manner of AtomicFile, for the user's eyes only. Unpaired surrogates, which UTF-8 lacks, become U+FFFD.
    [[nodiscard]] static Result<void> write(const Rope &text, const QString &path, FileCalls &calls);
    /// Of any size. Bytes that are not UTF-8 become U+FFFD: a damaged draft is better than none. None when it cannot be read.
    [[nodiscard]] static std::optional<Rope> read(const QString &path);
};
