// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/TextFile.h"

#include "Base/AtomicFile.h"
#include "Base/FilePath.h"
#include "Base/Translation.h"
#include "Files/EncodingDetection.h"
#include "Files/FileBytes.h"
#include "Files/FoldingSink.h"
#include "Files/ReadPosition.h"
#include "Text/RegularExpression.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

using Contents = TextFile::Contents;
using ReadError = TextFile::ReadError;

constexpr size_t binaryTestSize = 8192;

struct ByteOrderMark {
    TextEncoding encoding;
    QByteArrayView bytes;
};

/// In the order in which they are looked for: one mark is the beginning of another.
constexpr auto byteOrderMarks = std::to_array<ByteOrderMark>({
    {TextEncoding::utf8, {"\xEF\xBB\xBF", 3}},
    {TextEncoding::utf32LittleEndian, {"\xFF\xFE\0\0", 4}},
    {TextEncoding::utf32BigEndian, {"\0\0\xFE\xFF", 4}},
    {TextEncoding::utf16LittleEndian, {"\xFF\xFE", 2}},
    {TextEncoding::utf16BigEndian, {"\xFE\xFF", 2}},
});

QString lastComponent(QString path)
{
    while (path.size() > 1 && path.endsWith(u'/')) {
        path.chop(1);
    }
    return path.mid(path.lastIndexOf(u'/') + 1);
}

QString shownName(const QString &path)
{
    return shownPath(lastComponent(path));
}

/// One attempt to read a file of a size known beforehand.
class Reading final {
public:
    enum class Outcome { done, failed, changedMeanwhile };

    Reading(FileBytes &bytes, qint64 size, std::optional<TextEncoding> forcedEncoding)
        : end{.bytes = FilePrefix(size)}, m_bytes(bytes), m_size(size), m_forcedEncoding(forcedEncoding)
    {}

    /// Done: `contents` holds the text. Failed: `error` says why.
    Outcome run()
    {
        if (m_size > TextFile::largestSize) {
            return fail(ReadError::Kind::tooLarge);
        }
        if (const Outcome outcome = readHead(); outcome != Outcome::done) {
            return outcome;
        }
        if (m_forcedEncoding) {
            return readForced();
        }
        if (std::find(m_head.begin(), m_head.end(), 0) != m_head.end()) {
            return fail(ReadError::Kind::binary);
        }
        return readDetected();
    }
    /// The file goes on as it was decoded if what is added to it can be: nothing that comes before that was refused.
    [[nodiscard]] bool mayGoOn() const { return !m_forcedEncoding && !m_wasRefused && m_size >= ReadPosition::smallestFile; }

    /// But for the file's state.
    Contents contents;
    /// Behind the last byte, of a file that is still to be named.
    ReadPosition end;
    ReadError::Kind error = ReadError::Kind::notReadable;

private:
    enum class Pass { decoded, refused, unreadable, changedMeanwhile };

    Outcome fail(ReadError::Kind kind)
    {
        error = kind;
        return Outcome::failed;
    }

    Outcome readHead()
    {
        if (!m_bytes.goTo(0)) {
            return fail(ReadError::Kind::notReadable);
        }
        const auto block = m_bytes.next();
        if (!block) {
            return fail(ReadError::Kind::notReadable);
        }
        m_head.assign(block->begin(), block->begin() + std::ptrdiff_t(std::min(block->size(), binaryTestSize)));
        return Outcome::done;
    }

    [[nodiscard]] bool startsWith(QByteArrayView mark) const
    {
        return m_head.size() >= size_t(mark.size()) && std::memcmp(m_head.data(), mark.data(), size_t(mark.size())) == 0;
    }

    Outcome readForced()
    {
        const bool hasUtf8Mark = *m_forcedEncoding == TextEncoding::utf8 && startsWith(byteOrderMarks[0].bytes);
        const Pass pass =
            decode(*m_forcedEncoding, TextDecoder::strict(*m_forcedEncoding), hasUtf8Mark ? byteOrderMarks[0].bytes.size() : 0);
        if (pass == Pass::decoded && *m_forcedEncoding == TextEncoding::utf16) {
            noteUtf16Order();
        }
        return pass == Pass::refused ? fail(ReadError::Kind::undecodable) : outcomeOf(pass);
    }

