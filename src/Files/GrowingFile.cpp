// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/GrowingFile.h"

#include "Files/FileBytes.h"
#include "Files/FoldingSink.h"

namespace {

/// With the first one, of which programs that write a file anew mostly make another.
constexpr size_t samplesPerLook = 8;

/// Each time others, spread over the file, so that all have their turn.
bool areSamplesSame(FileBytes &file, const ReadPosition &position)
{
    const size_t count = position.bytes.sampleCount();
    const size_t distance = std::max<size_t>(count / (samplesPerLook - 1), 1);
    for (size_t look = 0; look < samplesPerLook; ++look) {
        const size_t index = look == 0 ? 0 : (position.continuations + look * distance) % count;
        const auto sample = file.goTo(qint64(index) * FilePrefix::stretchLength) ? file.next(FilePrefix::sampleLength) : std::nullopt;
        if (!sample || ContentHash::of(sample->data(), sample->size()) != position.bytes.sampleHash(index)) {
            return false;
        }
    }
    return true;
}

} // namespace

std::optional<TextFile::Contents> GrowingFile::readAdded(const QString &path, const ReadPosition &position, FileCalls &calls)
{
    const auto isLonger = [&](const struct stat &status) {
        return S_ISREG(status.st_mode) && position.isOf(status) && status.st_size > position.bytes.size() &&
               status.st_size <= TextFile::largestSize;
    };
    // What is no regular file is not even opened, since that may have effects of its own.
    struct stat named = {};
    if (calls.stat(encodedPath(path).constData(), &named) != 0 || !isLonger(named)) {
        return std::nullopt;
    }
    FileBytes file(path, calls);
    const auto before = file.status();
    if (!before || !isLonger(*before) || !areSamplesSame(file, position)) {
        return std::nullopt;
    }
    const auto decoder = TextDecoder::strict(position.encoding);
    const qint64 end = position.bytes.size();
    const qint64 newEnd = before->st_size;
    qint64 at = position.bytes.tailStart();
    if (!decoder || !file.goTo(at)) {
        return std::nullopt;
    }
    ReadPosition next(position);
    next.bytes = position.bytes.grownTo(newEnd);
    next.isAssumed = true;
    ++next.continuations;
    FoldingSink sink(position.breaks);
    ContentHash tail;
    while (at < newEnd) {
        const auto block = file.next((at < end ? end : newEnd) - at);
        if (!block || block->empty()) {
            return std::nullopt;
        }
        next.bytes.add(at, *block);
        if (at < end) {
            tail.add(block->data(), block->size());
        } else if (!decoder->decode(*block, sink)) {
            return std::nullopt;
        }
        at += qint64(block->size());
        if (at == end && tail.value() != position.bytes.tailHash()) {
            return std::nullopt;
        }
    }
    // What changes meanwhile gives the file another time, is reported, and then not taken for more of the same.
    if (!decoder->finish(sink)) {
        return std::nullopt;
    }
    next.breaks = sink.breaks();
    TextFile::Contents added{.text = sink.text(), .encoding = position.encoding, .lineEnding = next.breaks.ending()};
    added.form.lineEndings = sink.lineEndings();
    added.state = FileState::of(*before, next.bytes.hash());
    added.state->isFresh = true;
    added.position = std::make_shared<const ReadPosition>(std::move(next));
    return added;
}

GrowingFile::Check GrowingFile::check(const QString &path, const ReadPosition &position, FileCalls &calls, const std::stop_token &stop)
{
    const auto isThis = [&](const struct stat &status) { return S_ISREG(status.st_mode) && position.isOf(status); };
    struct stat named = {};
    if (calls.stat(encodedPath(path).constData(), &named) != 0 || !isThis(named)) {
        return {};
    }
    FileBytes file(path, calls);
    const auto before = file.status();
    if (!before || !isThis(*before)) {
        return {};
    }
    ContentHash hash;
    for (qint64 left = position.bytes.size(); left > 0;) {
        const auto block = stop.stop_requested() ? std::nullopt : file.next(left);
        if (!block) {
            return {};
        }
        if (block->empty()) {
            return {.finding = Finding::different};
        }
        hash.add(block->data(), block->size());
        left -= qint64(block->size());
    }
    if (hash.value() != position.bytes.hash()) {
        return {.finding = Finding::different};
    }
    const auto after = file.status();
    const bool isAll = before->st_size == position.bytes.size() && after && isUntouched(*before, *after);
    return {.finding = Finding::same, .state = isAll ? std::optional(FileState::of(*before, hash.value())) : std::nullopt};
}
