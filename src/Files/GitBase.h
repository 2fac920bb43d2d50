// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/TextEncoding.h"
#include "Text/Rope.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <stop_token>

/// The text of a file in the last commit of the git repository that it lies in.
struct GitBase {
    /// Of the blob.
    QByteArray id;
    TextEncoding encoding = TextEncoding::utf8;
    /// Every line break is a single LF.
    Rope text;

    /// None where there is no such repository or commit, where that does not have the file as text in `encoding` of which a file may
    /// consist, where a program stands between the two, and where the repository belongs to another user or cannot be read. Nothing is
    /// written, no lock is taken, no other program is run, no network is asked. `known` is returned when that is it. Takes as long as the
    /// file system does: for workers; soon after a stop it returns anything.
    [[nodiscard]] static std::optional<GitBase> read(const QString &path, TextEncoding encoding, const std::optional<GitBase> &known,
                                                     const std::stop_token &stop);
};
