// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileCalls.h"
#include "Base/FilePath.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <span>
#include <vector>

/// The bytes of one open file, as often as they are needed: from the descriptor block by block, or from a copy in memory.
class FileBytes final {
public:
    /// One that cannot be opened leaves the reason in `errno`.
    FileBytes(const QString &path, FileCalls &calls) : m_calls(calls)
    {
        // A pipe would otherwise keep us waiting for a writer.
        m_file = calls.open(encodedPath(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0);
    }
    ~FileBytes()
    {
        if (m_file >= 0) {
            m_calls.close(m_file);
        }
    }
    Q_DISABLE_COPY_MOVE(FileBytes)

    static constexpr qint64 blockSize = 256 * 1024;

    [[nodiscard]] bool isOpen() const { return m_file >= 0; }
    /// None when the file is no regular file or gives no answer.
    [[nodiscard]] std::optional<struct stat> status() const
    {
        struct stat status = {};
        if (m_calls.fstat(m_file, &status) != 0 || !S_ISREG(status.st_mode)) {
            return std::nullopt;
        }
        return status;
    }

    [[nodiscard]] bool goTo(qint64 offset)
    {
        m_offset = offset;
        return m_isInMemory || m_calls.lseek(m_file, offset, SEEK_SET) == offset;
    }

    /// A full block, or so many bytes at the most, or what is left of the file; empty at its end, none when it cannot be read.
    /// Overwritten by the next call.
    [[nodiscard]] std::optional<std::span<uchar>> next(qint64 most = blockSize)
    {
        const auto wanted = std::span(m_block).first(size_t(std::min(most, blockSize)));
        if (m_isInMemory) {
            const size_t length = std::min(wanted.size(), m_memory.size() - size_t(m_offset));
            std::copy_n(m_memory.begin() + m_offset, length, m_block.begin());
            m_offset += qint64(length);
            return std::span(m_block).first(length);
        }
        const auto length = fill(wanted);
        if (!length) {
            return std::nullopt;
        }
        m_offset += qint64(*length);
        return std::span(m_block).first(*length);
    }

    /// From now on the bytes come from memory. False when they cannot be read; more than `limit` of them are not kept.
    [[nodiscard]] bool copyToMemory(qint64 limit)
    {
        if (!goTo(0)) {
            return false;
        }
        std::vector<uchar> memory;
        while (qint64(memory.size()) <= limit) {
            const auto block = next();
            if (!block) {
                return false;
            }
            if (block->empty()) {
                break;
            }
            memory.insert(memory.end(), block->begin(), block->end());
        }
        m_memory = std::move(memory);
        m_isInMemory = true;
        return true;
    }
    [[nodiscard]] qint64 sizeInMemory() const { return qint64(m_memory.size()); }

private:
    [[nodiscard]] std::optional<size_t> fill(std::span<uchar> bytes)
    {
        size_t length = 0;
        while (length < bytes.size()) {
            const ssize_t count = m_calls.read(m_file, bytes.data() + length, bytes.size() - length);
            if (count == 0) {
                break;
            }
            if (count > 0) {
                length += size_t(count);
            } else if (errno != EINTR) {
                return std::nullopt;
            }
        }
        return length;
    }

    FileCalls &m_calls;
    int m_file = -1;
    qint64 m_offset = 0;
    std::vector<uchar> m_block = std::vector<uchar>(size_t(blockSize));
    std::vector<uchar> m_memory;
    bool m_isInMemory = false;
};
