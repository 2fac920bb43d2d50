// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineIndex.h"

std::vector<qsizetype> TextMetrics::lineStarts(const Rope &text)
{
    std::vector<qsizetype> starts;
    starts.reserve(size_t(text.lineCount()));
    starts.push_back(0);
    // A CR ends its line only when the next unit, perhaps in the next chunk, is not the LF that belongs to it.
    bool isAfterCr = false;
    text.forEachChunk({0, text.length()}, [&](const Rope::Chunk &chunk) {
        for (qsizetype index = 0; index < chunk.length; ++index) {
            const char16_t unit = chunk.at(index);
            if (unit == u'\n') {
                starts.push_back(chunk.location + index + 1);
            } else if (isAfterCr) {
                starts.push_back(chunk.location + index);
            }
            isAfterCr = unit == u'\r';
        }
        return true;
    });
    if (isAfterCr) {
        starts.push_back(text.length());
    }
    return starts;
}
