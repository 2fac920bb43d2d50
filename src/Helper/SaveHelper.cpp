// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Helper/SaveHelper.h"

#include "Base/FilePath.h"
#include "Helper/PinnedFolder.h"

#include <QList>

#include <algorithm>
#include <csignal>

#include <climits>
#include <unistd.h>

using AdministratorProtocol::Answer;
using AdministratorProtocol::Request;
using MissingFolder = Administrator::MissingFolder;

namespace {

constexpr qsizetype blockSize = 256 * 1024;

/// `size` bytes, or fewer where the input ends or fails.
QByteArray readFrom(int input, qint64 size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    qint64 length = 0;
    while (length < size) {
        const ssize_t count = ::read(input, bytes.data() + length, size_t(size - length));
        if (count == 0 || (count < 0 && errno != EINTR)) {
            break;
        }
        length += std::max<ssize_t>(count, 0);
    }
    bytes.truncate(length);
    return bytes;
}

std::optional<Request> readRequest(int input)
{
    const auto size = AdministratorProtocol::bodySize(readFrom(input, AdministratorProtocol::frameHeadSize));
    return size ? AdministratorProtocol::decodedRequest(readFrom(input, *size)) : std::nullopt;
}

bool isCleanAbsolute(const QByteArray &path)
{
    const QList<QByteArray> names = path.split('/');
    return path.startsWith('/') && path.size() < PATH_MAX && !path.contains('\0') &&
           std::all_of(names.begin() + 1, names.end(),
                       [](const QByteArray &name) { return !name.isEmpty() && name != "." && name != ".."; });
}

/// The program may end while its last wish is being carried out.
void outliveAsker()
{
    for (const int signal : {SIGTERM, SIGHUP, SIGINT, SIGPIPE}) {
        std::signal(signal, SIG_IGN);
    }
}

/// 0 for none.
int errorOf(const Result<void> &result)
{
    return result ? 0 : result.error().code;
}

/// The text, all of it and nothing else; `errno` for a failure, 0 when it is written.
int copyText(int input, qint64 size, AtomicFile &file)
{
    while (size > 0) {
        const QByteArray block = readFrom(input, std::min<qint64>(size, blockSize));
        if (block.isEmpty()) {
            return AdministratorProtocol::malformed;
        }
        if (const int error = errorOf(file.write(block)); error != 0) {
            return error;
        }
        size -= block.size();
    }
    return readFrom(input, 1).isEmpty() ? 0 : AdministratorProtocol::malformed;
}

/// What others wrote is nobody's to know here.
std::optional<FileState> withoutHash(std::optional<FileState> state)
{
    if (state) {
        state->hash.reset();
    }
    return state;
}

} // namespace

Answer saveOnRequest(int input, const QByteArray &consentName)
{
    const auto request = readRequest(input);
    if (!request || !isCleanAbsolute(request->path) || AdministratorProtocol::consentName(request->path) != consentName) {
        return {.code = AdministratorProtocol::malformed};
    }
    if (request->textSize > AdministratorProtocol::largestText) {
        return {.code = EFBIG};
    }
    const qsizetype nameStart = request->path.lastIndexOf('/') + 1;
    const QByteArray folder = request->path.first(nameStart);
    std::optional<QByteArray> text;
    int error = enterFolder(folder, MissingFolder::isError);
    if (error == ENOENT && request->missingFolder == MissingFolder::isMade) {
        // All of it first: for a text that is cut off nothing is made.
        text = readFrom(input, request->textSize);
        const bool isWhole = text->size() == request->textSize && readFrom(input, 1).isEmpty();
        error = isWhole ? enterFolder(folder, MissingFolder::isMade) : AdministratorProtocol::malformed;
    }
    if (error != 0) {
        return {.code = error};
    }
    PinnedCalls calls;
    auto file = AtomicFile::open(decodedPath(request->path.sliced(nameStart)), request->newFile, calls);
    if (!file) {
        return {.code = file.error().code};
    }
    error = text ? errorOf(file->write(*text)) : copyText(input, request->textSize, *file);
    if (error != 0) {
        return {.code = error};
    }
    outliveAsker();
    const auto written = file->commit(request->expected);
    return written ? Answer{.state = written->state} : Answer{.code = written.error().code, .state = withoutHash(file->foundState())};
}
