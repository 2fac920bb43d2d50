// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/DocumentFile.h"

#include "Base/Administrator.h"
#include "Base/FilePath.h"
#include "Base/Translation.h"
#include "Files/GrowingFile.h"
#include "Files/TextHash.h"

#include <QDir>
#include <QFileInfo>

#include <memory>
#include <utility>

namespace {

/// With all that is missing above it. Returns `errno`, 0 when it is there.
int makeFolder(const QString &path, FileCalls &files)
{
    constexpr mode_t openToAll = 0777; // but for what the user's mask says
    if (isThere(path)) {
        return 0;
    }
    if (const int error = makeFolder(QFileInfo(path).path(), files); error != 0) {
        return error;
    }
    return files.mkdir(encodedPath(path).constData(), openToAll) == 0 || errno == EEXIST ? 0 : errno;
}

/// The administrator gets the whole text and the file's own path: what links lead to is found here, with the user's rights.
TextFile::WriteResult writeByAdministrator(const DocumentFile::Snapshot &snapshot, const TextFile::WriteOptions &options, FileCalls &files,
                                           Administrator *administrator, const std::stop_token &stop)
{
    const auto failed = [](const Error &error) { return TextFile::WriteError{error}; };
    if (!administrator) {
        return tl::make_unexpected(failed(saveError(snapshot.path, EACCES)));
    }
    const auto target = resolvedLinks(snapshot.path);
    const auto bytes = TextFile::encoded(snapshot.text, snapshot.path, snapshot.encoding, snapshot.lineEnding, options.encoding);
    if (!target || !bytes) {
        return tl::make_unexpected(failed(target ? bytes.error() : target.error()));
    }
    Administrator::Request request{.path = DocumentFile::identityOf(*target),
                                   .newFile = options.newFile,
                                   .expected = options.expected,
                                   .missingFolder = snapshot.manner.missingFolder};
    // Who chose a free name was asked about no file that comes there before the password does.
    struct stat status = {};
    const bool isFree = !request.expected && files.lstat(encodedPath(*target).constData(), &status) != 0 && errno == ENOENT;
    if (isFree) {
        request.expected = AtomicFile::Expectation{};
    }
    return administrator->write(request, *bytes, stop)
        .map([](const FileState &state) { return AtomicFile::Written{state}; })
        .map_error([&](const AtomicFile::WriteError &error) {
            return isFree && error.code == AtomicFile::changedError ? failed(saveError(*target, EEXIST)) : error;
        });
}

} // namespace

DocumentFile::WriteResult DocumentFile::write(const Snapshot &snapshot, FileCalls &files, Administrator *administrator,
                                              const std::stop_token &stop)
{
    const bool isByAdministrator = snapshot.manner.authority == Authority::administrator;
    if (snapshot.manner.missingFolder == MissingFolder::isMade && !isByAdministrator) {
        if (const int error = makeFolder(QFileInfo(snapshot.path).path(), files); error != 0) {
            return tl::make_unexpected(TextFile::WriteError{saveError(snapshot.path, error)});
        }
    }
    TextFile::WriteOptions options{.expected = snapshot.expected,
                                   .rescueFolder = snapshot.rescueFolder,
                                   .encoding = {snapshot.manner.missingCharacters, snapshot.form}};
    if (snapshot.expected && snapshot.expected->state && snapshot.expected->state->mode != 0) {
        // One that is gone gets back the permissions that it had.
        options.newFile = AtomicFile::NewFile(snapshot.expected->state->mode);
    }
    const auto written = isByAdministrator
                             ? writeByAdministrator(snapshot, options, files, administrator, stop)
                             : TextFile::write(snapshot.text, snapshot.path, snapshot.encoding, snapshot.lineEnding, files, options);
    return written.map([&](const AtomicFile::Written &done) {
        return Written{.state = done.state,
                       .inPlace = done.inPlace,
                       .identity = identityOf(snapshot.path),
                       .hash = textHash(snapshot.text, stop),
                       .isReadOnly = TextFile::isReadOnly(snapshot.path, files)};
    });
}