    /// Its decoder has taken the mark off.
    void noteUtf16Order()
    {
        contents.form.utf16Order = TextEncoding::utf16BigEndian;
        for (const ByteOrderMark &mark : byteOrderMarks) {
            const bool isUtf16 = mark.encoding == TextEncoding::utf16LittleEndian || mark.encoding == TextEncoding::utf16BigEndian;
            if (isUtf16 && startsWith(mark.bytes)) {
                contents.form.utf16Order = mark.encoding;
                contents.form.hasByteOrderMark = true;
            }
        }
    }

    Outcome readDetected()
    {
        for (const ByteOrderMark &mark : byteOrderMarks) {
            if (!startsWith(mark.bytes)) {
                continue;
            }
            if (const Pass pass = decode(mark.encoding, TextDecoder::strict(mark.encoding), mark.bytes.size()); pass != Pass::refused) {
                return outcomeOf(pass);
            }
        }
        for (const TextEncoding encoding : TextFile::candidateEncodings) {
            if (const Pass pass = decode(encoding, TextDecoder::strict(encoding), 0); pass != Pass::refused) {
                if (encoding == TextEncoding::utf16) {
                    noteUtf16Order();
                }
                return outcomeOf(pass);
            }
        }
        const Outcome outcome = outcomeOf(decode(TextEncoding::utf8, TextDecoder::lossyUtf8(), 0));
        contents.isLossyDecode = true;
        return outcome;
    }

    Outcome outcomeOf(Pass pass)
    {
        switch (pass) {
        case Pass::decoded:
            return Outcome::done;
        case Pass::changedMeanwhile:
            return Outcome::changedMeanwhile;
        case Pass::refused:
        case Pass::unreadable:
            break;
        }
        return fail(ReadError::Kind::notReadable);
    }

    /// Bytes of which every text in the encoding has a multiple: a wrong number of them need not be read to be refused.
    static qint64 unitSize(TextEncoding encoding)
    {
        switch (encoding) {
        case TextEncoding::utf16:
        case TextEncoding::utf16BigEndian:
        case TextEncoding::utf16LittleEndian:
            return 2;
        case TextEncoding::utf32BigEndian:
        case TextEncoding::utf32LittleEndian:
            return 4;
        default:
            return 1;
        }
    }

    Pass decode(TextEncoding encoding, std::unique_ptr<TextDecoder> decoder, qint64 offset)
    {
        const Pass pass = tryToDecode(encoding, std::move(decoder), offset);
        m_wasRefused = m_wasRefused || pass == Pass::refused;
        return pass;
    }

    /// One pass over the file from `offset` on.
    Pass tryToDecode(TextEncoding encoding, std::unique_ptr<TextDecoder> decoder, qint64 offset)
    {
        if (!decoder || (m_size - offset) % unitSize(encoding) != 0) {
            return Pass::refused;
        }
        if (!m_bytes.goTo(offset)) {
            return Pass::unreadable;
        }
        FoldingSink sink;
        FilePrefix passed(m_size);
        passed.add(0, std::span(m_head).first(size_t(offset)));
        qint64 at = offset;
        while (true) {
            const auto block = m_bytes.next();
            if (!block) {
                return Pass::unreadable;
            }
            const qint64 blockEnd = at + qint64(block->size());
            if (blockEnd > m_size || (block->empty() && blockEnd != m_size)) {
                return Pass::changedMeanwhile;
            }
            if (block->empty()) {
                break;
            }
            passed.add(at, *block);
            at = blockEnd;
            if (!decoder->decode(*block, sink)) {
                return Pass::refused;
            }
        }
        if (!decoder->finish(sink)) {
            return Pass::refused;
        }
        contents = {sink.text(), encoding, sink.breaks().ending()};
        contents.form = {.hasByteOrderMark = offset > 0, .lineEndings = sink.lineEndings()};
        end = {.bytes = std::move(passed), .encoding = encoding, .breaks = sink.breaks()};
        return Pass::decoded;
    }

