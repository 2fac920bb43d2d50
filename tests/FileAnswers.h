// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Model/TextDocument.h"

// What came of a request, by workers who have done their work when they are asked.

[[nodiscard]] inline Result<void> saved(TextDocument &document, const QString &path)
{
    Result<void> answer = failure(QStringLiteral("not answered"));
    document.save(path, [&answer](const Result<AtomicFile::InPlace> &result) { answer = result.map([](AtomicFile::InPlace) {}); });
    return answer;
}

[[nodiscard]] inline bool isReverted(TextDocument &document)
{
    bool isRead = false;
    document.revertToFileOnDisk([&isRead](const auto &read) { isRead = read.has_value(); });
    return isRead;
}

[[nodiscard]] inline bool isReinterpreted(TextDocument &document, TextEncoding encoding)
{
    bool isRead = false;
    document.reinterpret(encoding, [&isRead](const auto &read) { isRead = read.has_value(); });
    return isRead;
}
