// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/RecentDocuments.h"

#include "Base/FilePath.h"
#include "Base/KeptFile.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

constexpr auto pathKey = "path"_L1;
constexpr auto bookmarkKey = "bookmark"_L1;

std::optional<RecentDocuments::Entry> entryFrom(const QJsonValue &value)
{
    const QString path = value[pathKey].toString();
    if (!QDir::isAbsolutePath(path)) {
        return std::nullopt;
    }
    const QJsonValue bookmark = value[bookmarkKey];
    return RecentDocuments::Entry{QDir::cleanPath(path), bookmark.isString() ? std::optional(bookmark.toString()) : std::nullopt};
}

QJsonObject toJson(const RecentDocuments::Entry &entry)
{
    QJsonObject object{{pathKey, entry.path}};
    if (entry.bookmark) {
        object[bookmarkKey] = *entry.bookmark;
    }
    return object;
}

} // namespace

RecentDocuments::RecentDocuments(QString file, Workers &workers, std::chrono::milliseconds timeout)
    : m_file(std::move(file)), m_workers(workers), m_timeout(timeout)
{
    load();
}

void RecentDocuments::load()
{
    for (const auto &value : QJsonDocument::fromJson(KeptFile::contentAt(m_file, largestFile)).array()) {
        auto entry = entryFrom(value);
        if (entry && m_entries.size() < largestCount && std::ranges::find(m_entries, entry->path, &Entry::path) == m_entries.end()) {
            m_entries.push_back(*std::move(entry));
        }
    }
}

void RecentDocuments::write() const
{
    if (m_file.isEmpty()) {
        return;
    }
    QJsonArray array;
    for (const Entry &entry : m_entries) {
        array << toJson(entry);
    }
    KeptFile::writeAt(m_file, QJsonDocument(array).toJson(QJsonDocument::Compact));
}

void RecentDocuments::note(const QStringList &paths)
{
    const std::vector<Entry> before = m_entries;
    QStringList noted;
    for (const QString &path : paths) {
        const QString clean = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
        auto entry = std::ranges::find(m_entries, clean, &Entry::path);
        if (entry == m_entries.end()) {
            entry = m_entries.insert(entry, Entry{clean});
        }
        std::rotate(m_entries.begin(), entry, entry + 1);
        m_entries.resize(std::min(m_entries.size(), largestCount));
        noted.removeOne(clean);
        noted << clean;
        // Of two thousand files that are opened at once nobody looks for the first ones.
        noted = noted.last(std::min(noted.size(), qsizetype(largestCount)));
    }
    if (m_entries != before) {
        write();
    }
    if (m_onNote && !noted.isEmpty()) {
        m_onNote(noted);
    }
}

void RecentDocuments::clear()
{
    if (!m_entries.empty()) {
        m_entries.clear();
        write();
    }
}

std::vector<RecentDocuments::Entry> RecentDocuments::reachable()
{
    const std::set<QString> found = existing(m_entries);
    std::vector<Entry> entries;
    std::ranges::copy_if(m_entries, std::back_inserter(entries), [&](const Entry &entry) { return found.contains(entry.path); });
    return entries;
}

std::optional<QString> RecentDocuments::resolve(const QString &path)
{
    const auto entry = std::ranges::find(m_entries, path, &Entry::path);
    return entry != m_entries.end() && existing({*entry}).contains(path) ? std::optional(path) : std::nullopt;
}

std::set<QString> RecentDocuments::existing(const std::vector<Entry> &entries)
{
    std::erase_if(m_inquiries, [](const auto &inquiry) { return !inquiry.second.task.isPending(); });
    m_found.clear();
    const auto deadline = std::chrono::steady_clock::now() + m_timeout;
    for (const auto &[path, bookmark] : entries) {
        if (!m_inquiries.contains(path)) {
            auto task = BackgroundTask::start(
                m_workers, [path = path](const std::stop_token &) { return isThere(path); },
                [this, path = path](bool isThere) {
                    if (isThere) {
                        m_found.insert(path);
                    }
                });
            m_inquiries.emplace(path, Inquiry{std::move(task), deadline});
        }
    }
    for (const Entry &entry : entries) {
        Inquiry &inquiry = m_inquiries.at(entry.path);
        std::ignore = inquiry.task.waitUntil(inquiry.deadline);
    }
    return m_found;
}
