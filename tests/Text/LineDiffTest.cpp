// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineDiff.h"

#include "Text/LineKey.h"
#include "Text/RandomText.h"

#include <QRegularExpression>

#include <gmock/gmock.h>

#include <unordered_map>

using namespace Qt::StringLiterals;
using testing::ElementsAre;

namespace {

LineDiff::Result compared(const QString &old, const QString &newer, Whitespace whitespace = Whitespace::counts)
{
    return *LineDiff::compare(Rope(old), Rope(newer), whitespace);
}

/// "=1:1 ~2:2 -3": kinds and numbers.
QString shape(const LineDiff::Result &result)
{
    QStringList rows;
    for (qsizetype index = 0; index < result.rowCount(); ++index) {
        const LineDiff::Row row = result.row(index);
        const auto shown = [](auto number) { return number ? QString::number(qsizetype(*number)) : QString(); };
        const QString numbers = shown(row.leftNumber) + (row.leftNumber && row.rightNumber ? u":"_s : QString()) + shown(row.rightNumber);
        rows.append(u"=-+~"[size_t(row.kind)] + numbers);
    }
    return rows.join(u' ');
}

QString numberedLines(qsizetype count, QChar mark)
{
    QString text;
    for (qsizetype line = 0; line < count; ++line) {
        text += mark + QString::number(line) + u'\n';
    }
    return text;
}

/// Lines of a few pieces, and the same lines edited, some of them in ways that do not count.
std::pair<QString, QString> randomPair(Random &random, qsizetype lines, qsizetype pieces)
{
    static const QStringList alphabet = {
        u"a"_s,      u"b"_s,      u" "_s,      u"\t"_s,         u"\u00e9"_s, u"e\u0301"_s,       u"\r"_s,     u"}"_s,
        u"\u00a0"_s, u"\u2003"_s, u"\u4e2d"_s, u"\U0001F600"_s, u"\u0301"_s, u"q\u0323\u0307"_s, u"\uac01"_s, u"\u2028"_s};
    // Long stretches without a wide unit, so that leaves of both sorts come up.
    bool isWide = false;
    const auto madeLine = [&] {
        isWide = random.oneIn(20) ? !isWide : isWide;
        QString line;
        for (qsizetype count = random.below(pieces); count > 0; --count) {
            line += alphabet[random.below(isWide ? 16 : 8)];
        }
        return line + u'\n';
    };
    QString old;
    QString newer;
    for (qsizetype line = random.below(lines + 1); line > 0; --line) {
        QString text = madeLine();
        old += text;
        newer += random.oneIn(6) ? madeLine() : QString();
        if (random.oneIn(4)) {
            text = text.normalized(random.oneIn(2) ? QString::NormalizationForm_C : QString::NormalizationForm_D);
        }
        if (random.oneIn(8)) {
            text.insert(random.below(text.size()), random.oneIn(2) ? u' ' : u'\u3000');
        }
        newer += random.oneIn(6) ? QString() : text;
    }
    for (QString *text : {&old, &newer}) {
        if (random.oneIn(3) && text->endsWith(u'\n')) {
            text->chop(1);
        }
    }
    return {old, newer};
}

QStringList linesOf(const QString &text)
{
    QStringList lines = text.split(u'\n');
    if (lines.last().isEmpty()) {
        lines.removeLast();
    }
    return lines;
}

/// What decides whether a line equals another.
QString keyOf(QString line, Whitespace whitespace)
{
    if (whitespace == Whitespace::ignored) {
        line.removeIf([](QChar unit) { return unit.isSpace(); });
    }
    return line.normalized(QString::NormalizationForm_D);
}

/// Edits that turn one list into the other, by the table of longest common subsequences.
qsizetype fewestEdits(const QStringList &old, const QStringList &newer)
{
    QList<qsizetype> above(newer.size() + 1, 0);
    for (const QString &line : old) {
        QList<qsizetype> row(newer.size() + 1, 0);
        for (qsizetype y = 0; y < newer.size(); ++y) {
            row[y + 1] = line == newer[y] ? above[y] + 1 : std::max(above[y + 1], row[y]);
        }
        above = row;
    }
    return old.size() + newer.size() - 2 * above.last();
}

/// All lines of both are there once, in their order and where they stand in the text.
void checkLines(const LineDiff::Result &result, LineDiff::Side side, const QString &text)
{
    const QStringList lines = linesOf(text);
    qsizetype line = 0;
    qsizetype start = 0;
    for (qsizetype row = 0; row < result.rowCount(); ++row) {
        if (const auto number = side == LineDiff::Side::left ? result.row(row).leftNumber : result.row(row).rightNumber) {
            ASSERT_EQ(number, numberOfLine(line));
            ASSERT_EQ(result.lineRange(side, row), (TextRange{start, lines[line].size()}));
            ASSERT_EQ(result.lines(side).start(line), start);
            start += lines[line++].size() + 1;
        }
    }
    ASSERT_EQ(line, lines.size());
    ASSERT_EQ(result.lines(side).count(), line);
    ASSERT_EQ(result.lines(side).start(line), text.size());
}

/// Equal lines stand beside each other; between them changed ones come first, then those that are gone or new.
void checkRows(const LineDiff::Result &result, Whitespace whitespace)
{
    using enum LineDiff::Row::Kind;
    std::vector<qsizetype> starts;
    auto before = equal;
    for (qsizetype index = 0; index < result.rowCount(); ++index) {
        const auto kind = result.row(index).kind;
        const QString old = result.leftText(index);
        const QString newer = result.rightText(index);
        if (kind != equal && before == equal) {
            starts.push_back(index);
        }
        ASSERT_TRUE(kind == before || kind == equal || before == equal || before == modified) << "row " << index;
        if (kind == equal || kind == modified) {
            ASSERT_EQ(keyOf(old, whitespace) == keyOf(newer, whitespace), kind == equal) << "row " << index;
        }
        ASSERT_EQ(result.emphasis(index), kind == modified ? InlineDiff::spans(old, newer) : InlineDiff::Spans()) << "row " << index;
        before = kind;
    }
    ASSERT_EQ(result.changeStarts(), starts);
}

void checkPair(const QString &old, const QString &newer)
{
    for (const Whitespace whitespace : {Whitespace::counts, Whitespace::ignored}) {
        const LineDiff::Result result = compared(old, newer, whitespace);
        QStringList keys[] = {linesOf(old), linesOf(newer)};
        for (QStringList &lines : keys) {
            std::ranges::transform(lines, lines.begin(), [&](const QString &line) { return keyOf(line, whitespace); });
        }
        ASSERT_EQ(result.addedCount() + result.removedCount(), fewestEdits(keys[0], keys[1]));
        ASSERT_NO_FATAL_FAILURE(checkRows(result, whitespace));
        ASSERT_NO_FATAL_FAILURE(checkLines(result, LineDiff::Side::left, old));
        ASSERT_NO_FATAL_FAILURE(checkLines(result, LineDiff::Side::right, newer));
    }
}

} // namespace

