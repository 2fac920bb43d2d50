// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/GrowingFile.h"

#include "Base/FaultyCalls.h"
#include "Files/DocumentFile.h"
#include "Files/TextHash.h"
#include "TestFolder.h"

#include <random>

using namespace Qt::StringLiterals;

namespace {

/// A file that others write to, also while it is read, and a reader who goes on where it was.
class GrowingFileTest : public testing::Test, protected TestFolder {
protected:
    void edit(qint64 offset, const QByteArray &bytes)
    {
        QFile open(file);
        EXPECT_TRUE(open.open(QIODevice::ReadWrite) && open.seek(offset) && open.write(bytes) == bytes.size());
    }
    void readAgain()
    {
        calls.bytesRead = 0;
        const auto again = DocumentFile::readAgain(file, {known.position, hash, known.form}, {known.text, 1}, calls, {});
        ASSERT_TRUE(again && again->difference.applied(known.text) == again->contents.text);
        known = again->contents;
        hash = again->hash;
    }
    /// The reader cannot be told from one that reads all.
    [[nodiscard]] bool isAsRead() const
    {
        const auto all = TextFile::read(file);
        return all->text == known.text && all->encoding == known.encoding && all->lineEnding == known.lineEnding &&
               all->form.lineEndings == known.form.lineEndings && all->state->hash == known.state->hash && hash == textHash(all->text);
    }

    const QString file = path(u"log"_s);
    FaultyCalls calls;
    TextFile::Contents known;
    std::optional<quint64> hash = textHash({});
};

QByteArray utf16(const QString &text)
{
    return {reinterpret_cast<const char *>(text.utf16()), 2 * text.size()};
}

struct Kind {
    const char *name;
    QByteArray front;
    /// What is appended, cut at any byte.
    QByteArray pieces;
    /// Of a hundred portions so many are read alone, at the least: characters that are cut off are another encoding for a while.
    int mostlyAlone;
};

TEST_F(GrowingFileTest, IsReadLikeOneThatIsReadAsAWhole)
{
    const QByteArray lines = QByteArray("a line like any other in a log\n").repeated(9'000);
    const Kind kinds[] = {
        {"UTF-8", lines, u"日 é 😀 plain words\r\nx\ry\n\r\r\n"_s.toUtf8(), 30},
        {"UTF-8 with a mark", "\xEF\xBB\xBF" + lines, "one\r\ntwo\rthree\n\n", 70},
        {"UTF-16 with a mark", "\xFF\xFE" + utf16(u"日本語𠀋"_s.repeated(30'000)), utf16(u"日\r\n𠀋\n\r"_s), 3},
        {"Latin 1", lines + "\xE9\xDF\xDF", "gr\xFC\xDF\xDF\n", 0},
    };
    std::minstd_rand random(3);
    const auto below = [&random](qsizetype end) { return qsizetype(random() % size_t(end)); };
    for (const Kind &kind : kinds) {
        int appended = 0;
        int alone = 0;
        qsizetype at = 0;
        const auto portion = [&] {
            const QByteArray bytes = kind.pieces.repeated(800).mid(at, 1 + below(below(10) == 0 ? 9'000 : 12));
            at = (at + bytes.size()) % kind.pieces.size();
            return bytes;
        };
        const std::function<void()> acts[] = {
            [&] { QFile::remove(file); },
            [&] { QFile::resize(file, QFile(file).size() - 1'000); },
            [&] { put(file, kind.front + kind.front); },
            [&] { edit(5 + below(QFile(file).size()), "XY"); },
            [&] { edit(FilePrefix::stretchLength, "zz"); },
            [] {},
        };
        put(file, kind.front);
        for (int step = 0; step < 50; ++step) {
            SCOPED_TRACE(testing::Message() << kind.name << ", step " << step);
            const bool isAppended = below(4) != 0;
            const auto &act = acts[isAppended ? 5 : below(5)];
            auto disturb = [&, isDone = false]() mutable {
                if (!std::exchange(isDone, true)) {
                    act();
                    edit(QFile(file).exists() ? QFile(file).size() : 0, QFile(file).exists() ? portion() : kind.front);
                }
            };
            if (const int turn = int(below(40)); turn < 12) {
                calls.before = [&, reads = 0](std::string_view call) mutable {
                    if (call == "read" && ++reads == turn) {
                        disturb();
                    }
                    return 0;
                };
                readAgain();
                calls.before = {};
            }
            disturb();
            readAgain();
            appended += isAppended ? 1 : 0;
            alone += isAppended && calls.bytesRead < FilePrefix::tailLength + 8 * FilePrefix::sampleLength + 9'000 ? 1 : 0;
            if (!isAsRead()) {
                ASSERT_EQ(&act, &acts[3]) << "only a few bytes can hide";
                ASSERT_TRUE(known.position && GrowingFile::check(file, *known.position, calls, {}).finding != GrowingFile::Finding::same);
                EXPECT_NE(known.state->hash, TextFile::read(file)->state->hash) << "no save may take it for the text";
                known.position.reset();
                readAgain();
            }
            ASSERT_TRUE(isAsRead());
        }
        EXPECT_GE(alone * 100, appended * kind.mostlyAlone) << kind.name << ": " << alone << " of " << appended;
    }
}

} // namespace
