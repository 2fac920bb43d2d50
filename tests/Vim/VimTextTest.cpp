// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/RandomText.h"
#include "Vim/VimMotion.h"
#include "Vim/VimTextObject.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <optional>

using namespace Qt::StringLiterals;
using VimMotion::FindKind;
using VimMotion::Words;
using VimTextObject::Extent;

namespace {

/// The same questions, answered from lists made of the whole text.
struct Model {
    explicit Model(const QString &given) : text(given), whole(given)
    {
        // Expressions want no half pairs.
        std::ranges::replace_if(
            whole, [](QChar unit) { return unit.isSurrogate(); }, QChar(u'?'));
        static const QRegularExpression line(u"[^\\n\\r\\x{2028}\\x{2029}]*(\\r\\n|[\\n\\r\\x{2028}\\x{2029}]|\\z)"_s);
        for (qsizetype place = 0; place <= text.size();) {
            const auto match = line.match(whole, place);
            lines.push_back({place, match.capturedLength()});
            contentEnds.push_back(match.capturedStart(1));
            if (match.capturedLength(1) == 0) {
                break;
            }
            place = match.capturedEnd();
        }
        for (const QChar unit : text) {
            classes += u" \t\n\r"_s.contains(unit)                                                           ? u'.'
                       : unit == u'_' || (!unit.isSurrogate() && (unit.isLetterOrNumber() || unit.isMark())) ? u'w'
                                                                                                             : u'p';
        }
        bigClasses = classes;
        bigClasses.replace(u'p', u'w');
    }