Result<QString> DocumentFile::copy(const Snapshot &snapshot, FileCalls &files)
{
    const auto copy = TextFile::nextAvailableCopy(snapshot.path);
    if (!copy) {
        return failure(formatted(localized(u"There is no free name for a copy of “%@” in its folder."),
                                 shownPath(QFileInfo(snapshot.path).fileName())));
    }
    struct stat original = {};
    TextFile::WriteOptions options{.encoding = {snapshot.manner.missingCharacters, snapshot.form}};
    if (files.stat(encodedPath(snapshot.path).constData(), &original) == 0) {
        options.newFile = AtomicFile::NewFile(original.st_mode & 0777);
    }
    return TextFile::write(snapshot.text, *copy, snapshot.encoding, snapshot.lineEnding, files, options)
        .map([&](const AtomicFile::Written &) { return *copy; })
        .map_error([](const TextFile::WriteError &error) { return Error(error); });
}

DocumentFile::ReadResult DocumentFile::read(const QString &path, const ReadAs &as, const TextSnapshot &current, FileCalls &files,
                                            const std::stop_token &stop)
{
    auto contents = as.forced ? TextFile::read(path, as.forced, files) : TextFile::readRemembered(path, as.remembered, files);
    return std::move(contents).map([&](TextFile::Contents read) {
        TextEdits difference = TextEdits::difference(current.text, read.text);
        const auto hash = textHash(read.text, stop);
        return Reading{.contents = std::move(read), .difference = std::move(difference), .revision = current.revision, .hash = hash};
    });
}

DocumentFile::ReadResult DocumentFile::readAgain(const QString &path, const Basis &basis, const TextSnapshot &current, FileCalls &files,
                                                 const std::stop_token &stop)
{
    auto contents = basis.position ? GrowingFile::readAdded(path, *basis.position, files) : std::nullopt;
    if (!contents) {
        return read(path, {.remembered = basis.remembered}, current, files, stop);
    }
    const Rope added = std::exchange(contents->text, current.text);
    const TextRange end{current.text.length(), 0};
    contents->text.replace(end, added);
    contents->isReadOnly = TextFile::isReadOnly(path, files);
    const auto seam = basis.position->breaks.endsWithCr() ? LineEndings::Seam::sharedLine : LineEndings::Seam::none;
    const LineEndings addedEndings = std::exchange(contents->form, basis.form).lineEndings;
    contents->form.lineEndings = basis.form.lineEndings.followedBy(addedEndings, seam);
    return Reading{.contents = *std::move(contents),
                   .difference = TextEdits(end, added),
                   .revision = current.revision,
                   .hash = basis.hash ? textHash(added, stop, *basis.hash) : std::nullopt};
}

QString DocumentFile::identityOf(const QString &path)
{
    if (const QByteArray file = realPath(encodedPath(path)); !file.isEmpty()) {
        return decodedPath(file);
    }
    const QFileInfo missing(QDir::cleanPath(path));
    const bool hasFolder = missing.isAbsolute() && !missing.isRoot();
    return hasFolder ? QDir(identityOf(missing.path())).filePath(missing.fileName()) : missing.filePath();
}

bool DocumentFile::hasChangedSince(const QString &path, const FileStamp &stamp, FileCalls &files)
{
    struct stat status = {};
    const auto time = [](const timespec &value) { return std::pair(value.tv_sec, value.tv_nsec); };
    return files.stat(encodedPath(path).constData(), &status) == 0 && time(status.st_mtim) >= time(stamp.modified);
}

bool DocumentFile::isStill(const QString &path, const FileState &state, FileCalls &files)
{
    struct stat status = {};
    if (files.stat(encodedPath(path).constData(), &status) != 0) {
        return false;
    }
    if (state.isSurelySameAs(status)) {
        return true;
    }
    return status.st_size == state.stamp.size && hasContent(path, state, files);
}

bool DocumentFile::hasContent(const QString &path, const FileState &state, FileCalls &files)
{
    // In this one every file can be read.
    const auto read = TextFile::read(path, TextEncoding::isoLatin1, files);
    return state.hash && read && read->state && read->state->hash == state.hash;
}
