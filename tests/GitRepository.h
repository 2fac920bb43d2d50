// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "TestFolder.h"

#include <git2.h>

/// A repository in a folder of the test, made without a git program and without anybody's configuration.
class GitRepository {
public:
    enum class Kind { withFiles, bare };
    explicit GitRepository(const QString &folder, Kind kind = Kind::withFiles)
    {
        static const int uses = git_libgit2_init();
        EXPECT_GT(uses, 0);
        for (const int level : {GIT_CONFIG_LEVEL_SYSTEM, GIT_CONFIG_LEVEL_GLOBAL, GIT_CONFIG_LEVEL_XDG, GIT_CONFIG_LEVEL_PROGRAMDATA}) {
            git_libgit2_opts(GIT_OPT_SET_SEARCH_PATH, level, "");
        }
        EXPECT_EQ(git_repository_init(&m_repository, folder.toUtf8().constData(), kind == Kind::bare), 0);
    }
    ~GitRepository() { git_repository_free(m_repository); }
    Q_DISABLE_COPY_MOVE(GitRepository)

    /// The files as they are in the folder.
    void commit(const QByteArrayList &names) const
    {
        git_index *index = nullptr;
        ASSERT_EQ(git_repository_index(&index, m_repository), 0);
        for (const QByteArray &name : names) {
            ASSERT_EQ(git_index_add_bypath(index, name.constData()), 0) << name.constData();
        }
        git_oid treeId;
        git_oid commitId;
        git_tree *tree = nullptr;
        git_signature *who = nullptr;
        ASSERT_EQ(git_index_write(index), 0);
        ASSERT_EQ(git_index_write_tree(&treeId, index), 0);
        ASSERT_EQ(git_tree_lookup(&tree, m_repository, &treeId), 0);
        ASSERT_EQ(git_signature_new(&who, "Test", "test@example.org", 0, 0), 0);
        git_oid parentId;
        git_commit *parent = nullptr;
        if (git_reference_name_to_id(&parentId, m_repository, "HEAD") == 0) {
            ASSERT_EQ(git_commit_lookup(&parent, m_repository, &parentId), 0);
        }
        const git_commit *parents[] = {parent};
        ASSERT_EQ(git_commit_create(&commitId, m_repository, "HEAD", who, who, nullptr, "A commit", tree, parent ? 1 : 0, parents), 0);
        git_commit_free(parent);
        git_signature_free(who);
        git_tree_free(tree);
        git_index_free(index);
    }
    void addWorkTree(const char *name, const QString &folder) const
    {
        git_worktree *added = nullptr;
        EXPECT_EQ(git_worktree_add(&added, m_repository, name, folder.toUtf8().constData(), nullptr), 0);
        git_worktree_free(added);
    }
    void set(const char *name, int value) const
    {
        git_config *config = nullptr;
        ASSERT_EQ(git_repository_config(&config, m_repository), 0);
        EXPECT_EQ(git_config_set_int32(config, name, value), 0);
        git_config_free(config);
    }

private:
    git_repository *m_repository = nullptr;
};
