// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/RecordingCalls.h"

#include <functional>
#include <optional>
#include <random>
#include <set>

/// What may be left on a disk when the power goes.
///
/// Of a file there is what it held when it was flushed last, or a part of what was written since, or all of it. Of the names in a folder
/// there are those of its last flush; of what was done to them since, each may have happened or not.
class DiskModel final {
public:
    /// Paths with content; folders have none.
    using Tree = std::map<QByteArray, std::optional<QByteArray>>;

    /// `top` and `folders` below it are there from the beginning.
    explicit DiskModel(QByteArray top, const std::vector<QByteArray> &folders) : m_top(std::move(top))
    {
        for (const QByteArray &folder : folders) {
            m_names[parentOf(folder)][folder] = folderMark;
        }
    }

    void apply(const RecordedCall &call)
    {
        using Kind = RecordedCall::Kind;
        switch (call.kind) {
        case Kind::makeFolder:
            m_pending.push_back({{}, call.path, folderMark});
            break;
        case Kind::create:
            m_pending.push_back({{}, call.path, call.inode});
            break;
        case Kind::rename:
            m_pending.push_back({call.path, call.target, call.inode});
            break;
        case Kind::unlink:
            m_pending.push_back({call.path, {}, 0});
            break;
        case Kind::write:
            m_files[call.inode].now += call.bytes;
            break;
        case Kind::flushFile:
            m_files[call.inode].flushed = m_files[call.inode].now;
            break;
        case Kind::flushFolder:
            std::erase_if(m_pending, [&](const Change &change) { return change.folder() == call.path && happen(change, m_names); });
            break;
        }
    }

    /// Calls `visit` for each tree that the disk may hold now, once; of very many for some, chosen by `random`.
    void forEachTree(std::mt19937 &random, const std::function<void(const Tree &)> &visit) const
    {
        constexpr size_t manyChanges = 9;
        std::set<Tree> seen;
        const size_t subsets = size_t(1) << std::min(m_pending.size(), manyChanges);
        for (size_t subset = 0; subset < subsets; ++subset) {
            Names names = m_names;
            for (size_t index = 0; index < m_pending.size(); ++index) {
                const bool hasHappened = m_pending.size() <= manyChanges ? ((subset >> index) & 1) != 0 : random() % 2 == 0;
                if (hasHappened) {
                    happen(m_pending[index], names);
                }
            }
            for (int share = 0; share <= wholeShare; ++share) {
                Tree tree;
                collect(m_top, names, share, tree);
                if (seen.insert(tree).second) {
                    visit(tree);
                }
            }
        }
    }

private:
    using Names = std::map<QByteArray, std::map<QByteArray, int>>;
    static constexpr int folderMark = -1;
    static constexpr int wholeShare = 2;

    struct Change {
        QByteArray removed;
        QByteArray added;
        int inode = 0;

        [[nodiscard]] QByteArray folder() const { return parentOf(added.isEmpty() ? removed : added); }
    };
    struct File {
        QByteArray now;
        QByteArray flushed;
    };

    static QByteArray parentOf(const QByteArray &path) { return path.left(path.lastIndexOf('/')); }

    static bool happen(const Change &change, Names &names)
    {
        auto &folder = names[change.folder()];
        folder.erase(change.removed);
        if (!change.added.isEmpty()) {
            folder[change.added] = change.inode;
        }
        return true;
    }

    void collect(const QByteArray &folder, const Names &names, int share, Tree &tree) const
    {
        const auto found = names.find(folder);
        if (found == names.end()) {
            return;
        }
        for (const auto &[path, inode] : found->second) {
            if (inode == folderMark) {
                tree[path] = std::nullopt;
                collect(path, names, share, tree);
            } else if (const auto file = m_files.find(inode); file != m_files.end()) {
                const auto &[now, flushed] = file->second;
                const qsizetype length = flushed.size() + (now.size() - flushed.size()) * share / wholeShare;
                tree[path] = now.first(length);
            } else {
                tree[path] = QByteArray();
            }
        }
    }

    QByteArray m_top;
    Names m_names;
    std::vector<Change> m_pending;
    std::map<int, File> m_files;
};