    [[nodiscard]] qsizetype indexOf(qsizetype offset) const
    {
        return std::ranges::upper_bound(lines, offset, {}, &TextRange::location) - lines.begin() - 1;
    }
    [[nodiscard]] const QString &classesOf(Words words) const { return words == Words::small ? classes : bigClasses; }
    [[nodiscard]] static qsizetype lengthOf(const QString &expression, const QString &in, qsizetype from)
    {
        return QRegularExpression(expression)
            .match(in, from, QRegularExpression::NormalMatch, QRegularExpression::AnchorAtOffsetMatchOption)
            .capturedLength();
    }
    [[nodiscard]] qsizetype nextWordStart(qsizetype from, Words words) const
    {
        return from + lengthOf(u"(w+|p+)?\\.*"_s, classesOf(words), from);
    }
    [[nodiscard]] qsizetype previousWordStart(qsizetype from, Words words) const
    {
        const auto match = QRegularExpression(u"(w+|p+)\\.*$"_s).match(classesOf(words).left(from));
        return match.hasMatch() ? match.capturedStart() : 0;
    }
    [[nodiscard]] qsizetype nextWordEnd(qsizetype from, Words words) const
    {
        const qsizetype start = std::min(from + 1, text.size());
        const qsizetype length = lengthOf(u"\\.*(w+|p+)"_s, classesOf(words), start);
        return std::max<qsizetype>(length > 0 ? start + length - 1 : text.size() - 1, 0);
    }
    [[nodiscard]] bool isEmptyLine(qsizetype index) const { return contentEnds[size_t(index)] == lines[size_t(index)].location; }
    [[nodiscard]] qsizetype paragraph(qsizetype from, qsizetype step) const
    {
        for (qsizetype index = indexOf(from) + step; index >= 0 && index < qsizetype(lines.size()); index += step) {
            if (isEmptyLine(index)) {
                return lines[size_t(index)].location;
            }
        }
        return step > 0 ? text.size() : 0;
    }
    /// All pairs of one kind of brackets, the inner before the outer.
    [[nodiscard]] std::vector<TextRange> pairs(QChar open, QChar close) const
    {
        std::vector<TextRange> found;
        std::vector<qsizetype> opened;
        for (qsizetype place = 0; place < text.size(); ++place) {
            if (text[place] == open) {
                opened.push_back(place);
            } else if (text[place] == close && !opened.empty()) {
                found.push_back(TextRange::between(opened.back(), place + 1));
                opened.pop_back();
            }
        }
        return found;
    }
    [[nodiscard]] std::optional<qsizetype> matchingBracket(qsizetype from) const
    {
        const qsizetype end = contentEnds[size_t(indexOf(from))];
        const qsizetype place = from > end ? -1 : QRegularExpression(u"[\\[\\](){}]"_s).match(whole.left(end), from).capturedStart();
        for (const QString &kind : {u"()"_s, u"[]"_s, u"{}"_s}) {
            for (const TextRange pair : pairs(kind[0], kind[1])) {
                if (pair.location == place || pair.end() - 1 == place) {
                    return pair.location == place ? pair.end() - 1 : pair.location;
                }
            }
        }
        return std::nullopt;
    }
    /// Where a unit stands in the line of `offset`.
    [[nodiscard]] std::vector<qsizetype> places(qsizetype offset, QChar unit) const
    {
        std::vector<qsizetype> found;
        const size_t index = size_t(indexOf(offset));
        for (qsizetype place = lines[index].location; place < contentEnds[index]; ++place) {
            if (text[place] == unit) {
                found.push_back(place);
            }
        }
        return found;
    }
    [[nodiscard]] std::optional<qsizetype> find(qsizetype from, QChar wanted, FindKind kind, qsizetype count) const
    {
        const qsizetype step = kind == FindKind::forwardTo || kind == FindKind::forwardBefore ? 1 : -1;
        const bool isBefore = kind == FindKind::forwardBefore || kind == FindKind::backwardBefore;
        std::vector<qsizetype> found = places(from, wanted);
        std::erase_if(found, [&](qsizetype place) { return (place - from) * step <= (isBefore ? 1 : 0); });
        if (count > qsizetype(found.size())) {
            return std::nullopt;
        }
        return (step > 0 ? found[size_t(count - 1)] : found[found.size() - size_t(count)]) - (isBefore ? step : 0);
    }
    [[nodiscard]] std::optional<TextRange> word(qsizetype caret, Words words, Extent extent, qsizetype count) const
    {
        const QString &all = classesOf(words);
        if (all.isEmpty()) {
            return std::nullopt;
        }
        const QChar here = caret < all.size() ? all[caret] : u'.';
        qsizetype start =
            caret - QRegularExpression(QRegularExpression::escape(QString(here)) + u"*\\z"_s).match(all.left(caret)).capturedLength();
        qsizetype end = std::min(caret, all.size() - 1);
        for (qsizetype run = 0; run < count && end < all.size(); ++run) {
            end += lengthOf(u"w+|p+|\\.+"_s, all, end);
        }
        if (extent == Extent::around) {
            const qsizetype blanks = lengthOf(u"[ \\t]*"_s, whole, end);
            start -= blanks > 0 ? 0 : QRegularExpression(u"[ \\t]*\\z"_s).match(whole.left(start)).capturedLength();
            end += blanks;
        }
        return TextRange::between(start, end);
    }
    [[nodiscard]] TextRange paragraphObject(qsizetype caret, Extent extent) const
    {
        const qsizetype index = indexOf(caret);
        // The empty line behind a last break is not gone to, but may be where the caret is.
        const qsizetype count = qsizetype(lines.size()) - (lines.back().isEmpty() && lines.size() > 1 ? 1 : 0);
        qsizetype first = index;
        qsizetype last = index;
        while (first > 0 && isEmptyLine(first - 1) == isEmptyLine(index)) {
            --first;
        }
        while (last + 1 < count && isEmptyLine(last + 1) == isEmptyLine(index)) {
            ++last;
        }
        while (extent == Extent::around && last + 1 < count && isEmptyLine(last + 1) != isEmptyLine(index)) {
            ++last;
        }
        return TextRange::between(lines[size_t(first)].location, lines[size_t(last)].end());
    }
    [[nodiscard]] static TextRange delimited(TextRange whole, Extent extent)
    {
        return extent == Extent::around ? whole : TextRange{whole.location + 1, whole.length - 2};
    }
    [[nodiscard]] std::optional<TextRange> quoted(qsizetype caret, QChar quote, Extent extent) const
    {
        std::vector<qsizetype> quotes = places(caret, quote);
        std::erase_if(quotes, [&](qsizetype place) { return place > 0 && text[place - 1] == u'\\'; });
        for (size_t pair = 1; pair < quotes.size(); pair += 2) {
            if (quotes[pair] >= caret) {
                return delimited(TextRange::between(quotes[pair - 1], quotes[pair] + 1), extent);
            }
        }
        return std::nullopt;
    }
    [[nodiscard]] std::optional<TextRange> bracketed(qsizetype caret, const QString &kind, Extent extent) const
    {
        for (const TextRange pair : pairs(kind[0], kind[1])) {
            if (pair.contains(caret)) {
                return delimited(pair, extent);
            }
        }
        return std::nullopt;
    }

    QString text;
    QString whole; ///< the same without half pairs
    std::vector<TextRange> lines;
    std::vector<qsizetype> contentEnds;
    QString classes;
    QString bigClasses;
};

QString randomText(Random &random)
{
    QString text = QString::fromStdU16String(random.text(random.below(30)));
    const QString marks = u"()[]{}<>\"'`\\ab_. \n"_s;
    for (qsizetype more = random.below(60); more > 0; --more) {
        text.insert(random.below(text.size() + 1), marks[random.below(marks.size())]);
    }
    return text;
}

class VimText : public testing::Test {
protected:
    /// Asks at every offset of many texts.
    template<typename Ask>
    static void everywhere(const Ask &ask)
    {
        for (quint32 seed = 1; seed <= 60 && !HasFailure(); ++seed) {
            Random random(seed);
            const Model model(randomText(random));
            const Rope rope(model.text);
            VimBuffer buffer(rope);
            for (qsizetype offset = 0; offset <= rope.length() && !HasFailure(); ++offset) {
                SCOPED_TRACE("seed " + std::to_string(seed) + ", offset " + std::to_string(offset) + " of " +
                             escaped(model.text.toStdU16String()));
                ask(model, buffer, offset, random);
            }
        }
    }
    static std::optional<qsizetype> placeOf(const VimMotion::Result &result)
    {
        return result.failed ? std::nullopt : std::optional(result.position);
    }
};

} // namespace