    FileBytes &m_bytes;
    qint64 m_size;
    std::optional<TextEncoding> m_forcedEncoding;
    bool m_wasRefused = false;
    std::vector<uchar> m_head;
};

/// Gives the ending of each line of a text, one after the other.
class LineEndingSequence final {
public:
    /// Where no order is given, all lines end with `ending`.
    LineEndingSequence(LineEnding ending, const Rope &order) : m_ending(ending), m_order(order) {}

    [[nodiscard]] bool isAllLineFeeds() const { return m_ending == LineEnding::lf && m_order.isEmpty(); }

    /// The units of the next chunk with every LF replaced by what ends its line.
    template<typename Unit>
    void apply(std::span<const Unit> units, std::vector<Unit> &out)
    {
        out.clear();
        for (const Unit unit : units) {
            if (unit == u'\n') {
                LineEnding ending = endingAt(m_line - (m_isBehindCr ? 1 : 0));
                if (ending == LineEnding::lf && m_hasEndedWithCr) {
                    ending = LineEnding::cr; // of an empty line, or it would go with the end of the line before
                }
                for (const QChar breakUnit : rawValue(ending)) {
                    out.push_back(Unit(breakUnit.unicode()));
                }
                m_hasEndedWithCr = ending == LineEnding::cr;
            } else {
                out.push_back(unit);
                m_hasEndedWithCr = false;
            }
            // Breaks count as in the rope: a pair of CR and LF in the text is one.
            m_line += unit == u'\r' || (unit == u'\n' && !m_isBehindCr) ? 1 : 0;
            m_isBehindCr = unit == u'\r';
        }
    }

private:
    [[nodiscard]] LineEnding endingAt(qsizetype line) { return line < m_order.length() ? LineEnding(m_cursor.at(line)) : m_ending; }

    LineEnding m_ending;
    Rope m_order;
    RopeCursor m_cursor{m_order};
    qsizetype m_line = 0;
    /// Of the text, and of what was written.
    bool m_isBehindCr = false;
    bool m_hasEndedWithCr = false;
};

/// What comes before the text.
QByteArrayView markOf(TextEncoding encoding)
{
    const auto mark = std::ranges::find(byteOrderMarks, encoding, &ByteOrderMark::encoding);
    return mark == byteOrderMarks.end() ? QByteArrayView() : mark->bytes;
}

/// Encodes a rope chunk by chunk.
class RopeEncoder final {
public:
    RopeEncoder(std::unique_ptr<TextEncoder> encoder, LineEnding lineEnding, const Rope &order, QByteArrayView mark)
        : m_encoder(std::move(encoder)), m_endings(std::make_unique<LineEndingSequence>(lineEnding, order)), m_mark(mark)
    {}

    /// What comes before all that is encoded.
    [[nodiscard]] QByteArrayView mark() const { return m_mark; }

    /// The bytes are put into `out`; false when a character cannot be represented.
    [[nodiscard]] bool encode(const Rope::Chunk &chunk, QByteArray &out)
    {
        if (chunk.narrow) {
            std::span units(chunk.narrow, size_t(chunk.length));
            if (!m_endings->isAllLineFeeds()) {
                m_endings->apply(units, m_narrow);
                units = m_narrow;
            }
            return m_encoder->encode(units, out);
        }
        std::span units(chunk.wide, size_t(chunk.length));
        if (!m_endings->isAllLineFeeds()) {
            m_endings->apply(units, m_wide);
            units = m_wide;
        }
        return m_encoder->encode(QStringView(units.data(), qsizetype(units.size())), out);
    }
    [[nodiscard]] bool finish(QByteArray &out) { return m_encoder->finish(out); }

private:
    std::unique_ptr<TextEncoder> m_encoder;
    std::unique_ptr<LineEndingSequence> m_endings;
    QByteArrayView m_mark;
    std::vector<uchar> m_narrow;
    std::vector<char16_t> m_wide;
};

