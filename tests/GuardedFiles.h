// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Administrator.h"
#include "Base/FilePath.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <unistd.h>

/// The real calls, but for a file that the user may not write to, or a folder with its slash, and one that cannot even be read, whoever
/// runs the test.
class GuardedFiles final : public FileCalls {
public:
    QString guarded;
    QString secret;

    int open(const char *path, int flags, mode_t mode) override
    {
        const QString name = decodedPath(path);
        const bool isMadeInGuarded = (flags & O_CREAT) != 0 && !guarded.isEmpty() && QFileInfo(name).path() + u'/' == guarded;
        if (isMadeInGuarded || (!secret.isEmpty() && name == secret)) {
            errno = EACCES;
            return -1;
        }
        return FileCalls::open(path, flags, mode);
    }

    int mkdir(const char *path, mode_t mode) override
    {
        if (decodedPath(path) == guarded) {
            errno = EACCES;
            return -1;
        }
        return FileCalls::mkdir(path, mode);
    }

    int access(const char *path, int mode) override
    {
        const QString name = decodedPath(path);
        if (!name.isEmpty() && (name == secret || (name == guarded && (mode & W_OK) != 0))) {
            errno = EACCES;
            return -1;
        }
        return FileCalls::access(path, mode);
    }
};

/// One who may write any file, and does so at once or fails as told.
class FakeAdministrator final : public Administrator {
public:
    bool isThere = true;
    std::optional<AtomicFile::WriteError> error;
    int writes = 0;
    std::function<void()> beforeWriting;

    [[nodiscard]] bool isAvailable() const override { return isThere; }
    [[nodiscard]] Result<FileState, AtomicFile::WriteError> write(const Request &request, QByteArrayView text,
                                                                  const std::stop_token & /*stop*/) override
    {
        ++writes;
        if (beforeWriting) {
            beforeWriting();
        }
        if (error) {
            return tl::make_unexpected(*error);
        }
        if (request.missingFolder == MissingFolder::isMade) {
            QDir().mkpath(QFileInfo(request.path).path());
        }
        auto file = AtomicFile::open(request.path, request.newFile);
        const auto written = file->write(text).and_then([&] { return file->commit(request.expected); });
        return written.map([](const AtomicFile::Written &done) { return done.state; }).map_error([&](const Error &failed) {
            return AtomicFile::WriteError{failed, file->foundState()};
        });
    }
};
