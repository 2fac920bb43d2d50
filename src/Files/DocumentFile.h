// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Administrator.h"
#include "Files/TextFile.h"
#include "Text/TextEdits.h"
#include "Text/TextStorage.h"

#include <stop_token>

/// What documents ask of their files. Every function here works on copies, takes the time that the file system takes, and so is for
/// workers. Keeps no state.
class DocumentFile final {
public:
    DocumentFile() = delete;

    using MissingFolder = Administrator::MissingFolder;
    /// With whose rights.
    enum class Authority { user, administrator };
    /// Whether the user wanted it saved now.
    enum class Occasion { asked, byItself };
    struct Manner {
        MissingFolder missingFolder = MissingFolder::isError;
        Authority authority = Authority::user;
        /// Nothing is substituted that the user was not asked about.
        TextFile::MissingCharacters missingCharacters = TextFile::MissingCharacters::refused;
        Occasion occasion = Occasion::asked;

        friend bool operator==(const Manner &, const Manner &) = default;
    };
    /// A text on its way into a file.
    struct Snapshot {
        QString path;
        Rope text;
        quint64 revision = 0;
        TextEncoding encoding = TextEncoding::utf8;
        LineEnding lineEnding = LineEnding::lf;
        /// See TextFile::EncodingOptions.
        std::optional<FileForm> form = std::nullopt;
        /// What the file has to be so that it may be written over; none when it may be anything.
        std::optional<AtomicFile::Expectation> expected = std::nullopt;
        /// See AtomicFile::open().
        QString rescueFolder = {};
        Manner manner = {};
    };
    struct Written {
        /// The file as it was written; what others did to it since is not in it.
        FileState state;
        AtomicFile::InPlace inPlace = AtomicFile::InPlace::no;
        QString identity;
        /// None soon after a stop was requested.
        std::optional<quint64> hash;
        /// See TextFile::isReadOnly().
        bool isReadOnly = false;
    };
    using WriteResult = Result<Written, TextFile::WriteError>;
    /// `administrator` is null where there is none.
    [[nodiscard]] static WriteResult write(const Snapshot &snapshot, FileCalls &files, Administrator *administrator,
                                           const std::stop_token &stop);

    /// Writes the text beside its file, under a free name, which it returns.
    [[nodiscard]] static Result<QString> copy(const Snapshot &snapshot, FileCalls &files);

    struct Reading {
        TextFile::Contents contents;
        /// Against the text that was given, which was `revision`.
        TextEdits difference;
        quint64 revision = 0;
        /// Of the text; none where the hash of what was known before is missing.
        std::optional<quint64> hash = std::nullopt;
    };
    using ReadResult = Result<Reading, TextFile::ReadError>;
    struct ReadAs {
        /// This or nothing.
        std::optional<TextEncoding> forced = std::nullopt;
        /// See TextFile::readRemembered(); where nothing is forced.
        std::optional<TextEncoding> remembered = std::nullopt;
    };
    [[nodiscard]] static ReadResult read(const QString &path, const ReadAs &as, const TextSnapshot &current, FileCalls &files,
                                         const std::stop_token &stop);

    /// What is known of a file that had the text which is given.
    struct Basis {
        /// Null where the file has to be read as a whole.
        std::shared_ptr<const ReadPosition> position = nullptr;
        /// Of the text, if it is known.
        std::optional<quint64> hash = std::nullopt;
        FileForm form = {};
        std::optional<TextEncoding> remembered = std::nullopt;
    };
    /// The same as read() without an encoding, but of a file that only grew it reads what was added. See GrowingFile.
    [[nodiscard]] static ReadResult readAgain(const QString &path, const Basis &basis, const TextSnapshot &current, FileCalls &files,
                                              const std::stop_token &stop);

    /// One name for a file, however it is reached; of a file that is not there that of its folder, and its name.
    [[nodiscard]] static QString identityOf(const QString &path);
    /// Also at the same time, since clocks tick a few times in a hundredth of a second only.
    [[nodiscard]] static bool hasChangedSince(const QString &path, const FileStamp &stamp, FileCalls &files);
    /// The bytes are those of `state`. False for a file that cannot be read.
    [[nodiscard]] static bool hasContent(const QString &path, const FileState &state, FileCalls &files = FileCalls::system());
    /// Nobody wrote the file since it was as in `state`, or only the same bytes. Reads the file where that has to be known; one that cannot
    /// be read counts as changed.
    [[nodiscard]] static bool isStill(const QString &path, const FileState &state, FileCalls &files);
};
