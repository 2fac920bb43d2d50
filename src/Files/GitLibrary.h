// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <git2.h>

/// What is used of libgit2. It is loaded when something is first asked of a repository: it brings a dozen of other libraries, which every
/// start would have to wait for. Any thread; is never unloaded.
struct GitLibrary {
    /// Takes milliseconds the first time. Null where the library is not installed.
    [[nodiscard]] static const GitLibrary *load();

    decltype(&git_libgit2_init) init = nullptr;
    decltype(&git_libgit2_opts) setOption = nullptr;
    decltype(&git_repository_open_ext) openRepository = nullptr;
    decltype(&git_repository_free) freeRepository = nullptr;
    decltype(&git_repository_workdir) workFolder = nullptr;
    decltype(&git_repository_head) head = nullptr;
    decltype(&git_reference_free) freeReference = nullptr;
    decltype(&git_reference_peel) peel = nullptr;
    decltype(&git_object_free) freeObject = nullptr;
    decltype(&git_tree_entry_bypath) entryAt = nullptr;
    decltype(&git_tree_entry_free) freeEntry = nullptr;
    decltype(&git_tree_entry_id) idOf = nullptr;
    decltype(&git_tree_entry_filemode) modeOf = nullptr;
    decltype(&git_repository_odb) objects = nullptr;
    decltype(&git_odb_free) freeObjects = nullptr;
    decltype(&git_odb_read_header) readHeader = nullptr;
    decltype(&git_blob_lookup) findBlob = nullptr;
    decltype(&git_blob_free) freeBlob = nullptr;
    decltype(&git_blob_rawcontent) bytesOf = nullptr;
    decltype(&git_blob_rawsize) sizeOf = nullptr;
    decltype(&git_attr_get) findAttribute = nullptr;
    decltype(&git_attr_value) kindOfAttribute = nullptr;
};