TEST(LineDiff, MakesRows)
{
    struct RowCase {
        const char *name;
        QString old;
        QString newer;
        QString shape;
    };
    const RowCase cases[] = {
        {"from nothing", u""_s, u"a\nb"_s, u"+1 +2"_s},
        {"a line feed is one empty line", u"\n"_s, u""_s, u"-1"_s},
        {"the last line's end does not count", u"a\nb\n"_s, u"a\nb"_s, u"=1:1 =2:2"_s},
        {"but an empty line does", u"a\n\n"_s, u"a"_s, u"=1:1 -2"_s},
        {"one line for three", u"k\na\nb\nc\nz"_s, u"k\nn\nz"_s, u"=1:1 ~2:2 -3 -4 =5:3"_s},
        {"a repeated line goes with the first", u"a\na"_s, u"a"_s, u"=1:1 -2"_s},
        {"so does one that comes twice", u"x"_s, u"x\nx"_s, u"=1:1 +2"_s},
        {"of two ways the one that deletes first", u"a\nb"_s, u"b\na"_s, u"-1 =2:1 +2"_s},
        {"carriage returns belong to their line", u"a\r\nb\rc"_s, u"a\nb\rc"_s, u"~1:1 =2:2"_s},
        {"a ligature is no two letters", u"\ufb01"_s, u"fi"_s, u"~1:1"_s},
        {"all kinds in their order", u"1\n2\n3\ne\n4\nf"_s, u"5\ne\n6\n7\nf"_s, u"~1:1 -2 -3 =4:2 ~5:3 +4 =6:5"_s},
    };
    for (const RowCase &row : cases) {
        EXPECT_EQ(shape(compared(row.old, row.newer)), row.shape) << row.name;
    }
}

