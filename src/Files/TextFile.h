// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/AtomicFile.h"
#include "Base/FileCalls.h"
#include "Base/FileState.h"
#include "Base/PathKind.h"
#include "Base/Result.h"
#include "Files/FileForm.h"
#include "Files/LineEnding.h"
#include "Files/TextEncoding.h"
#include "Text/Rope.h"

#include <QString>

#include <array>
#include <memory>
#include <optional>

struct ReadPosition;

/// Turns files into editable text and back: whether a file may be opened at all, in which encoding it is, how it breaks its lines.
/// Keeps no state. Any thread.
class TextFile final {
public:
    TextFile() = delete;

    /// The largest file that is read, in bytes.
    static constexpr qint64 largestSize = 100 * 1024 * 1024;
    /// `Error::code` of a write in an encoding that nothing here can write.
    static constexpr int inapplicableEncodingError = 517;
    /// `Error::code` of a write that would have had to substitute characters.
    static constexpr int missingCharactersError = 521;

    struct Contents {
        /// Every line break is a single LF.
        Rope text;
        TextEncoding encoding = TextEncoding::utf8;
        LineEnding lineEnding = LineEnding::lf;
        /// Nothing decoded the bytes cleanly and U+FFFD stands for what was not UTF-8.
        bool isLossyDecode = false;
        /// What it looks like rather than `encoding`, which was found out; none for nothing.
        std::optional<TextEncoding> suggestedEncoding = std::nullopt;
        /// What the text does not say.
        FileForm form = {};
        /// The file as it was when it was read. Never certain (`FileState::isFresh`) when it kept changing.
        std::optional<FileState> state = std::nullopt;
        /// Where reading may go on when the file grows; null where it must be read as a whole again. For GrowingFile.
        std::shared_ptr<const ReadPosition> position = nullptr;
        /// See isReadOnly(); when it was read.
        bool isReadOnly = false;
    };

    struct ReadError {
        enum class Kind { notReadable, tooLarge, undecodable, binary };

        Kind kind = Kind::notReadable;
        QString path;
        /// Bytes; only for `tooLarge`.
        qint64 size = 0;
        /// What stands where the file should be; only for `notReadable`.
        PathKind found = PathKind::unknown;

        /// A sentence with the file's name.
        [[nodiscard]] QString description() const;
        /// What to do about it; none when there is nothing.
        [[nodiscard]] std::optional<QString> recoverySuggestion() const;
    };

    using ReadResult = Result<Contents, ReadError>;

    /// Encodings tried in this order when a file has no byte-order mark.
    static constexpr std::array candidateEncodings = {
        TextEncoding::utf8,      TextEncoding::utf16,       TextEncoding::utf16BigEndian, TextEncoding::utf16LittleEndian,
        TextEncoding::isoLatin1, TextEncoding::windows1252, TextEncoding::macOSRoman,
    };

    /// What the user may choose from, in the order of menus.
    static constexpr std::array selectableEncodings = {
        TextEncoding::utf8,        TextEncoding::utf16,      TextEncoding::utf16BigEndian, TextEncoding::utf16LittleEndian,
        TextEncoding::isoLatin1,   TextEncoding::isoLatin2,  TextEncoding::windows1250,    TextEncoding::windows1251,
        TextEncoding::windows1252, TextEncoding::macOSRoman, TextEncoding::ascii,
    };

    /// Reads the file block by block into the rope: beside the text itself it needs less than a megabyte. With `forcedEncoding` the
    /// bytes are that or nothing, and a file that looks binary is read too. A file that others change meanwhile is read anew. What is no
    /// regular file is not even opened, since that may have effects of its own.
    [[nodiscard]] static ReadResult read(const QString &path, std::optional<TextEncoding> forcedEncoding, FileCalls &calls);
    [[nodiscard]] static ReadResult read(const QString &path, std::optional<TextEncoding> forcedEncoding = std::nullopt)
    {
        return read(path, forcedEncoding, FileCalls::system());
    }

    /// The same as one that the user once named, unless the file is not that any more.
    [[nodiscard]] static ReadResult readRemembered(const QString &path, std::optional<TextEncoding> remembered, FileCalls &calls);

    /// The bytes that tell most about a file's encoding: lines with other bytes than ASCII, else its beginning. Empty when it cannot be
    /// read.
    [[nodiscard]] static QByteArray tellingBytes(const QString &path, FileCalls &calls);

    /// The user may not write to the file, or where there is none to its folder. What gives no answer is not.
    [[nodiscard]] static bool isReadOnly(const QString &path, FileCalls &calls);

    /// What becomes of characters that the encoding lacks. Unicode encodings lack none but halves of surrogate pairs, which are always
    /// substituted.
    enum class MissingCharacters { substituted, refused };

    struct EncodingOptions {
        MissingCharacters missingCharacters = MissingCharacters::substituted;
        /// None for the normal form: no byte-order mark, all lines end alike. A form that does not fit encoding and line ending gives way.
        std::optional<FileForm> form = std::nullopt;
    };
    /// The bytes that a file with `text` has; see write().
    [[nodiscard]] static Result<QByteArray> encoded(const Rope &text, const QString &path, TextEncoding encoding, LineEnding lineEnding,
                                                    const EncodingOptions &options);

    struct WriteOptions {
        AtomicFile::NewFile newFile = AtomicFile::NewFile::readableByOthers;
        /// None when any file may be replaced.
        std::optional<AtomicFile::Expectation> expected = std::nullopt;
        /// See AtomicFile::open().
        QString rescueFolder = {};
        EncodingOptions encoding = {};
    };
    using WriteError = AtomicFile::WriteError;
    using WriteResult = Result<AtomicFile::Written, WriteError>;

    /// Writes `text`, whose breaks are LF, in the manner of AtomicFile. Unless `options` refuse them, characters that the encoding lacks
    /// are substituted without a word: whoever saves for the user refuses them, and asks. No byte-order mark is added, except by
    /// `TextEncoding::utf16` and as `options` say. Returns the file as it was before others could touch it. Fails as AtomicFile does, or
    /// with `inapplicableEncodingError` or `missingCharactersError`.
    [[nodiscard]] static WriteResult write(const Rope &text, const QString &path, TextEncoding encoding, LineEnding lineEnding,
                                           FileCalls &calls, const WriteOptions &options);
    [[nodiscard]] static WriteResult write(const Rope &text, const QString &path, TextEncoding encoding, LineEnding lineEnding,
                                           FileCalls &calls = FileCalls::system())
    {
        return write(text, path, encoding, lineEnding, calls, WriteOptions());
    }

    /// A free name for a copy beside the file: "a 2.txt" for "a.txt" and for "a 7.txt". None when the name would consist of the number
    /// only, or 2 … 9999 are taken.
    [[nodiscard]] static std::optional<QString> nextAvailableCopy(const QString &path);
};
