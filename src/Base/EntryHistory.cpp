// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/EntryHistory.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

EntryHistory::EntryHistory(const Form &form, QString file, Workers &workers) : EntryHistory(form)
{
    m_file.emplace(std::move(file), workers);
    load();
}

void EntryHistory::load()
{
    const QJsonObject object = QJsonDocument::fromJson(m_file->content(largestFile)).object();
    for (size_t kind = 0; kind < m_form.kinds.size(); ++kind) {
        QStringList &entries = m_entries[kind];
        for (const auto &value : object[m_form.kinds[kind]].toArray()) {
            const QString entry = value.toString();
            if (!entry.isEmpty() && entry.size() <= largestEntry && entries.size() < m_form.mostEntries && !entries.contains(entry)) {
                entries << entry;
            }
        }
    }
}

bool EntryHistory::isEmpty() const
{
    return std::ranges::all_of(m_entries, &QStringList::isEmpty);
}

void EntryHistory::add(size_t kind, const QString &entry, Kept kept)
{
    QStringList &entries = m_entries[kind];
    QStringList &isPrivate = m_private[kind];
    const bool wasKept = entries.contains(entry) && !isPrivate.contains(entry);
    const bool keeps = wasKept || kept == Kept::forNextRun;
    const bool isAtHead = !entries.isEmpty() && entries.first() == entry;
    if (entry.isEmpty() || (isAtHead && keeps == wasKept)) {
        return;
    }
    entries.removeAll(entry);
    entries.prepend(entry);
    isPrivate.removeAll(entry);
    if (!keeps) {
        isPrivate.prepend(entry);
    }
    if (entries.size() > m_form.mostEntries) {
        isPrivate.removeAll(entries.takeLast());
    }
    if (keeps) {
        write();
    }
}

void EntryHistory::clear()
{
    m_entries.assign(m_form.kinds.size(), {});
    m_private.assign(m_form.kinds.size(), {});
    write();
}

void EntryHistory::write()
{
    if (!m_file) {
        return;
    }
    QJsonObject object;
    for (size_t kind = 0; kind < m_form.kinds.size(); ++kind) {
        QJsonArray array;
        for (const QString &entry : m_entries[kind]) {
            if (entry.size() <= largestEntry && !m_private[kind].contains(entry)) {
                array << entry;
            }
        }
        object[m_form.kinds[kind]] = array;
    }
    m_file->write(QJsonDocument(object).toJson(QJsonDocument::Compact));
}
