// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/TextFile.h"

#include "Base/FaultyCalls.h"
#include "TestFolder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

using Kind = TextFile::ReadError::Kind;

class TextFileTest : public testing::Test, protected TestFolder {};

} // namespace

TEST(TextFileCorpus, ReadsEveryFileAsItsCaseSays)
{
    const QString folder = QStringLiteral(QUILLET_TEST_DATA "/encoding/");
    QFile file(folder + u"cases.json"_s);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QJsonArray cases = QJsonDocument::fromJson(file.readAll()).array();
    ASSERT_FALSE(cases.isEmpty());
    for (const auto &value : cases) {
        const QJsonObject expected = value.toObject();
        SCOPED_TRACE((expected[u"file"].toString() + u": "_s + expected[u"what"].toString()).toStdString());
        const auto forced = expected.contains(u"forced") ? std::optional(TextEncoding(quint32(expected[u"forced"].toInteger())))
                                                         : std::optional<TextEncoding>();
        const auto contents = TextFile::read(folder + expected[u"file"].toString(), forced);
        if (!contents) {
            // In the order of the kinds.
            constexpr std::array kinds = {"notReadable"_L1, "tooLarge"_L1, "undecodable"_L1, "binary"_L1};
            EXPECT_EQ(expected[u"error"].toString(), kinds[size_t(contents.error().kind)]);
            continue;
        }
        EXPECT_FALSE(expected.contains(u"error"));
        EXPECT_EQ(contents->text.toString(), expected[u"text"].toString());
        EXPECT_EQ(qint64(contents->encoding), expected[u"encoding"].toInteger());
        // In the order of the line endings.
        EXPECT_EQ(contents->lineEnding, LineEnding(QStringList{u"lf"_s, u"crlf"_s, u"cr"_s}.indexOf(expected[u"lineEnding"].toString())));
        EXPECT_FALSE(contents->isLossyDecode);
    }
}

TEST_F(TextFileTest, ReadsUpToTheLimitAndNoZeroBytesInTheFirst8192)
{
    const QByteArray front(8191, 'a');
    const auto binary = TextFile::read(put(u"a"_s, front + '\0' + "b"));
    ASSERT_FALSE(binary);
    EXPECT_EQ(binary.error().kind, Kind::binary);
    EXPECT_EQ(binary.error().description(), u"“a” appears to be a binary file.");
    EXPECT_TRUE(TextFile::read(put(u"a"_s, front + 'a' + '\0')));

    const QString file = put(u"big.txt"_s, {});
    ASSERT_TRUE(QFile::resize(file, TextFile::largestSize + 1));
    const auto tooLarge = TextFile::read(file);
    ASSERT_FALSE(tooLarge);
    EXPECT_EQ(tooLarge.error().kind, Kind::tooLarge);
    EXPECT_EQ(tooLarge.error().description(), u"“big.txt” is 104.9 MB, which is larger than the 100 MB limit.");

    ASSERT_TRUE(QFile::resize(file, TextFile::largestSize));
    const auto largest = TextFile::read(file, TextEncoding::ascii);
    ASSERT_TRUE(largest);
    EXPECT_EQ(largest->text.length(), TextFile::largestSize);
}