/// Gives the bytes of `text` to `take`, piece by piece. False when a character cannot be represented.
Result<bool> encode(const Rope &text, RopeEncoder encoder, const std::function<Result<void>(const QByteArray &bytes)> &take)
{
    bool isRepresentable = true;
    QByteArray bytes = encoder.mark().toByteArray();
    Result<void> taken = bytes.isEmpty() ? Result<void>() : take(bytes);
    if (!taken) {
        return tl::make_unexpected(taken.error());
    }
    text.forEachChunk({0, text.length()}, [&](const Rope::Chunk &chunk) {
        bytes.resize(0);
        if (!encoder.encode(chunk, bytes)) {
            isRepresentable = false;
            return false;
        }
        taken = take(bytes);
        return taken.has_value();
    });
    bytes.resize(0);
    if (taken && (!isRepresentable || !encoder.finish(bytes))) {
        return false;
    }
    return taken.and_then([&] { return take(bytes); }).map([] { return true; });
}

Error inapplicable(const QString &path, TextEncoding encoding)
{
    return {formatted(localized(u"“%@” could not be saved in the text encoding “%@”."), shownName(path), displayName(encoding)),
            isSupported(encoding) ? TextFile::missingCharactersError : TextFile::inapplicableEncodingError};
}

/// Null where nothing can be written in that encoding.
std::unique_ptr<RopeEncoder> encoderFor(TextEncoding encoding, LineEnding lineEnding, const TextFile::EncodingOptions &options,
                                        TextEncoder::Mode mode)
{
    const FileForm form = options.form.value_or(FileForm());
    const TextEncoding exact = encoding == TextEncoding::utf16 ? form.utf16Order.value_or(encoding) : encoding;
    auto encoder = TextEncoder::make(exact, mode);
    // What is left of several kinds need not be the one that was the commonest.
    const LineEnding ending = options.form && !form.lineEndings.isMixed() ? form.lineEndings.onlyOne(lineEnding) : lineEnding;
    return encoder ? std::make_unique<RopeEncoder>(std::move(encoder), ending, form.lineEndings.order(),
                                                   form.hasByteOrderMark ? markOf(exact) : QByteArrayView())
                   : nullptr;
}

/// One after the other, until the text can be encoded.
std::span<const TextEncoder::Mode> modesFor(TextEncoding encoding, TextFile::MissingCharacters missingCharacters)
{
    static constexpr std::array modes = {TextEncoder::Mode::strict, TextEncoder::Mode::lossy};
    const bool mayLose = missingCharacters == TextFile::MissingCharacters::substituted || isUnicode(encoding);
    return std::span(modes).first(mayLose ? 2 : 1);
}

/// None when a character cannot be represented.
Result<std::optional<AtomicFile::Written>, TextFile::WriteError> writeEncoded(const Rope &text, AtomicFile file, RopeEncoder encoder,
                                                                              const TextFile::WriteOptions &options)
{
    const auto encoded = encode(text, std::move(encoder), [&](const QByteArray &bytes) { return file.write(bytes); });
    if (encoded && !*encoded) {
        return std::nullopt;
    }
    return encoded.and_then([&](bool) { return file.commit(options.expected); })
        .map([](const AtomicFile::Written &done) { return std::optional(done); })
        .map_error([&](const Error &error) {
            return TextFile::WriteError{error, file.foundState()};
        });
}

} // namespace

QString TextFile::ReadError::description() const
{
    const QString name = shownName(path);
    switch (kind) {
    case Kind::notReadable:
        return formatted(localized(found == PathKind::folder ? u"“%@” is a folder."
                                   : found == PathKind::special
                                       ? u"“%@” cannot be opened, because it is a pipe, a socket or a device and not a file."
                                       : u"“%@” could not be read."),
                         name);
    case Kind::tooLarge:
        return formatted(localized(u"“%@” is %@, which is larger than the 100 MB limit."), name, formattedByteCount(size));
    case Kind::undecodable:
        return formatted(localized(u"The text encoding of “%@” could not be determined."), name);
    case Kind::binary:
        return formatted(localized(u"“%@” appears to be a binary file."), name);
    }
    Q_UNREACHABLE();
}

