// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/EncodingMemory.h"

#include "Model/FileMemory.h"

#include <limits>

std::optional<TextEncoding> EncodingMemory::encodingOf(const QString &path) const
{
    const qint64 number = m_memory.value(path, FileMemory::encoding).toInteger(-1);
    const bool isEncoding = number >= 0 && number <= std::numeric_limits<quint32>::max() && isSupported(TextEncoding(quint32(number)));
    return isEncoding ? std::optional(TextEncoding(quint32(number))) : std::nullopt;
}

bool EncodingMemory::knows(const QString &path) const
{
    return !m_memory.value(path, FileMemory::encoding).isUndefined();
}

void EncodingMemory::note(const QString &path, std::optional<TextEncoding> encoding)
{
    m_memory.set(path, FileMemory::encoding, encoding ? QJsonValue(qint64(*encoding)) : QJsonValue(QJsonValue::Null));
}
