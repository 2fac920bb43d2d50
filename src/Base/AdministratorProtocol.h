// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Administrator.h"
#include "Base/AtomicFile.h"

#include <QByteArray>

#include <cerrno>

/// What the program sends to the helper that runs as administrator, and gets back. Each message is a frame: a mark of eight bytes, the size
/// of the body (four bytes, the first the highest), the body. Behind the frame of a request comes the text, of the size that the request
/// names, and then the end.
///
/// The helper's only argument is the path as consentName() makes it of the one in the request. The question for the password shows it, and
/// nothing else is written: who slips in another request has to ask for another file.
namespace AdministratorProtocol {

constexpr qsizetype frameHeadSize = 12;
/// Bytes of text that the helper takes.
constexpr qint64 largestText = 512 * 1024 * 1024;

/// Reasons to refuse that no system call gives, as `errno` values that stand for nothing else in answers.
enum Refusal : int {
    /// The request is none, is cut off or has something behind it.
    malformed = EPROTO,
    /// The path, or a folder in it, is a symbolic link.
    isLink = ELOOP,
    /// A file with hard links, whose other names would keep the old text.
    hasSeveralNames = EMLINK,
    /// It runs with the rights of its owner or group.
    hasOwnersRights = ENOEXEC,
};

struct Request {
    /// Absolute, with no symbolic link in it.
    QByteArray path;
    /// Bytes.
    qint64 textSize = 0;
    AtomicFile::NewFile newFile = AtomicFile::NewFile::readableByOthers;
    std::optional<AtomicFile::Expectation> expected = std::nullopt;
    Administrator::MissingFolder missingFolder = Administrator::MissingFolder::isError;
};

struct Answer {
    /// 0 when it is saved, `AtomicFile::changedError` when another file was found, else `errno` or a Refusal.
    int code = 0;
    /// The file as it was written or found; none after other errors.
    std::optional<FileState> state = std::nullopt;
};

/// With their frames.
[[nodiscard]] QByteArray encoded(const Request &request);
[[nodiscard]] QByteArray encoded(const Answer &answer);
/// The size of the body of which these `frameHeadSize` bytes are the head; none when they are not.
[[nodiscard]] std::optional<qsizetype> bodySize(QByteArrayView frameHead);
/// None for what is no whole body of its kind.
[[nodiscard]] std::optional<Request> decodedRequest(const QByteArray &body);
[[nodiscard]] std::optional<Answer> decodedAnswer(const QByteArray &body);

/// `path` in plain characters that look like what they are and can stand in any text: letters, digits, and a few signs; every other byte
/// is %XX.
[[nodiscard]] QByteArray consentName(const QByteArray &path);

} // namespace AdministratorProtocol