std::optional<QString> TextFile::ReadError::recoverySuggestion() const
{
    switch (kind) {
    case Kind::undecodable:
        return localized(u"Try opening it with an explicit encoding from the File menu.");
    case Kind::binary:
        return localized(u"Opening it as text would show garbled content and could corrupt the file if saved.");
    case Kind::notReadable:
    case Kind::tooLarge:
        break;
    }
    return std::nullopt;
}

TextFile::ReadResult TextFile::read(const QString &path, std::optional<TextEncoding> forcedEncoding, FileCalls &calls)
{
    const auto failed = [&](ReadError::Kind kind, qint64 size = 0) { return tl::make_unexpected(ReadError{kind, path, size}); };
    const auto notThere = [&](PathKind found) {
        return tl::make_unexpected(ReadError{.kind = ReadError::Kind::notReadable, .path = path, .found = found});
    };
    struct stat named = {};
    if (calls.stat(encodedPath(path).constData(), &named) == 0) {
        if (const PathKind found = kindOf(named); found != PathKind::file) {
            return notThere(found);
        }
        if (named.st_size > largestSize) {
            return failed(ReadError::Kind::tooLarge, named.st_size);
        }
    }
    FileBytes bytes(path, calls);
    if (!bytes.isOpen()) {
        return notThere(errno == ENOENT ? PathKind::missing : PathKind::unknown);
    }
    // Passes over a file that others write to may see different bytes, so an attempt counts only if the file looks the same after it.
    // When it never does, its bytes are copied once and everything is decided on the copy; whether the file was that at any time is open.
    constexpr int attempts = 3;
    for (int attempt = 1;; ++attempt) {
        const auto before = bytes.status();
        const bool isLast = attempt > attempts;
        if (!before || (isLast && !bytes.copyToMemory(largestSize))) {
            return failed(ReadError::Kind::notReadable);
        }
        const qint64 size = isLast ? bytes.sizeInMemory() : before->st_size;
        Reading reading(bytes, size, forcedEncoding);
        const auto outcome = reading.run();
        const auto after = bytes.status();
        if (outcome == Reading::Outcome::changedMeanwhile || (!isLast && after && !isUntouched(*before, *after))) {
            continue;
        }
        if (outcome == Reading::Outcome::failed) {
            return failed(reading.error, reading.error == ReadError::Kind::tooLarge ? std::max<qint64>(size, before->st_size) : 0);
        }
        FileState state = FileState::of(*before, reading.end.bytes.hash());
        state.stamp.size = size;
        state.isFresh = state.isFresh || isLast;
        reading.contents.state = state;
        if (reading.mayGoOn()) {
            reading.end.device = before->st_dev;
            reading.end.inode = before->st_ino;
            reading.end.isAssumed = isLast;
            reading.contents.position = std::make_shared<const ReadPosition>(std::move(reading.end));
        }
        reading.contents.isReadOnly = isReadOnly(path, calls);
        if (!forcedEncoding && !reading.contents.form.hasByteOrderMark) {
            reading.contents.suggestedEncoding = EncodingDetection::suggestion(
                reading.contents.text, reading.contents.form.utf16Order.value_or(reading.contents.encoding), QLocale().language());
        }
        return std::move(reading.contents);
    }
}

TextFile::ReadResult TextFile::readRemembered(const QString &path, std::optional<TextEncoding> remembered, FileCalls &calls)
{
    if (remembered) {
        auto result = read(path, remembered, calls);
        if (result || result.error().kind != ReadError::Kind::undecodable) {
            return result;
        }
    }
    return read(path, std::nullopt, calls);
}

