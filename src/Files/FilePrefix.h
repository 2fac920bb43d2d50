// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileState.h"

#include <algorithm>
#include <span>
#include <vector>

/// The bytes of a file up to a place, as hashes: of all of them, of the last ones, and of a sample of each stretch. A look at some samples
/// and the last bytes tells of most changes before that place, one at all bytes of every change. A value; offsets and lengths are bytes.
class FilePrefix final {
public:
    static constexpr qint64 tailLength = 64 * 1024;
    static constexpr qint64 stretchLength = 64 * 1024;
    /// A sample is what a stretch begins with.
    static constexpr qint64 sampleLength = 4 * 1024;

    /// Of `size` bytes, which have to be added.
    explicit FilePrefix(qint64 size) : m_size(size) {}
    /// With the bytes that follow, up to `size`. Those from here on tailStart() have to be added.
    [[nodiscard]] FilePrefix grownTo(qint64 size) const;
    /// The bytes at `offset`: front to back, in any portions.
    void add(qint64 offset, std::span<const uchar> bytes);

    [[nodiscard]] qint64 size() const { return m_size; }
    [[nodiscard]] quint64 hash() const { return m_all.value(); }
    [[nodiscard]] qint64 tailStart() const { return std::max<qint64>(m_size - tailLength, 0); }
    [[nodiscard]] quint64 tailHash() const { return m_tail.value(); }
    /// Of whole samples.
    [[nodiscard]] size_t sampleCount() const { return m_samples.size(); }
    [[nodiscard]] quint64 sampleHash(size_t index) const { return m_samples[index]; }

private:
    void addToSamples(std::span<const uchar> bytes);

    qint64 m_size;
    /// Bytes that are in `m_all`.
    qint64 m_end = 0;
    ContentHash m_all;
    ContentHash m_tail;
    std::vector<quint64> m_samples;
    /// The sample that `m_end` is in.
    ContentHash m_sample;
};
