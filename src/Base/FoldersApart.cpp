// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/FoldersApart.h"

#include <QFileInfo>

#include <map>
#include <set>

namespace {

/// Of files of one name, with the folders of each by its path.
void tellApart(std::set<QString> paths, std::map<QString, QString> &folders)
{
    for (qsizetype count = 1; paths.size() > 1; ++count) {
        std::map<QString, std::vector<QString>> byFolders;
        for (const QString &path : paths) {
            byFolders[QFileInfo(path).path().section(u'/', -count)].push_back(path);
        }
        for (const auto &[nearest, alike] : byFolders) {
            for (const QString &path : alike) {
                folders[path] = nearest.isEmpty() ? QStringLiteral("/") : nearest;
            }
            if (alike.size() == 1) {
                paths.erase(alike.front());
            }
        }
    }
}

} // namespace

QStringList foldersApart(const QStringList &paths)
{
    std::map<QString, std::set<QString>> byName;
    for (const QString &path : paths) {
        if (!path.isEmpty()) {
            byName[QFileInfo(path).fileName()].insert(path);
        }
    }
    std::map<QString, QString> folders;
    for (const auto &[name, alike] : byName) {
        tellApart(alike, folders);
    }
    QStringList result;
    for (const QString &path : paths) {
        const auto found = folders.find(path);
        result << (found == folders.end() ? QString() : found->second);
    }
    return result;
}
