// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileStamp.h"

#include <optional>

/// A file as it was when a text was read from it or written to it: by this it is known again later, or not.
struct FileState {
    FileStamp stamp = {};
    quint64 device = 0;
    quint64 inode = 0;
    /// Permissions.
    quint32 mode = 0;
    /// ContentHash of its bytes; none where nobody read them.
    std::optional<quint64> hash = std::nullopt;
    /// It had been written so shortly before that another writing may have left all the same, except for the bytes; or not all of the
    /// bytes that the hash stands for were looked at when it was as here.
    bool isFresh = false;

    /// Of `status`, which was asked for at this moment.
    [[nodiscard]] static FileState of(const struct stat &status, std::optional<quint64> hash);

    /// Nobody wrote the file in between. Where that cannot be seen without its bytes, and for files that look different, see the hash.
    [[nodiscard]] bool isSurelySameAs(const struct stat &status) const;

    friend bool operator==(const FileState &, const FileState &) = default;
};

/// Nobody wrote the file, or changed what there is to know of it, between the two looks.
[[nodiscard]] bool isUntouched(const struct stat &before, const struct stat &after);

/// A fast hash of bytes for telling contents apart, no protection against somebody who wants them to be alike: XXH3, 64 bits.
class ContentHash final {
public:
    ContentHash();
    /// Both go on from the same bytes.
    ContentHash(const ContentHash &other);
    ContentHash(ContentHash &&other) noexcept;
    ContentHash &operator=(ContentHash other) noexcept;
    ~ContentHash();

    [[nodiscard]] static quint64 of(const void *bytes, size_t count);

    void add(const void *bytes, size_t count);
    /// As new.
    void reset();
    /// Of the bytes so far.
    [[nodiscard]] quint64 value() const;

private:
    void *m_state;
};
