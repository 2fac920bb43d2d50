// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/EncodingDetection.h"

#include <unicode/ucsdet.h>

#include <QStringConverter>

#include <algorithm>
#include <array>
#include <map>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// More than all other signs of an encoding together.
constexpr int certainty = 1000;
/// Bytes that are decoded for a preview and given to the detector.
constexpr qsizetype sampleSize = 64 * 1024;
/// Of a text, so many units are searched for lines that tell something.
constexpr qsizetype searchedUnits = 4 * 1024 * 1024;
constexpr qsizetype mostLines = 2;
constexpr qsizetype longestLine = 60;

struct DetectorRow {
    const char *name;
    TextEncoding encoding;
};

/// What the detector calls them.
constexpr auto detectorRows = std::to_array<DetectorRow>({
    {"UTF-8", TextEncoding::utf8},
    {"UTF-16BE", TextEncoding::utf16BigEndian},
    {"UTF-16LE", TextEncoding::utf16LittleEndian},
    {"UTF-32BE", TextEncoding::utf32BigEndian},
    {"UTF-32LE", TextEncoding::utf32LittleEndian},
    {"ISO-8859-1", TextEncoding::isoLatin1},
    {"ISO-8859-2", TextEncoding::isoLatin2},
    {"ISO-8859-5", TextEncoding::isoCyrillic},
    {"ISO-8859-7", TextEncoding::isoGreek},
    {"ISO-8859-9", TextEncoding::isoLatin5},
    {"windows-1250", TextEncoding::windows1250},
    {"windows-1251", TextEncoding::windows1251},
    {"windows-1252", TextEncoding::windows1252},
    {"windows-1253", TextEncoding::windows1253},
    {"windows-1254", TextEncoding::windows1254},
    {"KOI8-R", TextEncoding::koi8R},
    {"Shift_JIS", TextEncoding::shiftJis},
    {"EUC-JP", TextEncoding::eucJp},
    {"ISO-2022-JP", TextEncoding::iso2022Jp},
    {"GB18030", TextEncoding::gb18030},
    {"Big5", TextEncoding::big5},
    {"EUC-KR", TextEncoding::eucKr},
});

struct LanguageRow {
    QLocale::Language language;
    /// What its texts mostly are in where they are not in Unicode.
    TextEncoding encoding;
};

constexpr auto languageRows = std::to_array<LanguageRow>({
    {QLocale::Russian, TextEncoding::windows1251},
    {QLocale::Bulgarian, TextEncoding::windows1251},
    {QLocale::Ukrainian, TextEncoding::windows1251},
    {QLocale::Serbian, TextEncoding::windows1251},
    {QLocale::Polish, TextEncoding::windows1250},
    {QLocale::Czech, TextEncoding::windows1250},
    {QLocale::Slovak, TextEncoding::windows1250},
    {QLocale::Hungarian, TextEncoding::windows1250},
    {QLocale::Slovenian, TextEncoding::windows1250},
    {QLocale::Croatian, TextEncoding::windows1250},
    {QLocale::Romanian, TextEncoding::windows1250},
    {QLocale::Greek, TextEncoding::windows1253},
    {QLocale::Turkish, TextEncoding::windows1254},
    {QLocale::Japanese, TextEncoding::shiftJis},
    {QLocale::Chinese, TextEncoding::gb18030},
    {QLocale::Korean, TextEncoding::eucKr},
});

TextEncoding encodingOf(QLocale::Language language)
{
    const auto row = std::ranges::find(languageRows, language, &LanguageRow::language);
    return row == languageRows.end() ? TextEncoding::windows1252 : row->encoding;
}

/// Per cent, by encoding, of those that the detector names.
std::map<TextEncoding, int> detected(QByteArrayView bytes)
{
    std::map<TextEncoding, int> confidences;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UCharsetDetector, decltype(&ucsdet_close)> detector(ucsdet_open(&status), ucsdet_close);
    ucsdet_setText(detector.get(), bytes.data(), int32_t(bytes.size()), &status);
    int32_t count = 0;
    const UCharsetMatch **matches = ucsdet_detectAll(detector.get(), &count, &status);
    for (int32_t index = 0; U_SUCCESS(status) && index < count; ++index) {
        const char *name = ucsdet_getName(matches[index], &status);
        const auto row = std::ranges::find_if(detectorRows, [&](const DetectorRow &each) { return qstrcmp(each.name, name) == 0; });
        if (row != detectorRows.end()) {
            int &best = confidences[row->encoding];
            best = std::max(best, int(ucsdet_getConfidence(matches[index], &status)));
        }
    }
    return confidences;
}

/// A character that the end of the sample cuts may be missing from it.
std::optional<QString> decodedSample(QByteArrayView bytes, TextEncoding encoding)
{
    constexpr qsizetype longestCharacter = 4;
    for (qsizetype cut = 0; cut < std::min(longestCharacter, bytes.size() + 1); ++cut) {
        if (auto text = decodedStrictly(bytes.chopped(cut), encoding)) {
            return text;
        }
    }
    return std::nullopt;
}

