// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/StandardInput.h"

#include "Base/Translation.h"

#include <QTemporaryFile>

#include <array>
#include <cerrno>

#include <unistd.h>

TextFile::ReadResult readStream(int descriptor)
{
    // For nobody else to read, and gone with this function.
    QTemporaryFile copy;
    const auto failed = [] {
        return tl::unexpected(TextFile::ReadError{.kind = TextFile::ReadError::Kind::notReadable, .path = localized(u"Standard Input")});
    };
    if (!copy.open()) {
        return failed();
    }
    constexpr size_t blockSize = 64UL * 1024;
    std::array<char, blockSize> block{};
    qint64 size = 0;
    while (size <= TextFile::largestSize) {
        const ssize_t count = ::read(descriptor, block.data(), block.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 || copy.write(block.data(), count) != count) {
            return failed();
        }
        if (count == 0) {
            break;
        }
        size += count;
    }
    if (!copy.flush()) {
        return failed();
    }
    auto contents = TextFile::read(copy.fileName());
    if (!contents) {
        contents.error().path = localized(u"Standard Input");
    }
    return contents;
}
