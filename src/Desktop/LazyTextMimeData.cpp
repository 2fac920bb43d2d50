// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/LazyTextMimeData.h"

using namespace Qt::StringLiterals;

QStringList LazyTextMimeData::formats() const
{
    return {u"text/plain"_s, u"text/plain;charset=utf-8"_s};
}

bool LazyTextMimeData::hasFormat(const QString &mimeType) const
{
    return formats().contains(mimeType);
}

QVariant LazyTextMimeData::retrieveData(const QString &mimeType, QMetaType type) const
{
    if (!hasFormat(mimeType)) {
        return {};
    }
    const QString text = m_provider();
    return type.id() == QMetaType::QByteArray ? QVariant(text.toUtf8()) : QVariant(text);
}
