// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/FilePrefix.h"

namespace {

std::span<const uchar> from(qint64 start, qint64 offset, std::span<const uchar> bytes)
{
    return bytes.subspan(size_t(std::clamp<qint64>(start - offset, 0, qint64(bytes.size()))));
}

void addTo(ContentHash &hash, std::span<const uchar> bytes)
{
    hash.add(bytes.data(), bytes.size());
}

} // namespace

FilePrefix FilePrefix::grownTo(qint64 size) const
{
    FilePrefix grown(*this);
    grown.m_size = size;
    grown.m_tail.reset();
    return grown;
}

void FilePrefix::add(qint64 offset, std::span<const uchar> bytes)
{
    addTo(m_tail, from(tailStart(), offset, bytes));
    const auto further = from(m_end, offset, bytes);
    addTo(m_all, further);
    addToSamples(further);
    m_end += qint64(further.size());
}

void FilePrefix::addToSamples(std::span<const uchar> bytes)
{
    for (qint64 at = m_end; !bytes.empty();) {
        const qint64 inStretch = at % stretchLength;
        const bool isSample = inStretch < sampleLength;
        const auto length = std::min(qint64(bytes.size()), (isSample ? sampleLength : stretchLength) - inStretch);
        if (isSample) {
            addTo(m_sample, bytes.first(size_t(length)));
        }
        if (isSample && inStretch + length == sampleLength) {
            m_samples.push_back(m_sample.value());
            m_sample.reset();
        }
        at += length;
        bytes = bytes.subspan(size_t(length));
    }
}