TEST_F(TextFileTest, SaysWhatItCannotRead)
{
    ASSERT_EQ(mkfifo(QFile::encodeName(path(u"pipe"_s)).constData(), 0600), 0);
    for (const QString &name : {u"missing"_s, u""_s}) {
        const auto contents = TextFile::read(path(name));
        ASSERT_FALSE(contents) << name.toStdString();
        EXPECT_EQ(contents.error().kind, Kind::notReadable);
    }
    EXPECT_EQ(TextFile::read(path(u"missing"_s) + u'/').error().description(), u"“missing” could not be read.");
    EXPECT_EQ(TextFile::read(path(u"missing"_s)).error().found, PathKind::missing);
    // Nobody writes to the pipe: what opened it would wait for ever.
    FaultyCalls untouched;
    untouched.before = [](std::string_view call) { return call == "open" ? EIO : 0; };
    const auto pipe = TextFile::read(path(u"pipe"_s), {}, untouched);
    ASSERT_FALSE(pipe);
    EXPECT_EQ(pipe.error().kind, Kind::notReadable);
    EXPECT_EQ(pipe.error().description(), u"“pipe” cannot be opened, because it is a pipe, a socket or a device and not a file.");
    EXPECT_EQ(TextFile::read(path({}) + u"/."_s, {}, untouched).error().description(), u"“.” is a folder.");
    EXPECT_TRUE(untouched.failedCall.empty()) << "to open a pipe lets its writer go on";

    const QString file = put(u"a"_s, QByteArray(600'000, 'a'));
    for (int step = 1;; ++step) {
        FaultyCalls calls;
        calls.failAt = step;
        const auto contents = TextFile::read(file, {}, calls);
        if (calls.steps < step) {
            EXPECT_GE(step, 8);
            break;
        }
        // A file whose attributes are not reported, nor whether it may be written, or that does not close, is read all the same.
        const bool isHarmless = calls.failedCall == "stat" || calls.failedCall == "close" || calls.failedCall == "access" ||
                                (calls.failedCall == "fstat" && step > 3);
        EXPECT_EQ(contents.has_value(), isHarmless) << calls.failedCall << " at step " << step;
        EXPECT_TRUE(contents ? contents->text.length() == 600'000 : contents.error().kind == Kind::notReadable);
    }
}

TEST_F(TextFileTest, JoinsWhatBlocksAndShortReadsCutApart)
{
    // Prime portions, so that characters and pairs of breaks are cut at every place sooner or later.
    const QString line = u"日本 é 😀 plain\r\n"_s;
    const QString text = line.repeated(40'000);
    const QString file = put(u"a"_s, text.toUtf8());
    FaultyCalls calls;
    calls.portion = 7'919;
    calls.before = [turn = 0](const char *call) mutable { return std::strcmp(call, "read") == 0 && ++turn % 3 == 0 ? EINTR : 0; };
    const auto contents = TextFile::read(file, {}, calls);
    ASSERT_TRUE(contents);
    EXPECT_EQ(contents->lineEnding, LineEnding::crlf);
    EXPECT_TRUE(contents->text.toString() == QString(text).replace(u"\r\n"_s, u"\n"_s));
}

TEST_F(TextFileTest, AFileThatChangesMeanwhileIsReadAsOneState)
{
    // Not UTF-8 at its very end, so that other encodings are tried; while they are, the file becomes UTF-8.
    const QByteArray before = QByteArray(300'000, 'a') + "\xE9";
    const QByteArray after = QByteArray(299'999, 'b') + "é";
    ASSERT_EQ(before.size(), after.size()) << "the size alone must not show it";
    const QString file = put(u"a"_s, before);
    FaultyCalls once;
    once.before = [&, reads = 0](const char *call) mutable {
        if (std::strcmp(call, "read") == 0 && ++reads == 5) {
            EXPECT_EQ(put(u"a"_s, after), file);
        }
        return 0;
    };
    const auto changed = TextFile::read(file, {}, once);
    ASSERT_TRUE(changed);
    EXPECT_EQ(changed->encoding, TextEncoding::utf8);
    EXPECT_TRUE(changed->text.toString().toUtf8() == after);

    // Never the same twice: no endless retries, and what is read is one state of the file.
    int size = 300'000;
    FaultyCalls always;
    always.before = [&](const char *call) {
        if (std::strcmp(call, "lseek") == 0) {
            size += 7;
            EXPECT_EQ(put(u"a"_s, QByteArray(size, char('a' + size % 26))), file);
            constexpr timespec longAgo[2] = {};
            EXPECT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(file).constData(), longAgo, 0), 0);
        }
        return 0;
    };
    const auto restless = TextFile::read(file, {}, always);
    ASSERT_TRUE(restless);
    EXPECT_LT(always.steps, 50);
    EXPECT_EQ(restless->text.length(), size);
    EXPECT_TRUE(restless->text.toString() == QString(size, QChar(u'a' + size % 26)));
    EXPECT_TRUE(restless->state && restless->state->isFresh) << "what it is on disk is for its bytes to say";
    EXPECT_TRUE(restless->state->stamp.size == size && restless->state->hash == TextFile::read(file)->state->hash);
}

TEST_F(TextFileTest, LinesThatTellEncodingsApartAreFoundToTheEnd)
{
    const QByteArray plain = QByteArray("plain\n").repeated(20'000);
    const QString file = put(u"a"_s, plain + "gr\xFC\xDF\n" + plain + "\xE9");
    EXPECT_EQ(TextFile::tellingBytes(file, FileCalls::system()), "gr\xFC\xDF\n\xE9");
}

TEST_F(TextFileTest, WritesWhatItReads)
{
    const QString narrow = u"line of é\n"_s.repeated(2000);
    const QString text = narrow + u"日本 😀\n"_s.repeated(2000) + narrow;
    const Rope rope(text);
    for (const TextEncoding encoding : {TextEncoding::utf8, TextEncoding::utf16, TextEncoding::utf32LittleEndian}) {
        for (const LineEndingRow &row : lineEndings) {
            SCOPED_TRACE(displayName(encoding).toStdString());
            ASSERT_TRUE(TextFile::write(rope, path(u"a"_s), encoding, row.ending));
            const QByteArray written = read(u"a"_s);
            EXPECT_EQ(decodedStrictly(written, encoding), QString(text).replace(u"\n"_s, row.rawValue.toString()));
            const auto contents = TextFile::read(path(u"a"_s), encoding);
            ASSERT_TRUE(contents);
            EXPECT_TRUE(contents->text == rope);
            EXPECT_EQ(contents->lineEnding, row.ending);
        }
    }
    ASSERT_TRUE(TextFile::write(Rope(), path(u"a"_s), TextEncoding::utf8, LineEnding::crlf));
    EXPECT_EQ(read(u"a"_s), "");
    // A mark that was read is not written back.
    ASSERT_TRUE(TextFile::write(TextFile::read(put(u"b"_s, "\xEF\xBB\xBFhi"))->text, path(u"b"_s), TextEncoding::utf8, LineEnding::lf));
    EXPECT_EQ(read(u"b"_s), "hi");
}

TEST_F(TextFileTest, SubstitutesFromTheBeginningOrRefusesTheEncoding)
{
    // The strict attempt has written a good deal before it meets the character.
    const QString front = u"x\n"_s.repeated(300'000);
    ASSERT_TRUE(TextFile::write(Rope(front + u"5 €"_s), path(u"a"_s), TextEncoding::ascii, LineEnding::crlf));
    EXPECT_TRUE(read(u"a"_s) == QByteArray("x\r\n").repeated(300'000) + "5 ?");
    ASSERT_TRUE(TextFile::write(Rope(u"a"_s + QChar(0xD83D)), path(u"a"_s), TextEncoding::utf8, LineEnding::lf));
    EXPECT_EQ(read(u"a"_s), "a\xEF\xBF\xBD");

    const auto refused = TextFile::write(Rope(u"new"), path(u"a"_s), TextEncoding(77), LineEnding::lf);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().code, TextFile::inapplicableEncodingError);
    EXPECT_TRUE(refused.error().message.contains(u"“a”"));
    EXPECT_EQ(read(u"a"_s), "a\xEF\xBF\xBD");

    FaultyCalls full;
    full.before = [](const char *call) { return std::strcmp(call, "write") == 0 ? ENOSPC : 0; };
    const auto failed = TextFile::write(Rope(front), path(u"a"_s), TextEncoding::utf8, LineEnding::lf, full);
    ASSERT_FALSE(failed);
    EXPECT_TRUE(failed.error().message.contains(u"disk is full"));
    EXPECT_EQ(read(u"a"_s), "a\xEF\xBF\xBD");
    EXPECT_EQ(names(), QStringList{u"a"_s});
}

TEST_F(TextFileTest, NamesCopies)
{
    const auto copyOf = [&](const QString &name) {
        const auto copy = TextFile::nextAvailableCopy(path(name));
        return copy ? QFileInfo(*copy).fileName() : u"(none)"_s;
    };
    const std::pair<QString, QString> cases[] = {
        {u"a.txt"_s, u"a 2.txt"_s},       {u"a 7.txt"_s, u"a 2.txt"_s}, {u"a"_s, u"a 2"_s},
        {u" 12"_s, u"(none)"_s},          {u" 12.txt"_s, u"(none)"_s},  {u"a 1 2"_s, u"a 1 2"_s},
        {u"a.tar.gz"_s, u"a.tar 2.gz"_s}, {u"12"_s, u"12 2"_s},         {u".profile"_s, u".profile 2"_s},
        {u"a12.c"_s, u"a12 2.c"_s},
    };
    for (const auto &[name, expected] : cases) {
        EXPECT_EQ(copyOf(name), expected) << name.toStdString();
    }
    put(u"a 2.txt"_s, {});
    ASSERT_TRUE(QFile::link(u"nowhere"_s, path(u"a 3.txt"_s)));
    EXPECT_EQ(copyOf(u"a.txt"_s), u"a 4.txt");
    for (int number = 2; number <= 9999; ++number) {
        ASSERT_EQ(::symlink("x", QFile::encodeName(path(u"full %1"_s.arg(number))).constData()), 0);
    }
    EXPECT_EQ(copyOf(u"full"_s), u"(none)");
}
