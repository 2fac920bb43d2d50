// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/GrowingFile.h"

#include "Base/FaultyCalls.h"
#include "Files/DocumentFile.h"
#include "Files/TextHash.h"
#include "TestFolder.h"

#include <cstdio>
#include <random>

using namespace Qt::StringLiterals;

namespace {

/// A file that others write to, and a reader who goes on where it was.
class GrowingFileTest : public testing::Test, protected TestFolder {
protected:
    void write(const QByteArray &bytes) { put(name, bytes); }
    void append(const QByteArray &bytes) { edit(QFile(file).size(), bytes); }
    void edit(qint64 offset, const QByteArray &bytes)
    {
        QFile open(file);
        EXPECT_TRUE(open.open(QIODevice::ReadWrite) && open.seek(offset) && open.write(bytes) == bytes.size());
    }
    /// Reads it again, and makes what was read the text that is known.
    void readAgain()
    {
        calls.bytesRead = 0;
        const auto again = DocumentFile::readAgain(file, {known.position, hash}, {known.text, 1}, calls, {});
        ASSERT_TRUE(again);
        EXPECT_TRUE(again->difference.applied(known.text) == again->contents.text);
        known = again->contents;
        hash = again->hash;
    }
    /// The reader must not be told from one that reads all.
    [[nodiscard]] testing::AssertionResult isAsRead() const
    {
        const auto all = TextFile::read(file);
        if (!all || !(all->text == known.text)) {
            return testing::AssertionFailure() << "another text";
        }
        if (all->encoding != known.encoding || all->lineEnding != known.lineEnding) {
            return testing::AssertionFailure() << "another encoding or line ending";
        }
        return all->state->hash == known.state->hash && hash == textHash(all->text) ? testing::AssertionSuccess()
                                                                                    : testing::AssertionFailure() << "another hash";
    }
    [[nodiscard]] GrowingFile::Finding checked() { return GrowingFile::check(file, *known.position, calls, {}).finding; }

