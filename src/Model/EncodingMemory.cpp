// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/EncodingMemory.h"

#include "Base/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr auto pathKey = "path"_L1;
constexpr auto encodingKey = "encoding"_L1;

} // namespace

EncodingMemory::EncodingMemory(QString file) : m_file(std::move(file))
{
    load();
}

void EncodingMemory::load()
{
    QFile file(m_file);
    if (m_file.isEmpty() || !QFileInfo(m_file).isFile() || file.size() > largestFile || !file.open(QIODevice::ReadOnly)) {
        return;
    }
    for (const auto &value : QJsonDocument::fromJson(file.read(largestFile)).array()) {
        const QString path = QDir::cleanPath(value[pathKey].toString());
        const QJsonValue number = value[encodingKey];
        const auto encoding = TextEncoding(quint32(number.toDouble()));
        const bool isEntry = QDir::isAbsolutePath(path) && !knows(path) && (number.isUndefined() || isSupported(encoding));
        if (isEntry && m_entries.size() < largestCount) {
            m_entries.push_back({path, number.isUndefined() ? std::nullopt : std::optional(encoding)});
        }
    }
}

void EncodingMemory::write() const
{
    if (m_file.isEmpty()) {
        return;
    }
    QJsonArray array;
    for (const Entry &entry : m_entries) {
        QJsonObject object{{pathKey, entry.path}};
        if (entry.encoding) {
            object.insert(encodingKey, qint64(*entry.encoding));
        }
        array << object;
    }
    makePrivateFolder(QFileInfo(m_file).path());
    std::ignore = writeAtomically(m_file, QJsonDocument(array).toJson(QJsonDocument::Compact), AtomicFile::NewFile::privateToUser);
}

const EncodingMemory::Entry *EncodingMemory::find(const QString &path) const
{
    const auto found = std::ranges::find(m_entries, QDir::cleanPath(path), &Entry::path);
    return found == m_entries.end() ? nullptr : &*found;
}

std::optional<TextEncoding> EncodingMemory::encodingOf(const QString &path) const
{
    const Entry *entry = find(path);
    return entry ? entry->encoding : std::nullopt;
}

void EncodingMemory::note(const QString &path, std::optional<TextEncoding> encoding)
{
    const QString clean = QDir::cleanPath(path);
    std::erase_if(m_entries, [&](const Entry &entry) { return entry.path == clean; });
    m_entries.insert(m_entries.begin(), {clean, encoding});
    m_entries.resize(std::min(m_entries.size(), largestCount));
    write();
}
