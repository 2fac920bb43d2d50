// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileCalls.h"
#include "Base/FileState.h"
#include "Base/Result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <vector>

/// Replaces a file as one step: whoever looks sees the old content or the new one, never a mixture, through crashes and power cuts too.
///
/// The content goes to a temporary file in the same folder, is flushed to disk and renamed over the target; then the folder is
/// flushed. Until `commit()` succeeds the target is untouched, and whatever fails, the temporary file is removed. (Only when the
/// process is killed does one stay behind, hidden, its name beginning with ".quillet-"; the next write in the folder removes it.)
///
/// An existing target keeps its mode, its owner and group, its ACL and its extended attributes; at no instant has anybody access to the
/// content who may not read the target. A symbolic link stays and the file that it leads to is written, even when that does not exist yet.
///
/// Where a rename would lose some of that or cannot work (hard links, a file of another owner, a folder that is read-only, a mounted
/// file) the target is written in place, if there is a folder for rescue: there the content is on disk first, with the name of the target
/// beside it, until the target is. Without such a folder the new file gets what can be given to it, or the write fails.
///
/// What others wrote meanwhile is not replaced: commit() can be told what the file has to be, looks once more at the last moment, and
/// fails with `changedError` when it is another.
///
/// Refused with the reason, rather than replaced: a file that the user may not write to, and a name that is a folder, a pipe, a socket
/// or a device. Errors carry `errno` and a sentence with the file's name. Any thread, one object per thread at a time.
class AtomicFile final {
public:
    /// Permissions of a file that did not exist, before the user's mask is applied. Any other mode will do.
    enum class NewFile : mode_t { readableByOthers = 0666, privateToUser = 0600 };

    /// What the target has to be to be replaced: no file, when there is no state. One that is gone may be made again.
    struct Expectation {
        std::optional<FileState> state = std::nullopt;
    };
    /// `Error::code` of a commit that found another file than expected.
    static constexpr int changedError = 518;
    /// `Error::code` where a symbolic link of another user, in a folder where everybody may write, leads to the file.
    static constexpr int strangersLinkError = 519;
    struct WriteError : Error {
        /// Of `changedError`: the file that was found.
        std::optional<FileState> found = std::nullopt;
    };

    /// Why a target was not replaced but written in place.
    enum class InPlace { no, hardLinks, folder, owner, attributes, mount };
    struct Written {
        /// The file as it was before others could touch it.
        FileState state;
        InPlace inPlace = InPlace::no;
    };

    /// `rescueFolder` is empty where nothing may be written in place, else absolute; it is made when it is needed.
    [[nodiscard]] static Result<AtomicFile> open(const QString &path, NewFile newFile, FileCalls &calls, const QString &rescueFolder = {});
    [[nodiscard]] static Result<AtomicFile> open(const QString &path, NewFile newFile) { return open(path, newFile, FileCalls::system()); }

    AtomicFile(AtomicFile &&other) noexcept;
    AtomicFile &operator=(AtomicFile &&) = delete;
    /// Without a commit: as if nothing had been opened.
    ~AtomicFile();

    /// After a failure the object is good for nothing but to be destroyed.
    [[nodiscard]] Result<void> write(QByteArrayView bytes);
    /// Once, at the end. When the last of its steps fails, the folder's flush, the new content is in place but may not be on disk.
    [[nodiscard]] Result<Written> commit(const std::optional<Expectation> &expected = std::nullopt);
    /// The target as it was found by a commit that failed with `changedError`.
    [[nodiscard]] const std::optional<FileState> &foundState() const { return m_found; }

    /// The file that is written: the path given, symbolic links followed.
    [[nodiscard]] QString target() const;

private:
    AtomicFile(FileCalls &calls, QByteArray target, NewFile newFile, QByteArray rescueFolder);

    [[nodiscard]] Result<void> examineTarget();
    [[nodiscard]] bool mayWriteInPlace() const { return m_targetExists && !m_rescueFolder.isEmpty(); }
    [[nodiscard]] Result<void> create();
    [[nodiscard]] int createIn(const QByteArray &folder, const QByteArray &begin, mode_t mode);
    [[nodiscard]] Result<void> flushBuffer();
    [[nodiscard]] Result<void> writeAll(int file, QByteArrayView bytes) const;
    [[nodiscard]] Result<Written> replace(const std::optional<Expectation> &expected);
    [[nodiscard]] Result<void> takeOverIdentity();
    [[nodiscard]] Result<mode_t> takeOverOwner(const struct stat &wanted);
    [[nodiscard]] Result<void> takeOverAttributes();
    [[nodiscard]] Result<void> takeOverMode(mode_t mode);
    [[nodiscard]] Result<void> moveToRescue();
    [[nodiscard]] Result<Written> writeInPlace(const std::optional<Expectation> &expected);
    [[nodiscard]] Result<void> fillTarget(int target, qint64 sizeBefore);
    [[nodiscard]] Result<void> copyPart(int from, int to, qint64 offset, qint64 count);
    [[nodiscard]] Result<void> closeTemporary();
    [[nodiscard]] Result<void> replaceTarget(int folder, const std::optional<Expectation> &expected);
    [[nodiscard]] Result<bool> examineChanges(int folder, const Expectation &expected);
    [[nodiscard]] Result<quint64> hashOfTarget();
    [[nodiscard]] tl::unexpected<Error> changed(const struct stat &status, std::optional<quint64> hash);
    [[nodiscard]] tl::unexpected<Error> failed(int error) const;
    void discard();

    FileCalls *m_calls;
    QByteArray m_target;
    /// With its slash; empty for none.
    QByteArray m_rescueFolder;
    InPlace m_inPlace = InPlace::no;
    /// Empty when there is none (any more).
    QByteArray m_temporary;
    /// Beside it, when that is in the folder for rescue: the name of the target.
    QByteArray m_note;
    QByteArray m_buffer;
    ContentHash m_hash;
    std::optional<FileState> m_found;
    /// The temporary file's, until it gets the target's.
    mode_t m_mode;
    int m_file = -1;
    bool m_targetExists = false;
    /// Some of the target was written, not all.
    bool m_isDamaged = false;
};

/// `bytes` as the whole content of the file at `path`, in the manner of AtomicFile.
[[nodiscard]] Result<void> writeAtomically(const QString &path, QByteArrayView bytes, AtomicFile::NewFile newFile,
                                           FileCalls &calls = FileCalls::system());

/// Of a write to `path` that failed with `code`, an `errno`.
[[nodiscard]] Error saveError(const QString &path, int code);

/// The path that writing through `path` reaches: symbolic links at its end are followed, also one that leads nowhere. Fails with ELOOP.
[[nodiscard]] Result<QString> resolvedLinks(const QString &path);

/// Contents on their way into files that were written in place, when their writers did not come to the end.
struct RescuedFile {
    /// Absolute; in the folder for rescue.
    QString content;
    QString target;
    /// It may still come to the end.
    bool isBeingWritten = false;
};
/// Names of temporary files begin with it, after what is common to all, so that others see whether their program still runs.
[[nodiscard]] QByteArray programMark(qint64 program);
[[nodiscard]] std::vector<RescuedFile> rescuedFiles(const QString &folder);
void removeRescued(const RescuedFile &rescued, FileCalls &calls = FileCalls::system());

/// Makes the folder `path` and what is missing above it, for the user only; then they are on disk. What fails shows when a file is written
/// there.
void makePrivateFolder(const QString &path, FileCalls &calls = FileCalls::system());

/// Which files the folder has is on disk now, where the file system can be asked for it so.
void flushFolder(const QString &path, FileCalls &calls);