TEST(LineDiff, MakesNoMoreEditsThanNeeded)
{
    // Short texts, and some that go over several leaves.
    for (quint32 seed = 1; seed <= 308; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const auto [old, newer] = randomPair(random, seed <= 300 ? 14 : 300, seed <= 300 ? 4 : seed % 2 == 0 ? 100 : 12);
        ASSERT_NO_FATAL_FAILURE(checkPair(old, newer));
    }
}

TEST(LineDiff, ComparesLinesLongerThanLeaves)
{
    for (const QString &line : {QString(10'000, u'x'), QString(10'000, u'x') + u"\u4e2d"_s}) {
        const QString old = u"1\n"_s + line + u"\n2\n"_s + line + u"\u00e9\n3"_s;
        const QString newer = u"0\n"_s + line + u"\n2\n"_s + line + u"e\u0301\n4"_s;
        EXPECT_EQ(shape(compared(old, newer)), u"~1:1 =2:2 =3:3 =4:4 ~5:5"_s);
        const QString changed = QString(line).replace(5000, 1, u'y');
        for (const QString &other : {newer, line + u'\n', line + u' ', changed + u"\nz"_s, u"\u3000"_s + line}) {
            ASSERT_NO_FATAL_FAILURE(checkPair(line, other));
        }
    }
}

TEST(LineDiff, IsNotDeceivedByEqualHashes)
{
    // Among so many lines some have the same 32 bits of the hash.
    std::unordered_map<quint32, QByteArray> lines;
    QByteArray line;
    QByteArray other;
    for (int number = 0; number < 1'000'000 && other.isEmpty(); ++number) {
        line = QByteArray::number(number);
        const LineKey key{.narrow = reinterpret_cast<const uchar *>(line.constData()), .length = line.size()};
        const auto [place, isNew] = lines.try_emplace(quint32(key.hash()), line);
        other = isNew ? QByteArray() : place->second;
    }
    ASSERT_FALSE(other.isEmpty());
    const QString surrounded = u"a\n%1\nc\n"_s;
    EXPECT_EQ(shape(compared(surrounded.arg(QLatin1StringView(line)), surrounded.arg(QLatin1StringView(other)))), u"=1:1 ~2:2 =3:3"_s);
}

TEST(LineDiff, GivesUpBeyond2000Edits)
{
    for (const qsizetype surplus : {0, 1}) {
        const QString old = numberedLines(1000, u'a') + u"common\n"_s + numberedLines(1000, u'c');
        const QString newer = numberedLines(surplus, u'b') + u"common\n"_s;
        const LineDiff::Result result = compared(old, newer);
        // With one line more to insert the common line is not seen any more.
        EXPECT_EQ(result.changeStarts().size(), surplus == 0 ? 2U : 1U);
        EXPECT_EQ(result.addedCount(), surplus == 0 ? 0 : 2);
    }
    const LineDiff::Result unrelated = compared(numberedLines(3000, u'a'), numberedLines(2500, u'b'));
    EXPECT_THAT(unrelated.runs(), ElementsAre(LineDiff::Run{LineDiff::Row::Kind::modified, 0, 2500, 0, 0},
                                              LineDiff::Run{LineDiff::Row::Kind::deleted, 2500, 500, 2500, 2500}));
}

TEST(LineDiff, ReportsHowFarItIsAndStops)
{
    const Rope old(numberedLines(5000, u'a'));
    const Rope newer(numberedLines(4000, u'a') + numberedLines(1000, u'b') + u"z"_s);
    DiffControl control{.processed = std::make_shared<std::atomic<qsizetype>>(0)};
    EXPECT_TRUE(LineDiff::compare(old, newer, Whitespace::counts, control));
    EXPECT_EQ(*control.processed, 2 * (old.length() + newer.length()));

    std::stop_source source;
    source.request_stop();
    control = {.stop = source.get_token(), .processed = std::make_shared<std::atomic<qsizetype>>(0)};
    EXPECT_FALSE(LineDiff::compare(old, newer, Whitespace::counts, control));
    EXPECT_LT(*control.processed, old.length());
    EXPECT_FALSE(LineDiff::compare(Rope(), Rope(), Whitespace::counts, control));
}
