// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/FileMemory.h"

#include "Base/KeptFile.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr auto pathKey = "path"_L1;

QString pathOf(const QJsonObject &entry)
{
    return entry[pathKey].toString();
}

} // namespace

FileMemory::FileMemory(QString file) : m_file(std::move(file))
{
    for (const auto &value : QJsonDocument::fromJson(KeptFile::contentAt(m_file, largestFile)).array()) {
        const QJsonObject entry = value.toObject();
        if (QDir::isAbsolutePath(pathOf(entry)) && m_entries.size() < largestCount) {
            m_entries.push_back(entry);
        }
    }
}

QJsonValue FileMemory::value(const QString &path, QLatin1StringView key) const
{
    const auto entry = std::ranges::find(m_entries, path, pathOf);
    return path.isEmpty() || entry == m_entries.end() ? QJsonValue(QJsonValue::Undefined) : entry->value(key);
}

void FileMemory::set(const QString &path, QLatin1StringView key, const QJsonValue &value)
{
    if (path.isEmpty() || this->value(path, key) == value) {
        return;
    }
    auto entry = std::ranges::find(m_entries, path, pathOf);
    if (entry == m_entries.end()) {
        entry = m_entries.insert(entry, QJsonObject{{pathKey, path}});
    }
    // An undefined value takes the key away.
    entry->insert(key, value);
    std::rotate(m_entries.begin(), entry, entry + 1);
    if (m_entries.front().size() == 1) {
        m_entries.erase(m_entries.begin());
    }
    m_entries.resize(std::min(m_entries.size(), largestCount));
    write();
}

void FileMemory::write() const
{
    if (m_file.isEmpty()) {
        return;
    }
    QJsonArray array;
    for (const QJsonObject &entry : m_entries) {
        array << entry;
    }
    KeptFile::writeAt(m_file, QJsonDocument(array).toJson(QJsonDocument::Compact));
}