/// The more, the less like a text that somebody wrote.
int strangeness(const QString &text)
{
    int controls = 0;
    int strange = 0;
    int characters = 0;
    QChar before;
    for (const QChar unit : text) {
        if (unit.unicode() >= 0x80) {
            ++characters;
            controls += unit.unicode() < 0xA0 ? 1 : 0;
            // Signs within words, capitals behind small letters.
            const bool isLetter = unit.isLetter() || unit.isMark();
            strange += (!isLetter && before.isLetter() && !unit.isPunct()) || (unit.isUpper() && before.isLower()) ? 1 : 0;
        }
        before = unit;
    }
    return characters == 0 ? 0 : (100 * controls + 30 * strange) / characters;
}

QStringList linesOf(const QString &text)
{
    QStringList lines = text.split(u'\n');
    for (QString &line : lines) {
        line = line.simplified();
    }
    return lines;
}

/// Around what is to be seen.
QString excerpt(const QString &line, qsizetype from)
{
    constexpr qsizetype before = 12;
    const qsizetype start = from > longestLine - before ? from - before : 0;
    QString part = line.mid(start, longestLine);
    return (start > 0 ? u"…"_s : QString()) + part + (start + longestLine < line.size() ? u"…"_s : QString());
}

} // namespace

std::vector<EncodingDetection::Candidate> EncodingDetection::candidates(QByteArrayView head, QLocale::Language language)
{
    const QByteArrayView sample = head.first(std::min(head.size(), sampleSize));
    const std::map<TextEncoding, int> confidences = detected(sample);
    const auto utf = QStringConverter::encodingForData(sample);
    const bool hasUtf16Mark = utf == QStringConverter::Utf16LE || utf == QStringConverter::Utf16BE;
    struct Scored {
        Candidate candidate;
        int score = 0;
        QStringList lines;
    };
    std::vector<Scored> all;
    for (const TextEncoding encoding : supportedEncodings()) {
        const auto text = decodedSample(sample, encoding);
        Scored scored{.candidate = {.encoding = encoding, .isPossible = text.has_value()}};
        if (text) {
            const auto found = confidences.find(encoding);
            scored.score = (found == confidences.end() ? 0 : found->second) - strangeness(*text) +
                           (encoding == encodingOf(language) ? 8 : 0) + (encoding == TextEncoding::utf8 ? 20 : 0);
            // Those of one byte order take the mark for a character of the text.
            if (hasUtf16Mark && encoding == TextEncoding::utf16) {
                scored.score += certainty;
            }
            scored.lines = linesOf(*text);
        }
        all.push_back(std::move(scored));
    }
    std::ranges::stable_sort(all, [](const Scored &a, const Scored &b) {
        return std::pair(a.candidate.isPossible, a.score) > std::pair(b.candidate.isPossible, b.score);
    });
    // The first lines which are not the same in all that read the file as lines at all.
    const qsizetype lineCount = all.front().lines.size();
    std::vector<std::pair<qsizetype, qsizetype>> differing;
    for (qsizetype line = 0; line < lineCount && qsizetype(differing.size()) < mostLines; ++line) {
        qsizetype from = all.front().lines[line].size();
        bool differs = false;
        for (const Scored &other : all) {
            if (other.lines.size() == lineCount && other.lines[line] != all.front().lines[line]) {
                const auto [mine, theirs] = std::ranges::mismatch(all.front().lines[line], other.lines[line]);
                from = std::min<qsizetype>(from, mine - all.front().lines[line].begin());
                differs = true;
            }
        }
        if (differs) {
            differing.emplace_back(line, from);
        }
    }
    if (differing.empty()) {
        differing.emplace_back(0, 0);
    }
    std::vector<Candidate> result;
    for (Scored &scored : all) {
        const bool hasLines = scored.lines.size() == lineCount;
        for (const auto &[line, from] : differing) {
            if (scored.candidate.isPossible) {
                scored.candidate.lines << (hasLines ? excerpt(scored.lines[line], from) : excerpt(scored.lines.join(u' '), 0));
            }
            if (!hasLines) {
                break;
            }
        }
        result.push_back(std::move(scored.candidate));
    }
    return result;
}