TEST_F(VimText, LinesAreWhereTheyAre)
{
    everywhere([](const Model &model, VimBuffer &buffer, qsizetype offset, Random &random) {
        const auto lineStart = [&](qsizetype index) { return model.lines[size_t(index)].location; };
        const qsizetype index = model.indexOf(offset);
        const qsizetype length = buffer.length();
        EXPECT_EQ(buffer.lineRange(offset), model.lines[size_t(index)]);
        const qsizetype first = lineStart(index) + Model::lengthOf(u"[ \\t]*"_s, model.whole, lineStart(index));
        EXPECT_EQ(buffer.firstNonBlank(offset), first == model.contentEnds[size_t(index)] ? lineStart(index) : first);
        const qsizetype by = random.below(9) - 4;
        const qsizetype target = index + by;
        const bool exists = target >= 0 && target < qsizetype(model.lines.size()) && (by <= 0 || lineStart(target) < length);
        EXPECT_EQ(buffer.line(offset, by), exists ? std::optional(lineStart(target)) : std::nullopt) << by;
        const qsizetype number = random.below(12);
        EXPECT_EQ(buffer.startOfLine(static_cast<LineNumber>(number)),
                  number > qsizetype(model.lines.size()) ? length : lineStart(std::max<qsizetype>(number - 1, 0)))
            << number;
        EXPECT_EQ(buffer.lastLineStart(), lineStart(model.indexOf(std::max<qsizetype>(length - 1, 0))));
        const qsizetype place = buffer.clampToNormalMode(offset);
        EXPECT_EQ(buffer.clampToNormalMode(place), place);
        EXPECT_TRUE(length == 0 || !isBreak(model.text[place].unicode()) || model.isEmptyLine(model.indexOf(place)));
        EXPECT_TRUE(place == offset || offset >= model.contentEnds[size_t(model.indexOf(place))]);
    });
}

TEST_F(VimText, MotionsLeadWhereTheModelSays)
{
    everywhere([](const Model &model, VimBuffer &buffer, qsizetype offset, Random &random) {
        for (const Words words : {Words::small, Words::big}) {
            EXPECT_EQ(VimMotion::nextWordStart(buffer, offset, words), model.nextWordStart(offset, words));
            EXPECT_EQ(VimMotion::previousWordStart(buffer, offset, words), model.previousWordStart(offset, words));
            EXPECT_EQ(VimMotion::nextWordEnd(buffer, offset, words), model.nextWordEnd(offset, words));
        }
        EXPECT_EQ(VimMotion::nextParagraphBoundary(buffer, offset, VimMotion::Direction::forward), model.paragraph(offset, 1));
        EXPECT_EQ(VimMotion::nextParagraphBoundary(buffer, offset, VimMotion::Direction::backward), model.paragraph(offset, -1));
        EXPECT_EQ(placeOf(VimMotion::matchingBracket(buffer, offset)), model.matchingBracket(offset));
        if (offset > model.contentEnds[size_t(model.indexOf(offset))]) {
            return; // the caret is not between CR and LF
        }
        const QChar wanted = u"a_.("_s[random.below(4)];
        for (const FindKind kind : {FindKind::forwardTo, FindKind::forwardBefore, FindKind::backwardTo, FindKind::backwardBefore}) {
            for (qsizetype count = 1; count <= 3; ++count) {
                EXPECT_EQ(placeOf(VimMotion::find(buffer, offset, wanted.unicode(), kind, count)), model.find(offset, wanted, kind, count))
                    << int(wanted.unicode()) << ' ' << int(kind) << ' ' << count;
            }
            EXPECT_EQ(VimMotion::reversed(VimMotion::reversed(kind)), kind);
        }
    });
}

TEST_F(VimText, ObjectsAreWhatTheModelSays)
{
    everywhere([](const Model &model, VimBuffer &buffer, qsizetype offset, Random &random) {
        const qsizetype count = random.below(4) + 1;
        for (const Extent extent : {Extent::inner, Extent::around}) {
            const auto object = [&](char16_t key) {
                const auto found = VimTextObject::range(buffer, offset, key, extent, count);
                EXPECT_TRUE(!found || found->linewise == (key == u'p'));
                return found ? std::optional(found->range) : std::nullopt;
            };
            EXPECT_EQ(object(u'w'), model.word(offset, Words::small, extent, count)) << count;
            EXPECT_EQ(object(u'W'), model.word(offset, Words::big, extent, count)) << count;
            EXPECT_EQ(object(u'p'), model.paragraphObject(offset, extent)) << int(extent);
            for (const char16_t quote : {u'"', u'\'', u'`'}) {
                EXPECT_EQ(object(quote), model.quoted(offset, quote, extent));
            }
            for (const QString &keys : {u"()b"_s, u"[]"_s, u"{}B"_s, u"<>"_s}) {
                for (const QChar key : keys) {
                    EXPECT_EQ(object(key.unicode()), model.bracketed(offset, keys, extent)) << int(key.unicode());
                }
            }
            EXPECT_EQ(object(u'z'), std::nullopt);
        }
    });
}
