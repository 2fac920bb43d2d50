// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What files have beside their text: byte-order marks, and lines that do not all end alike.
#include "DocumentSurroundings.h"
#include "Model/EncodingMemory.h"
#include "Model/FileMemory.h"
#include "TestFolder.h"

#include <random>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

struct FormRow {
    TextEncoding encoding;
    /// In which the bytes are.
    TextEncoding exact;
    QByteArray mark;
};

const std::vector<FormRow> formRows = {
    {TextEncoding::utf8, TextEncoding::utf8, ""},
    {TextEncoding::utf8, TextEncoding::utf8, "\xEF\xBB\xBF"},
    {TextEncoding::windows1252, TextEncoding::windows1252, ""},
    {TextEncoding::utf16, TextEncoding::utf16LittleEndian, "\xFF\xFE"},
    {TextEncoding::utf16, TextEncoding::utf16BigEndian, "\xFE\xFF"},
    {TextEncoding::utf16, TextEncoding::utf16BigEndian, ""},
    {TextEncoding::utf16LittleEndian, TextEncoding::utf16LittleEndian, ""},
};

/// A text as a list of characters and line breaks; the plain truth that the program is compared with.
struct PlainText {
    struct Unit {
        char16_t character = 0;
        std::optional<LineEnding> ending = std::nullopt;
    };
    std::vector<Unit> units;

    [[nodiscard]] QByteArray bytes(const FormRow &form) const
    {
        QString text;
        for (const Unit &unit : units) {
            // An empty line behind CR cannot end with LF.
            const bool wouldJoin = unit.ending == LineEnding::lf && text.endsWith(u'\r');
            text +=
                unit.ending ? (wouldJoin ? rawValue(LineEnding::cr) : rawValue(*unit.ending)).toString() : QString(QChar(unit.character));
        }
        return form.mark + encoded(text, form.exact, TextEncoder::Mode::strict).value();
    }
    [[nodiscard]] std::vector<LineEnding> endings(size_t from, size_t to) const
    {
        std::vector<LineEnding> found;
        for (size_t index = from; index < to; ++index) {
            if (units[index].ending) {
                found.push_back(*units[index].ending);
            }
        }
        return found;
    }
    void replace(size_t from, size_t to, const QString &text, LineEnding fallback)
    {
        const auto removed = endings(from, to);
        const auto before = endings(0, from);
        const auto behind = endings(to, units.size());
        std::vector<Unit> inserted;
        size_t breaks = 0;
        LineEnding last = removed.empty() ? (before.empty() ? fallback : before.back()) : removed.back();
        for (const QChar unit : text) {
            if (unit != u'\n') {
                inserted.push_back({unit.unicode()});
            } else {
                inserted.push_back({0, breaks < removed.size() ? removed[breaks] : behind.empty() ? last : behind.front()});
                ++breaks;
            }
        }
        units.erase(units.begin() + qsizetype(from), units.begin() + qsizetype(to));
        units.insert(units.begin() + qsizetype(from), inserted.begin(), inserted.end());
    }
};

/// What they are about is not whether the disk has it.
class UnsyncedCalls final : public FileCalls {
public:
    int fsync(int /*file*/) override { return 0; }
};

class FileFormTest : public testing::Test, protected TestFolder, protected DocumentSurroundings {
protected:
    FileFormTest() : DocumentSurroundings(files) { services.encodings = &encodings; }

    [[nodiscard]] std::unique_ptr<TextDocument> open(const QByteArray &content, std::optional<TextEncoding> encoding = std::nullopt)
    {
        if (encoding) {
            encodings.note(path(u"a.txt"_s), encoding);
        }
        auto document = TextDocument::awaiting(services, put(u"a.txt"_s, content));
        std::ignore = document->requests().waitUntil(FileRequests::Kind::arrival, std::chrono::steady_clock::now());
        return document;
    }
    [[nodiscard]] QByteArray saved(TextDocument &document)
    {
        document.save(document.path());
        return read(u"a.txt"_s);
    }
    [[nodiscard]] int random(int least, int most) { return std::uniform_int_distribution(least, most)(m_random); }
    [[nodiscard]] PlainText randomText()
    {
        static const QString letters = u"ab\u00E4"_s;
        PlainText text;
        const int kinds = random(1, 3);
        for (int left = random(0, 30); left > 0; --left) {
            const auto ending = LineEnding(random(0, kinds - 1));
            const bool isBehindCr = !text.units.empty() && text.units.back().ending == LineEnding::cr;
            if (random(0, 1) == 0 && !(isBehindCr && ending == LineEnding::lf)) {
                text.units.push_back({0, ending});
            } else {
                text.units.push_back({letters[random(0, 2)].unicode()});
            }
        }
        return text;
    }

    std::mt19937 m_random{uint(testing::UnitTest::GetInstance()->random_seed())};
    FileMemory fileMemory{QString()};
    EncodingMemory encodings{fileMemory};
    UnsyncedCalls files;
};

