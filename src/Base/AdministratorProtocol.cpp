// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/AdministratorProtocol.h"

#include "Base/FilePath.h"

#include <QDataStream>
#include <QIODevice>
#include <QList>
#include <QtEndian>

namespace {

using AdministratorProtocol::Answer;
using AdministratorProtocol::Request;
using MissingFolder = Administrator::MissingFolder;

constexpr QByteArrayView mark("QLTsave1", 8);
/// A path and some numbers.
constexpr quint32 largestBody = 16 * 1024;
constexpr auto format = QDataStream::Qt_6_0;
constexpr mode_t plainPermissions = 0777;

QDataStream &operator<<(QDataStream &stream, const FileState &state)
{
    return stream << qint64(state.stamp.modified.tv_sec) << qint64(state.stamp.modified.tv_nsec) << state.stamp.size << state.device
                  << state.inode << state.mode << state.hash.has_value() << state.hash.value_or(0) << state.isFresh;
}

QDataStream &operator>>(QDataStream &stream, FileState &state)
{
    qint64 seconds = 0;
    qint64 nanoseconds = 0;
    bool hasHash = false;
    quint64 hash = 0;
    stream >> seconds >> nanoseconds >> state.stamp.size >> state.device >> state.inode >> state.mode >> hasHash >> hash >> state.isFresh;
    state.stamp.modified = {.tv_sec = time_t(seconds), .tv_nsec = long(nanoseconds)};
    state.hash = hasHash ? std::optional(hash) : std::nullopt;
    return stream;
}

void put(QDataStream &stream, const std::optional<FileState> &state)
{
    stream << state.has_value();
    if (state) {
        stream << *state;
    }
}

std::optional<FileState> takeState(QDataStream &stream)
{
    bool hasState = false;
    stream >> hasState;
    FileState state;
    if (hasState) {
        stream >> state;
    }
    return hasState ? std::optional(state) : std::nullopt;
}

QByteArray framed(const auto &write)
{
    QByteArray body;
    QDataStream stream(&body, QIODevice::WriteOnly);
    stream.setVersion(format);
    write(stream);
    QByteArray size(sizeof(quint32), Qt::Uninitialized);
    qToBigEndian(quint32(body.size()), size.data());
    return mark.toByteArray() + size + body;
}

/// What `read` makes of the body, if that is all of it.
auto unframed(const QByteArray &body, const auto &read)
{
    QDataStream stream(body);
    stream.setVersion(format);
    auto result = read(stream);
    const bool isWhole = stream.status() == QDataStream::Ok && stream.atEnd();
    return isWhole ? std::optional(std::move(result)) : std::nullopt;
}

} // namespace

QByteArray AdministratorProtocol::encoded(const Request &request)
{
    return framed([&](QDataStream &stream) {
        stream << request.path << request.textSize << quint32(request.newFile) << (request.missingFolder == MissingFolder::isMade)
               << request.expected.has_value();
        if (request.expected) {
            put(stream, request.expected->state);
        }
    });
}

QByteArray AdministratorProtocol::encoded(const Answer &answer)
{
    return framed([&](QDataStream &stream) {
        stream << qint32(answer.code);
        put(stream, answer.state);
    });
}

std::optional<qsizetype> AdministratorProtocol::bodySize(QByteArrayView frameHead)
{
    if (frameHead.size() != frameHeadSize || !frameHead.startsWith(mark)) {
        return std::nullopt;
    }
    const auto size = qFromBigEndian<quint32>(frameHead.sliced(mark.size()).data());
    return size <= largestBody ? std::optional(qsizetype(size)) : std::nullopt;
}

std::optional<Request> AdministratorProtocol::decodedRequest(const QByteArray &body)
{
    auto request = unframed(body, [](QDataStream &stream) {
        Request read;
        quint32 permissions = 0;
        bool isFolderMade = false;
        bool isExpected = false;
        stream >> read.path >> read.textSize >> permissions >> isFolderMade >> isExpected;
        read.missingFolder = isFolderMade ? MissingFolder::isMade : MissingFolder::isError;
        read.newFile = AtomicFile::NewFile(permissions & plainPermissions);
        if (isExpected) {
            read.expected = AtomicFile::Expectation{takeState(stream)};
        }
        return read;
    });
    return request && request->textSize >= 0 ? request : std::nullopt;
}

std::optional<Answer> AdministratorProtocol::decodedAnswer(const QByteArray &body)
{
    return unframed(body, [](QDataStream &stream) {
        qint32 code = 0;
        stream >> code;
        return Answer{.code = code, .state = takeState(stream)};
    });
}

QByteArray AdministratorProtocol::consentName(const QByteArray &path)
{
    constexpr QByteArrayView plainSigns("/._-+=,:@~ ");
    QByteArray name;
    for (const char32_t character : decodedPath(path).toUcs4()) {
        const QByteArray bytes = encodedPath(QString::fromUcs4(&character, 1));
        const bool isPlain = character < 0x80 && plainSigns.contains(char(character));
        name += isPlain || QChar::isLetterOrNumber(character) || QChar::isMark(character) ? bytes : bytes.toPercentEncoding();
    }
    return name;
}