QByteArray TextFile::tellingBytes(const QString &path, FileCalls &calls)
{
    constexpr qsizetype wanted = 64 * 1024;
    constexpr int mostBlocks = 16;
    FileBytes file(path, calls);
    if (!file.isOpen() || !file.status()) {
        return {};
    }
    QByteArray head;
    QByteArray telling;
    QByteArray rest;
    for (int block = 0; block < mostBlocks && telling.size() < wanted; ++block) {
        const auto bytes = file.next();
        if (!bytes || bytes->empty()) {
            break;
        }
        rest.append(reinterpret_cast<const char *>(bytes->data()), qsizetype(bytes->size()));
        if (block == 0) {
            head = rest.first(std::min(rest.size(), wanted));
            if (head.contains('\0')) {
                return head; // it has no lines in bytes
            }
        }
        qsizetype start = 0;
        for (qsizetype end = rest.indexOf('\n'); end >= 0; end = rest.indexOf('\n', start)) {
            const QByteArrayView line = QByteArrayView(rest).sliced(start, end + 1 - start);
            if (std::ranges::any_of(line, [](char byte) { return uchar(byte) >= 0x80; })) {
                telling += line;
            }
            start = end + 1;
        }
        rest = rest.sliced(start);
    }
    if (std::ranges::any_of(rest, [](char byte) { return uchar(byte) >= 0x80; })) {
        telling += rest;
    }
    return telling.isEmpty() ? head : telling;
}

TextFile::WriteResult TextFile::write(const Rope &text, const QString &path, TextEncoding encoding, LineEnding lineEnding, FileCalls &calls,
                                      const WriteOptions &options)
{
    for (const TextEncoder::Mode mode : modesFor(encoding, options.encoding.missingCharacters)) {
        auto encoder = encoderFor(encoding, lineEnding, options.encoding, mode);
        if (!encoder) {
            break;
        }
        auto file = AtomicFile::open(path, options.newFile, calls, options.rescueFolder);
        if (!file) {
            return tl::make_unexpected(WriteError{file.error()});
        }
        const auto written = writeEncoded(text, *std::move(file), std::move(*encoder), options);
        if (!written) {
            return tl::make_unexpected(written.error());
        }
        if (*written) {
            return **written;
        }
    }
    return tl::make_unexpected(WriteError{inapplicable(path, encoding)});
}

Result<QByteArray> TextFile::encoded(const Rope &text, const QString &path, TextEncoding encoding, LineEnding lineEnding,
                                     const EncodingOptions &options)
{
    for (const TextEncoder::Mode mode : modesFor(encoding, options.missingCharacters)) {
        auto encoder = encoderFor(encoding, lineEnding, options, mode);
        if (!encoder) {
            break;
        }
        QByteArray all;
        const auto collect = [&all](const QByteArray &bytes) {
            all += bytes;
            return Result<void>();
        };
        if (encode(text, std::move(*encoder), collect).value_or(false)) {
            return all;
        }
    }
    return tl::make_unexpected(inapplicable(path, encoding));
}

bool TextFile::isReadOnly(const QString &path, FileCalls &calls)
{
    const QByteArray name = encodedPath(path);
    int result = calls.access(name.constData(), W_OK);
    if (result != 0 && errno == ENOENT) {
        result = calls.access(name.first(name.lastIndexOf('/') + 1).constData(), W_OK | X_OK);
    }
    return result != 0 && (errno == EACCES || errno == EPERM || errno == EROFS);
}

std::optional<QString> TextFile::nextAvailableCopy(const QString &path)
{
    const QString name = lastComponent(path);
    const QString folder = path.left(path.lastIndexOf(name));
    // A dot in front makes a hidden file, not an extension.
    const qsizetype dot = name.lastIndexOf(u'.');
    const bool hasExtension = dot > 0 && dot < name.size() - 1;
    const QString extension = hasExtension ? name.mid(dot) : QString();
    QString base = hasExtension ? name.left(dot) : name;
    if (const auto number = RegularExpression::compile(u" \\d+$").value().firstMatch(base)) {
        base.remove(number->range().location, number->range().length);
    }
    if (base.isEmpty()) {
        return std::nullopt;
    }
    constexpr int largestNumber = 9999;
    for (int number = 2; number <= largestNumber; ++number) {
        const QString copy = folder + base + u' ' + QString::number(number) + extension;
        struct stat status = {};
        // A symbolic link that leads nowhere takes its name all the same.
        if (FileCalls::system().lstat(encodedPath(copy).constData(), &status) != 0) {
            return copy;
        }
    }
    return std::nullopt;
}