/// By hand with others each time: model-tests --gtest_filter=FileFormTest.Keeps* --gtest_shuffle --gtest_repeat=500
TEST_F(FileFormTest, KeepsAllThatWasNotEdited)
{
    preferences.set(Settings::keepFileForm, true);
    constexpr int count = 200;
    for (int file = 0; file < count; ++file) {
        SCOPED_TRACE(file);
        const FormRow &form = formRows[size_t(random(0, int(formRows.size()) - 1))];
        PlainText text = randomText();
        const QByteArray original = text.bytes(form);
        const auto document = open(original, form.encoding);
        ASSERT_EQ(document->storage().length(), qsizetype(text.units.size()));
        const LineEnding fallback = document->lineEnding();
        for (int edits = random(1, 4); edits > 0; --edits) {
            const int from = random(0, int(text.units.size()));
            const int to = random(from, std::min(from + 6, int(text.units.size())));
            const QString inserted = std::array{u""_s, u"x"_s, u"\n"_s, u"x\ny"_s, u"\n\nx"_s}[size_t(random(0, 4))];
            document->storage().apply({{from, to - from}, inserted});
            text.replace(size_t(from), size_t(to), inserted, fallback);
        }
        ASSERT_EQ(saved(*document).toHex(' '), text.bytes(form).toHex(' ')) << "before " << original.toHex(' ').constData();
        while (document->undoManager().canUndo()) {
            document->undoManager().undo();
        }
        ASSERT_EQ(saved(*document).toHex(' '), original.toHex(' '));
    }
}

TEST_F(FileFormTest, AnEncodingThatWasChosenIsTheOneToReadIn)
{
    const auto chosen = open("caf\xC3\xA9\n");
    chosen->setEncoding(TextEncoding::utf16);
    const QByteArray bytes = saved(*chosen);
    EXPECT_TRUE(bytes.contains('\0'));
    const auto back = open(bytes);
    EXPECT_EQ(back->storage().string(), u"caf\u00E9\n"_s);
    EXPECT_EQ(back->encoding(), TextEncoding::utf16);
    back->setEncoding(TextEncoding::utf8);
    EXPECT_EQ(saved(*back), "caf\xC3\xA9\n");
    EXPECT_EQ(open("caf\xC3\xA9\n")->storage().string(), u"caf\u00E9\n"_s);
}

TEST_F(FileFormTest, NormalFormIsWrittenUnlessTheFormIsToBeKept)
{
    const QByteArray content = "\xEF\xBB\xBF"
                               "a\r\nb\nc\r\n";
    const auto document = open(content);
    EXPECT_TRUE(document->form().value().hasByteOrderMark);
    EXPECT_TRUE(document->form().value().lineEndings.isMixed());
    EXPECT_EQ(document->form().value().lineEndings.count(LineEnding::crlf), 2);
    EXPECT_EQ(document->form().value().lineEndings.count(LineEnding::lf), 1);
    EXPECT_EQ(saved(*document), "a\r\nb\r\nc\r\n");
    EXPECT_FALSE(document->form().value().hasByteOrderMark);
    EXPECT_FALSE(document->form().value().lineEndings.isMixed());
    preferences.set(Settings::keepFileForm, true);
    const auto kept = open(content);
    kept->setLineEnding(LineEnding::crlf);
    EXPECT_TRUE(kept->isDirty()) << "chosen for all lines";
    EXPECT_EQ(saved(*kept), "\xEF\xBB\xBF"
                            "a\r\nb\r\nc\r\n");
}

TEST_F(FileFormTest, AnEncodingThatWasNamedIsForgottenWhenTheFileGetsAnother)
{
    const auto document = open("gr\xFC\xDF", TextEncoding::windows1252);
    EXPECT_EQ(document->storage().string(), u"grüß"_s);
    for (const TextEncoding encoding : {TextEncoding::isoLatin1, TextEncoding::utf8}) {
        document->setEncoding(encoding);
        std::ignore = saved(*document);
        EXPECT_EQ(encodings.encodingOf(document->path()).value_or(TextEncoding::utf8), encoding);
    }
}

TEST_F(FileFormTest, TheLastLineEndsLikeTheOneBeforeIt)
{
    preferences.set(Settings::keepFileForm, true);
    preferences.set(Settings::ensureTrailingNewlineOnSave, true);
    const auto document = open("a\r\nb\nc");
    ASSERT_EQ(document->lineEnding(), LineEnding::crlf);
    document->storage().apply({{0, 0}, QStringView(u"x")});
    EXPECT_EQ(saved(*document), "xa\r\nb\nc\n");
}

TEST_F(FileFormTest, LinesThatAreAddedToAFileKeepTheirOwnEndings)
{
    preferences.set(Settings::keepFileForm, true);
    QByteArray content;
    while (content.size() < ReadPosition::smallestFile) {
        content += content.size() % 3 == 0 ? "line\r\n" : "line\n";
    }
    content += "end\r"; // what is added makes a pair of it
    const auto document = open(content);
    QFile file(document->path());
    ASSERT_TRUE(file.open(QIODevice::Append) && file.write("\nmore\n") == 6);
    file.close();
    settle(2s);
    EXPECT_EQ(document->storage().length(), qsizetype(QString::fromLatin1(content + "\nmore\n").remove(u'\r').size()));
    document->storage().apply({{0, 1}, QStringView(u"L")});
    EXPECT_EQ(saved(*document), 'L' + content.sliced(1) + "\nmore\n");
}

TEST_F(FileFormTest, UnsavedTextOfAnEarlierProgramKeepsTheForm)
{
    preferences.set(Settings::keepFileForm, true);
    const QString path = put(u"a.txt"_s, "\xEF\xBB\xBF"
                                         "a\r\nb\nc\r\n");
    const TextFile::Contents draft{.text = Rope(u"a\nb\nx\nc\n"), .lineEnding = LineEnding::crlf, .state = TextFile::read(path)->state};
    const auto document = TextDocument::fromDraft(services, path, draft, QUuid::createUuid());
    document->storage().apply({{0, 0}, QStringView(u"\n")}); // before anybody has looked at the file
    settle();
    EXPECT_EQ(saved(*document), "\xEF\xBB\xBF"
                                "\r\na\r\nb\nx\r\nc\r\n");
}

} // namespace