    const QString name = u"log"_s;
    const QString file = path(name);
    FaultyCalls calls;
    TextFile::Contents known;
    std::optional<quint64> hash;
};

QByteArray utf16(const QString &text)
{
    return {reinterpret_cast<const char *>(text.utf16()), 2 * text.size()};
}

struct Kind {
    const char *name;
    QByteArray mark;
    QByteArray front;
    /// What is appended, cut at any byte.
    QByteArray pieces;
    /// How many of a hundred appended portions are to be read alone, at the least.
    int mostlyAlone;
};

/// A look at a file that grew may read so much, whatever its size, and what was added.
constexpr qint64 mostLookedAt = FilePrefix::tailLength + 8 * FilePrefix::sampleLength;

TEST_F(GrowingFileTest, IsReadLikeOneThatIsReadAsAWhole)
{
    const QByteArray lines = QByteArray("a line like any other in a log\n").repeated(9'000);
    const QByteArray wide = u"日本 é 😀\r\nx\ry\n\r\r\n"_s.toUtf8();
    const Kind kinds[] = {
        {"UTF-8", {}, lines, wide, 15},
        {"UTF-8 with a mark", "\xEF\xBB\xBF", lines, "one\r\ntwo\rthree\n\n", 85},
        {"UTF-16 with a mark", "\xFF\xFE", utf16(u"日本語𠀋"_s.repeated(30'000)), utf16(u"日\r\n𠀋\n\r"_s), 5},
        {"Latin 1", {}, lines + "\xE9\xDF\xDF", "gr\xFC\xDF\xDF\n", 0},
    };
    std::minstd_rand random(3);
    const auto below = [&random](qsizetype end) { return qsizetype(random() % size_t(end)); };
    for (const Kind &kind : kinds) {
        SCOPED_TRACE(kind.name);
        const QByteArray stream = kind.pieces.repeated(2'000);
        qsizetype at = 0;
        int appended = 0;
        int alone = 0;
        write(kind.mark + kind.front);
        known = {};
        hash = textHash({});
        readAgain();
        for (int step = 0; step < 80; ++step) {
            SCOPED_TRACE(step);
            const qint64 size = QFile(file).size();
            const auto portion = [&] {
                const QByteArray bytes = stream.mid(at, 1 + below(step % 10 == 0 ? 9'000 : 12));
                at = (at + bytes.size()) % stream.size();
                return bytes;
            };
            const int act = int(below(20));
            if (act < 16) {
                const QByteArray bytes = portion();
                append(bytes);
                readAgain();
                ++appended;
                alone += calls.bytesRead <= mostLookedAt + bytes.size() ? 1 : 0;
            } else if (act == 16) { // rotated
                QFile::remove(file);
                write(kind.mark + kind.front + portion());
                at = 0;
                readAgain();
            } else if (act == 17) { // written anew, and longer
                write(kind.mark + kind.front.sliced(kind.mark.isEmpty() ? 7 : 0).repeated(2));
                readAgain();
            } else if (act == 18) { // cut off
                QFile::resize(file, size - below(size / 8));
                readAgain();
            } else { // changed at some place, and longer
                edit(kind.mark.size() + below(size - 10), "XY");
                append(portion());
                readAgain();
                if (known.position && known.position->isAssumed && checked() != GrowingFile::Finding::same) {
                    EXPECT_NE(known.state->hash, TextFile::read(file)->state->hash) << "no save may take it for the text";
                    known.position.reset();
                    readAgain();
                }
            }
            ASSERT_TRUE(isAsRead());
        }
        EXPECT_GE(alone * 100, appended * kind.mostlyAlone) << alone << " of " << appended;
    }
}

TEST_F(GrowingFileTest, ATextThatIsNotCertainSaysSoUntilItIsChecked)
{
    write(QByteArray("0123456789abcdef").repeated(40'000));
    known = *TextFile::read(file);
    EXPECT_TRUE(known.position && !known.position->isAssumed);
    append("more\n");
    const auto added = GrowingFile::readAdded(file, *known.position, calls);
    ASSERT_TRUE(added);
    EXPECT_EQ(added->text.toString(), u"more\n"_s);
    EXPECT_TRUE(added->state->isFresh && added->position->isAssumed);
    const auto check = [&] { return GrowingFile::check(file, *added->position, calls, {}); };
    EXPECT_EQ(check().finding, GrowingFile::Finding::same);
    EXPECT_EQ(check().state->hash, added->state->hash);
    append("and more\n");
    EXPECT_EQ(check().finding, GrowingFile::Finding::same);
    EXPECT_FALSE(check().state) << "of the file as it is now more has to be said";
    edit(FilePrefix::sampleLength + 1, "X");
    EXPECT_EQ(check().finding, GrowingFile::Finding::different);
    QFile::resize(file, 5);
    EXPECT_EQ(check().finding, GrowingFile::Finding::different);
    QFile::remove(file);
    EXPECT_EQ(check().finding, GrowingFile::Finding::unknown);
}

TEST_F(GrowingFileTest, WhatChangesUnderTheReaderIsNoticed)
{
    const QByteArray content = QByteArray("0123456789abcdef").repeated(40'000);
    const QByteArray more = QByteArray("more\n").repeated(60'000);
    const std::pair<const char *, std::function<void()>> acts[] = {
        {"cut off", [&] { QFile::resize(file, content.size() - 9); }},
        {"cut off less", [&] { QFile::resize(file, content.size() + 9); }},
        {"overwritten", [&] { edit(content.size(), QByteArray(more).replace("more", "less")); }},
        {"overwritten before", [&] { edit(content.size() - 9, "less"); }},
        {"replaced", [&] { std::rename(put(u"other"_s, content + "other").toUtf8().constData(), file.toUtf8().constData()); }},
    };
    // Before the samples, the last bytes, and each of two blocks of what was added.
    for (const int turn : {1, 9, 10, 11}) {
        for (const auto &[what, act] : acts) {
            write(content);
            known = *TextFile::read(file);
            hash = textHash(known.text);
            append(more);
            calls.before = [turn, act = act, reads = 0](std::string_view call) mutable {
                if (call == "read" && ++reads == turn) {
                    act();
                }
                return 0;
            };
            readAgain();
            calls.before = {};
            EXPECT_TRUE(isAsRead() || (known.position && checked() != GrowingFile::Finding::same)) << what << " before read " << turn;
        }
    }
}

} // namespace