namespace {

/// The bytes that such a text was read from: the lines, or the beginning, that tell most.
QByteArray tellingBytes(const Rope &text, TextEncoding encoding)
{
    const bool isWide = encoding != TextEncoding::isoLatin1;
    QByteArray bytes;
    QByteArray line;
    bool isTelling = false;
    text.forEachChunk({0, std::min(text.length(), searchedUnits)}, [&](const Rope::Chunk &chunk) {
        for (qsizetype index = 0; index < chunk.length; ++index) {
            const char16_t unit = chunk.at(index);
            if (isWide) {
                const char high = char(unit >> 8);
                const char low = char(unit & 0xFF);
                bytes += encoding == TextEncoding::utf16LittleEndian ? low : high;
                bytes += encoding == TextEncoding::utf16LittleEndian ? high : low;
                continue;
            }
            line += char(unit);
            isTelling = isTelling || unit >= 0x80;
            if (unit == u'\n' || line.size() > 4096) {
                bytes += isTelling ? line : QByteArray();
                line.clear();
                isTelling = false;
            }
        }
        return bytes.size() < sampleSize;
    });
    return isTelling ? bytes + line : bytes;
}

struct Shape {
    int high = 0;
    int controls = 0;
    /// High letters that stand in a row of three or more.
    int inRuns = 0;
    /// High signs that stand between letters.
    int signsInWords = 0;
};

Shape shapeOf(QByteArrayView latin1)
{
    const auto at = [&](qsizetype index) { return index >= 0 && index < latin1.size() ? uchar(latin1[index]) : uchar(' '); };
    const auto isLetter = [](uchar unit) { return QChar(char16_t(unit)).isLetter(); };
    Shape shape;
    int run = 0;
    for (qsizetype index = 0; index <= latin1.size(); ++index) {
        const uchar unit = at(index);
        if (unit >= 0xC0) {
            ++run;
        } else {
            shape.inRuns += run >= 3 ? run : 0;
            run = 0;
        }
        if (unit >= 0x80) {
            ++shape.high;
            shape.controls += unit < 0xA0 ? 1 : 0;
            const bool isSign = !isLetter(unit) && unit != 0xAD && unit != 0xB7 && unit != 0xA0;
            shape.signsInWords += isSign && isLetter(at(index - 1)) && isLetter(at(index + 1)) ? 1 : 0;
        }
    }
    return shape;
}

bool isLatin(TextEncoding encoding)
{
    static constexpr std::array latin = {TextEncoding::isoLatin1,   TextEncoding::isoLatin2,   TextEncoding::isoLatin5,
                                         TextEncoding::windows1250, TextEncoding::windows1252, TextEncoding::windows1254};
    return std::ranges::find(latin, encoding) != latin.end();
}

/// Bytes of which every second would be a zero in most UTF-16: blanks, breaks and letters of ASCII.
bool isText8Bit(QByteArrayView bytes)
{
    qsizetype blanks = 0;
    qsizetype ascii = 0;
    for (const char byte : bytes) {
        const auto unit = uchar(byte);
        blanks += unit == ' ' || unit == '\n' ? 1 : 0;
        ascii += (unit >= 0x20 && unit < 0x7F) || unit == '\n' || unit == '\r' || unit == '\t' ? 1 : 0;
    }
    return blanks * 25 >= bytes.size() || ascii * 2 >= bytes.size();
}

/// The likeliest of those that need not be marked, but for `except`.
std::optional<TextEncoding> likeliest(QByteArrayView bytes, QLocale::Language language, const auto &isWanted)
{
    for (const EncodingDetection::Candidate &candidate : EncodingDetection::candidates(bytes, language)) {
        if (candidate.isPossible && isWanted(candidate.encoding)) {
            return candidate.encoding;
        }
    }
    return std::nullopt;
}

bool isWide(TextEncoding encoding)
{
    static constexpr std::array wide = {TextEncoding::utf16, TextEncoding::utf16BigEndian, TextEncoding::utf16LittleEndian,
                                        TextEncoding::utf32BigEndian, TextEncoding::utf32LittleEndian};
    return std::ranges::find(wide, encoding) != wide.end() || encoding == TextEncoding(0x8C000100);
}

} // namespace

std::optional<TextEncoding> EncodingDetection::suggestion(const Rope &text, TextEncoding encoding, QLocale::Language language)
{
    constexpr int leastConfidence = 40;
    if (!isWide(encoding) && encoding != TextEncoding::isoLatin1) {
        return std::nullopt;
    }
    const QByteArray bytes = tellingBytes(text, encoding);
    if (bytes.isEmpty()) {
        return std::nullopt;
    }
    if (isWide(encoding)) {
        return isText8Bit(bytes) ? likeliest(bytes, language, [](TextEncoding other) { return !isWide(other); }) : std::nullopt;
    }
    const Shape shape = shapeOf(bytes);
    if (shape.controls > 0) {
        return likeliest(bytes, language, [](TextEncoding other) { return !isWide(other) && other != TextEncoding::isoLatin1; });
    }
    const std::map<TextEncoding, int> confidences = detected(bytes);
    const auto best = std::ranges::max_element(confidences, {}, [](const auto &entry) { return entry.second; });
    if (best == confidences.end() || best->second < leastConfidence || best->first == TextEncoding::isoLatin1) {
        return std::nullopt;
    }
    const bool isStrange = isLatin(best->first) ? shape.signsInWords * 5 >= shape.high : shape.inRuns * 2 >= shape.high;
    return isStrange ? likeliest(bytes, language, [](TextEncoding other) { return !isWide(other) && other != TextEncoding::isoLatin1; })
                     : std::nullopt;
}
