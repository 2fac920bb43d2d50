// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/GitLibrary.h"

#include <optional>
#include <type_traits>

#include <dlfcn.h>

namespace {

/// That of the headers.
constexpr auto fileName = "libgit2.so." LIBGIT2_SOVERSION;

std::optional<GitLibrary> loaded()
{
    void *const file = ::dlopen(fileName, RTLD_LAZY | RTLD_LOCAL);
    if (!file) {
        return std::nullopt;
    }
    GitLibrary git;
    bool isWhole = true;
    const auto find = [&](auto &function, const char *name) {
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(::dlsym(file, name));
        isWhole = isWhole && function;
    };
    find(git.init, "git_libgit2_init");
    find(git.setOption, "git_libgit2_opts");
    find(git.openRepository, "git_repository_open_ext");
    find(git.freeRepository, "git_repository_free");
    find(git.workFolder, "git_repository_workdir");
    find(git.head, "git_repository_head");
    find(git.freeReference, "git_reference_free");
    find(git.peel, "git_reference_peel");
    find(git.freeObject, "git_object_free");
    find(git.entryAt, "git_tree_entry_bypath");
    find(git.freeEntry, "git_tree_entry_free");
    find(git.idOf, "git_tree_entry_id");
    find(git.modeOf, "git_tree_entry_filemode");
    find(git.objects, "git_repository_odb");
    find(git.freeObjects, "git_odb_free");
    find(git.readHeader, "git_odb_read_header");
    find(git.findBlob, "git_blob_lookup");
    find(git.freeBlob, "git_blob_free");
    find(git.bytesOf, "git_blob_rawcontent");
    find(git.sizeOf, "git_blob_rawsize");
    find(git.findAttribute, "git_attr_get");
    find(git.kindOfAttribute, "git_attr_value");
    if (!isWhole || git.init() <= 0) {
        return std::nullopt;
    }
    // None of them changes how the last commit is to be read; without a word for it, repositories that use them would not be opened.
    static const char *extensions[] = {"worktreeconfig", "partialclone", "preciousobjects", "relativeworktrees"};
    git.setOption(GIT_OPT_SET_EXTENSIONS, extensions, std::size(extensions));
    return git;
}

} // namespace

const GitLibrary *GitLibrary::load()
{
    static const std::optional<GitLibrary> git = loaded();
    return git ? &*git : nullptr;
}
