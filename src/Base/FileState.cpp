// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/FileState.h"

#include <ctime>
#include <utility>
#include <xxhash.h>

namespace {

constexpr qint64 nanoseconds = 1'000'000'000;

qint64 since(const timespec &past)
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return (now.tv_sec - past.tv_sec) * nanoseconds + now.tv_nsec - past.tv_nsec;
}

} // namespace

FileState FileState::of(const struct stat &status, std::optional<quint64> hash)
{
    // Times come from clocks that tick a hundred times a second or oftener, but on old file systems every second or two.
    constexpr qint64 tick = nanoseconds / 20;
    constexpr qint64 coarseTick = 2 * nanoseconds;
    const qint64 age = since(status.st_mtim);
    return {.stamp = FileStamp::of(status),
            .device = status.st_dev,
            .inode = status.st_ino,
            .mode = status.st_mode & 0777,
            .hash = hash,
            .isFresh = age < (status.st_mtim.tv_nsec == 0 ? coarseTick : tick)};
}

bool FileState::isSurelySameAs(const struct stat &status) const
{
    return !isFresh && stamp == FileStamp::of(status) && device == status.st_dev && inode == status.st_ino;
}

bool isUntouched(const struct stat &before, const struct stat &after)
{
    return FileStamp::of(before) == FileStamp::of(after) && before.st_dev == after.st_dev && before.st_ino == after.st_ino &&
           before.st_ctim.tv_sec == after.st_ctim.tv_sec && before.st_ctim.tv_nsec == after.st_ctim.tv_nsec;
}

ContentHash::ContentHash() : m_state(XXH3_createState())
{
    reset();
}

ContentHash::ContentHash(const ContentHash &other) : m_state(XXH3_createState())
{
    XXH3_copyState(static_cast<XXH3_state_t *>(m_state), static_cast<const XXH3_state_t *>(other.m_state));
}

ContentHash::ContentHash(ContentHash &&other) noexcept : m_state(std::exchange(other.m_state, nullptr)) {}

ContentHash &ContentHash::operator=(ContentHash other) noexcept
{
    std::swap(m_state, other.m_state);
    return *this;
}

ContentHash::~ContentHash()
{
    XXH3_freeState(static_cast<XXH3_state_t *>(m_state));
}

quint64 ContentHash::of(const void *bytes, size_t count)
{
    return XXH3_64bits(bytes, count);
}

void ContentHash::add(const void *bytes, size_t count)
{
    XXH3_64bits_update(static_cast<XXH3_state_t *>(m_state), bytes, count);
}

void ContentHash::reset()
{
    XXH3_64bits_reset(static_cast<XXH3_state_t *>(m_state));
}

quint64 ContentHash::value() const
{
    return XXH3_64bits_digest(static_cast<XXH3_state_t *>(m_state));
}
