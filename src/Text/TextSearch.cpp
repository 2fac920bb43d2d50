// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextSearch.h"

#include "Base/Translation.h"
#include "Text/CanonicalEquivalence.h"
#include "Text/LineRange.h"
#include "Text/ReplacementCase.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype literalWindow = qsizetype(32) * 1024;
constexpr qsizetype expressionWindow = qsizetype(128) * 1024;
/// What look-around sees beyond the searched units.
constexpr qsizetype context = 256;
/// Lines of one window that may use up their limits before the rest of it is given up.
constexpr int mostHardLines = 8;
/// Units of marks at a letter; Unicode's own limit for what is sane is 30 of them.
constexpr int mostMarks = 128;

// Characters

char32_t characterAt(const Rope &text, qsizetype offset)
{
    const char16_t unit = text.at(offset);
    if (QChar::isHighSurrogate(unit) && offset + 1 < text.length() && QChar::isLowSurrogate(text.at(offset + 1))) {
        return QChar::surrogateToUcs4(unit, text.at(offset + 1));
    }
    return unit;
}

char32_t characterBefore(const Rope &text, qsizetype offset)
{
    const char16_t unit = text.at(offset - 1);
    if (QChar::isLowSurrogate(unit) && offset > 1 && QChar::isHighSurrogate(text.at(offset - 2))) {
        return QChar::surrogateToUcs4(text.at(offset - 2), unit);
    }
    return unit;
}

/// Where the letter begins whose mark is at `offset`; more marks than any letter has are cut.
qsizetype letterStart(const Rope &text, qsizetype offset)
{
    for (int marks = 0; marks < mostMarks && offset > 0 && offset < text.length(); ++marks) {
        if (!text.splitsPair(offset) && !CanonicalEquivalence::isMark(characterAt(text, offset))) {
            break;
        }
        --offset;
    }
    return offset;
}

qsizetype letterEnd(const Rope &text, qsizetype offset)
{
    for (int marks = 0; marks < mostMarks && offset < text.length(); ++marks) {
        if (!text.splitsPair(offset) && !CanonicalEquivalence::isMark(characterAt(text, offset))) {
            break;
        }
        ++offset;
    }
    return offset;
}

/// As `\w` of a regular expression has it.
bool isWordCharacter(char32_t character)
{
    constexpr uint32_t kinds = U_GC_M_MASK | U_GC_ND_MASK | U_GC_PC_MASK;
    const auto point = static_cast<UChar32>(character);
    return u_hasBinaryProperty(point, UCHAR_ALPHABETIC) || (U_GET_GC_MASK(point) & kinds) != 0 || character == 0x200C ||
           character == 0x200D;
}

/// Whether a word of a script that is written without blanks ends at `offset`.
bool isDictionaryBoundary(const Rope &text, qsizetype offset)
{
    constexpr qsizetype around = 64;
    struct Closer {
        void operator()(UBreakIterator *iterator) const { ubrk_close(iterator); }
    };
    UErrorCode status = U_ZERO_ERROR;
    thread_local const std::unique_ptr<UBreakIterator, Closer> words(ubrk_open(UBRK_WORD, "", nullptr, 0, &status));
    if (!words) {
        return false;
    }
    const TextRange range = TextRange::between(std::max<qsizetype>(0, offset - around), std::min(text.length(), offset + around));
    std::array<char16_t, 2 * around> units;
    text.copy(range, units.data());
    ubrk_setText(words.get(), units.data(), static_cast<int32_t>(range.length), &status);
    return U_SUCCESS(status) && ubrk_isBoundary(words.get(), static_cast<int32_t>(offset - range.location));
}

bool isWordEdge(const Rope &text, qsizetype offset)
{
    constexpr char32_t firstWithoutBlanks = 0x0E00;
    if (offset == 0 || offset == text.length()) {
        return true;
    }
    const char32_t before = characterBefore(text, offset);
    const char32_t behind = characterAt(text, offset);
    if (!isWordCharacter(before) || !isWordCharacter(behind)) {
        return true;
    }
    return before >= firstWithoutBlanks && behind >= firstWithoutBlanks && isDictionaryBoundary(text, offset);
}

/// Simple case folding, which is one to one, of every unit that is a character.
const std::vector<char16_t> &foldingTable()
{
    static const std::vector<char16_t> table = [] {
        std::vector<char16_t> folded(0x10000);
        for (UChar32 unit = 0; unit < 0x10000; ++unit) {
            const UChar32 other = u_foldCase(unit, U_FOLD_CASE_DEFAULT);
            folded[static_cast<size_t>(unit)] = static_cast<char16_t>(other < 0x10000 ? other : unit);
        }
        return folded;
    }();
    return table;
}

void fold(char16_t *units, qsizetype count)
{
    const char16_t *table = foldingTable().data();
    for (qsizetype i = 0; i < count; ++i) {
        const char16_t unit = units[i];
        units[i] = table[unit];
        if (QChar::isHighSurrogate(unit) && i + 1 < count && QChar::isLowSurrogate(units[i + 1])) {
            const auto folded =
                static_cast<char32_t>(u_foldCase(static_cast<UChar32>(QChar::surrogateToUcs4(unit, units[i + 1])), U_FOLD_CASE_DEFAULT));
            if (folded >= 0x10000) {
                units[i] = QChar::highSurrogate(folded);
                units[i + 1] = QChar::lowSurrogate(folded);
            }
            ++i;
        }
    }
}

// Expressions

/// Whether `group`, which follows "(?", makes `.` match a line's end.
bool changesLineEnds(QStringView group)
{
    for (const QChar unit : group) {
        if (unit == u's' || unit == u'd') {
            return true;
        }
        if (!unit.isLetter() && unit != u'-') {
            break;
        }
    }
    return false;
}

/// False when the expression might match a line's end; when in doubt it might.
bool staysInLine(QStringView pattern)
{
    for (qsizetype at = 0; at < pattern.size(); ++at) {
        const char16_t unit = pattern[at].unicode();
        const QStringView rest = pattern.sliced(at + 1);
        if (unit < 0x20) {
            return false;
        }
        if (unit == u'\\') {
            if (rest.isEmpty() || (rest.front().isLetter() && !u"dwSbBAGZz"_s.contains(rest.front())) || rest.front() == u'0') {
                return false;
            }
            ++at;
        } else if (unit == u'[' && (rest.startsWith(u'^') || rest.startsWith(u':'))) {
            return false;
        } else if (unit == u'(' && rest.startsWith(u'?') && changesLineEnds(rest.sliced(1))) {
            return false;
        }
    }
    return true;
}

/// `pattern` where no word goes on at either end.
QString asWholeWord(const QString &pattern)
{
    return u"(?:(?<!\\w)|(?!\\w))(?:"_s + pattern + u")(?:(?!\\w)|(?<=\\W))"_s;
}

} // namespace

/// A stretch of the text in one piece for the engine.
struct TextSearcher::Excerpt {
    QString units;
    qsizetype start = 0;
    /// Where matches may lie.
    TextRange region;

    Excerpt(const Rope &text, TextRange matchable) : region(matchable)
    {
        const auto legal = [&text](qsizetype offset) { return text.splitsPair(offset) ? offset - 1 : offset; };
        start = legal(std::max<qsizetype>(0, region.location - context));
        units = text.toString(TextRange::between(start, legal(std::min(text.length(), region.end() + context))));
    }
    [[nodiscard]] TextRange inUnits(TextRange range) const { return {range.location - start, range.length}; }
};

struct TextSearcher::Walk {
    /// A hit where it was found.
    struct Place {
        TextRange hit;
        /// Null for literal patterns.
        const Excerpt *excerpt = nullptr;
    };

    const Rope &text;
    TextRange range;
    const SearchControl &control;
    std::function<bool(const Place &)> visit;
    qsizetype at = range.location;
    /// An empty hit at the end of the text is one.
    bool takesEnd = false;

    /// Goes on at `next`; false when it is time to stop.
    [[nodiscard]] bool goOn(qsizetype next)
    {
        if (control.searched) {
            control.searched->fetch_add(std::min(next, range.end()) - at, std::memory_order_relaxed);
        }
        at = next;
        return !control.stop.stop_requested();
    }
};

Result<TextSearcher> TextSearcher::compile(const SearchQuery &query)
{
    TextSearcher searcher;
    searcher.m_query = query;
    if (!query.isRegularExpression) {
        searcher.m_seeksEquivalents = CanonicalEquivalence::hasEquivalents(query.pattern);
        QString needle = searcher.m_seeksEquivalents ? DecomposedText(query.pattern).units() : query.pattern;
        if (!query.matchesCase) {
            fold(reinterpret_cast<char16_t *>(needle.data()), needle.size());
        }
        searcher.m_needle.setPattern(needle);
        searcher.m_checksWords = query.matchesWholeWords;
        return searcher;
    }
    const RegularExpression::Options options{.anchorsMatchLines = !query.isBareExpression};
    const QString prefix = query.matchesCase ? QString() : u"(?i)"_s;
    // As it was typed first: what is wrong is reported in the user's terms.
    auto expression = RegularExpression::compile(query.pattern, options);
    if (expression && !query.matchesCase) {
        expression = RegularExpression::compile(prefix + query.pattern, options);
    }
    if (!expression) {
        return tl::make_unexpected(expression.error());
    }
    const int groupCount = expression->groupCount();
    const auto use = [&](const QString &pattern) {
        auto other = RegularExpression::compile(prefix + pattern, options);
        const bool isSame = other && other->groupCount() == groupCount;
        if (isSame) {
            expression = std::move(other);
        }
        return isSame;
    };
    QString pattern = query.pattern;
    if (!query.isBareExpression) {
        const QString written = CanonicalEquivalence::expressionWithEquivalents(pattern);
        pattern = written != pattern && use(written) ? written : pattern;
    }
    if (query.matchesWholeWords) {
        // Inside the expression, so that it looks for another way to match when a word goes on. A comment or quotation that is open at
        // the pattern's end swallows what is added.
        searcher.m_checksWords = !use(asWholeWord(pattern));
    }
    searcher.m_staysInLine = staysInLine(query.pattern);
    searcher.m_expression = std::move(*expression);
    return searcher;
}

TextSearcher TextSearcher::clone() const
{
    TextSearcher copy;
    copy.m_query = m_query;
    copy.m_scope = m_scope;
    copy.m_needle = m_needle;
    copy.m_seeksEquivalents = m_seeksEquivalents;
    if (m_expression) {
        copy.m_expression = m_expression->clone();
    }
    copy.m_staysInLine = m_staysInLine;
    copy.m_checksWords = m_checksWords;
    return copy;
}

bool TextSearcher::accepts(const Rope &text, TextRange hit) const
{
    if (text.splitsPair(hit.location) || text.splitsPair(hit.end()) || hit.end() > scopeEnd(text)) {
        return false;
    }
    if (!m_checksWords) {
        return true;
    }
    return isWordEdge(text, hit.location) && isWordEdge(text, hit.end());
}

// Walking

void TextSearcher::walk(Walk &walk)
{
    if (m_scope) {
        walk.range = walk.range.intersected(*m_scope);
    }
    walk.takesEnd = m_query.isBareExpression && walk.range.end() > walk.text.length();
    walk.range = walk.range.clampedTo(walk.text.length());
    walk.at = walk.range.location;
    if (m_query.pattern.isEmpty()) {
        return;
    }
    const auto search = m_expression         ? &TextSearcher::searchExpression
                        : m_seeksEquivalents ? &TextSearcher::searchEquivalents
                                             : &TextSearcher::searchLiteral;
    bool goesOn = walk.at < walk.range.end() || walk.takesEnd;
    while (goesOn) {
        goesOn = (this->*search)(walk) && walk.at < walk.range.end();
    }
}

bool TextSearcher::searchLiteral(Walk &walk)
{
    const qsizetype length = m_query.pattern.size();
    const qsizetype windowEnd = std::min(walk.at + literalWindow, walk.range.end());
    QString units = walk.text.toString(TextRange::between(walk.at, std::min(walk.text.length(), windowEnd + length - 1)));
    if (!m_query.matchesCase) {
        fold(reinterpret_cast<char16_t *>(units.data()), units.size());
    }
    qsizetype from = 0;
    for (qsizetype found; (found = m_needle.indexIn(QStringView(units), from)) >= 0;) {
        const TextRange hit{walk.at + found, length};
        const bool isHit = accepts(walk.text, hit);
        if (isHit && !walk.visit({hit})) {
            return false;
        }
        from = found + (isHit ? length : 1);
    }
    return walk.goOn(std::max(windowEnd, walk.at + from));
}

/// As `searchLiteral`, in a window that begins and ends at letters, so that marks are put in the same order wherever a search begins.
bool TextSearcher::searchEquivalents(Walk &walk)
{
    const Rope &text = walk.text;
    const qsizetype length = m_needle.pattern().size();
    const qsizetype windowEnd = std::min(walk.at + literalWindow, walk.range.end());
    const qsizetype start = letterStart(text, walk.at);
    // A pair may decompose into one unit.
    const qsizetype end = letterEnd(text, std::min(text.length(), windowEnd + 2 * length));
    DecomposedText window(text.toString(TextRange::between(start, end)));
    if (!m_query.matchesCase) {
        fold(reinterpret_cast<char16_t *>(window.units().data()), window.units().size());
    }
    qsizetype reached = windowEnd;
    qsizetype from = window.indexOf(walk.at - start);
    for (qsizetype found; (found = m_needle.indexIn(QStringView(window.units()), from)) >= 0;) {
        const auto first = window.origin(found);
        const auto last = window.origin(found + length);
        if (first && start + *first >= windowEnd) {
            break;
        }
        const TextRange hit = first && last ? TextRange::between(start + *first, start + *last) : TextRange();
        const bool isHit = !hit.isEmpty() && accepts(text, hit);
        if (isHit && !walk.visit({hit})) {
            return false;
        }
        reached = isHit ? std::max(reached, hit.end()) : reached;
        from = found + (isHit ? length : 1);
    }
    return walk.goOn(reached);
}

bool TextSearcher::searchExpression(Walk &walk)
{
    const Rope &text = walk.text;
    qsizetype windowEnd = std::min(walk.at + expressionWindow, walk.range.end());
    if (windowEnd < walk.range.end()) {
        const qsizetype line = text.lineStart(text.lineAt(windowEnd));
        windowEnd = line > walk.at ? line : windowEnd;
    }
    return searchExcerpt(walk, windowEnd);
}

/// One window: matches begin in it and may go on behind it.
bool TextSearcher::searchExcerpt(Walk &walk, qsizetype windowEnd)
{
    const Rope &text = walk.text;
    qsizetype limit = std::min(scopeEnd(text), windowEnd + reach);
    if (m_staysInLine) {
        const qsizetype line = text.lineAt(std::max<qsizetype>(windowEnd - 1, 0));
        limit = line + 1 < text.lineCount() ? std::min(limit, text.lineStart(line + 1)) : limit;
    }
    if (text.splitsPair(limit)) {
        --limit;
    }
    const Excerpt excerpt(text, TextRange::between(walk.at, std::max(limit, windowEnd)));
    if (m_isHard) {
        return searchLines(walk, excerpt, windowEnd);
    }
    const int limitHits = m_expression->limitHits();
    const auto behindHits = searchRange(walk, excerpt, excerpt.region, windowEnd);
    if (!behindHits) {
        return false;
    }
    if (m_expression->limitHits() == limitHits) {
        return walk.goOn(std::max(windowEnd, *behindHits));
    }
    // What failed once would fail in most windows; hits that span lines are worth another try in each.
    m_isHard = m_staysInLine;
    if (!walk.goOn(*behindHits)) {
        return false;
    }
    return searchLines(walk, excerpt, windowEnd);
}

/// Visits the hits of `range` that begin before `windowEnd`; answers where the last of them ends, or `range` begins, and with nothing when
/// the visitor wants no more.
std::optional<qsizetype> TextSearcher::searchRange(Walk &walk, const Excerpt &excerpt, TextRange range, qsizetype windowEnd)
{
    qsizetype behindHits = range.location;
    bool goesOn = true;
    // Nothing at the end of a stretch is nothing at the start of the next.
    const qsizetype end = std::min(windowEnd, range.end());
    const qsizetype last = walk.takesEnd && end == walk.text.length() ? end : end - 1;
    m_expression->forEachMatch(excerpt.units, excerpt.inUnits(range), RegularExpression::Bounds::window(),
                               [&](const RegularExpression &found) {
                                   const TextRange hit{found.range().location + excerpt.start, found.range().length};
                                   if (hit.location > last) {
                                       return false;
                                   }
                                   behindHits = std::max(behindHits, hit.end());
                                   const bool isNone = hit.isEmpty() && !m_query.isBareExpression;
                                   goesOn = isNone || !accepts(walk.text, hit) || walk.visit({hit, &excerpt});
                                   return goesOn;
                               });
    return goesOn ? std::optional(behindHits) : std::nullopt;
}

/// The rest of a window that was too hard as a whole: every line has an allowance of its own.
bool TextSearcher::searchLines(Walk &walk, const Excerpt &excerpt, qsizetype windowEnd)
{
    const Rope &text = walk.text;
    int hardLines = 0;
    while (walk.at < windowEnd && hardLines < mostHardLines) {
        const qsizetype line = text.lineAt(walk.at);
        const qsizetype end = std::min(line + 1 < text.lineCount() ? text.lineStart(line + 1) : text.length(), excerpt.region.end());
        const int limitHits = m_expression->limitHits();
        const auto behindHits = searchRange(walk, excerpt, TextRange::between(walk.at, end), windowEnd);
        hardLines += m_expression->limitHits() - limitHits;
        if (!behindHits || !walk.goOn(std::max(*behindHits, std::min(end, windowEnd)))) {
            return false;
        }
    }
    if (hardLines == 0) {
        return true;
    }
    m_gaveUp = true;
    return walk.goOn(std::max(windowEnd, walk.at));
}

// Questions

void TextSearcher::forEachHit(const Rope &text, TextRange range, const Visitor &visit, const SearchControl &control)
{
    Walk hits{.text = text, .range = range, .control = control, .visit = [&visit](const Walk::Place &place) { return visit(place.hit); }};
    walk(hits);
}

std::optional<TextRange> TextSearcher::firstHit(const Rope &text, TextRange range, const SearchControl &control)
{
    std::optional<TextRange> first;
    const auto take = [&first](TextRange hit) {
        first = hit;
        return false;
    };
    forEachHit(text, range, take, control);
    return first;
}

std::optional<TextRange> TextSearcher::lastHit(const Rope &text, TextRange range, const SearchControl &control, qsizetype most)
{
    constexpr qsizetype smallest = 4096;
    range = range.clampedTo(text.length() + 1);
    range = m_scope ? range.intersected(*m_scope) : range;
    std::optional<TextRange> last;
    qsizetype size = smallest;
    for (qsizetype end = range.end(); end > range.location && !last && range.end() - end < most && !control.stop.stop_requested();) {
        qsizetype from = std::max(range.location, end - size);
        if (from > range.location) {
            // Lines that are longer than a window are cut, or a file of one line would be searched again and again.
            const qsizetype line = text.lineStart(text.lineAt(from));
            from = from - line <= size ? std::max(line, range.location) : from;
        }
        const auto take = [&last](TextRange hit) {
            last = hit;
            return true;
        };
        forEachHit(text, TextRange::between(from, end), take, control);
        end = from;
        size = std::min(2 * size, expressionWindow);
    }
    return last;
}

// Replacing

Result<QString> TextSearcher::replacementTemplate(const QString &typed) const
{
    if (!m_expression) {
        return typed;
    }
    const int groups = m_expression->groupCount();
    const auto noGroup = [groups](int number) {
        return failure(formatted(localized(u"The replacement refers to group %d, but the expression has %d."), number, groups));
    };
    QString result;
    for (qsizetype at = 0; at < typed.size(); ++at) {
        const QChar unit = typed[at];
        const QChar next = at + 1 < typed.size() ? typed[at + 1] : QChar();
        if (unit == u'\\') {
            if (next.isNull()) {
                return failure(localized(u"The replacement ends with a lone “\\”; “\\\\” stands for one."));
            }
            if (next.unicode() >= u'0' && next.unicode() <= u'9') {
                const int number = next.digitValue();
                if (number > groups) {
                    return noGroup(number);
                }
                // The digits behind it are none of it.
                result += u'$' + QString::number(number).rightJustified(QString::number(groups).size(), u'0');
            } else {
                result += next == u'n' ? u"\n"_s : next == u't' ? u"\t"_s : QString(unit) + next;
            }
            ++at;
            continue;
        }
        if (unit == u'$') {
            if (next < u'0' || next > u'9') {
                return failure(localized(u"“$” in the replacement needs the number of a group; “\\$” stands for the character."));
            }
            if (const int number = next.digitValue(); number > groups) {
                return noGroup(number);
            }
        }
        result += unit;
    }
    return result;
}

/// `excerpt` is that in which the expression has just matched.
QString TextSearcher::inPlaceOf(TextRange hit, const Rope &text, const Excerpt *excerpt,
                                const ReplacementTemplate &replacementTemplate) const
{
    const QString written = excerpt ? RegularExpression::replacement(m_expression->match(), excerpt->units, replacementTemplate.format)
                                    : replacementTemplate.format;
    return replacementTemplate.letterCase == ReplacementTemplate::LetterCase::asFound ? inCaseOf(text.toString(hit), written) : written;
}

std::optional<QString> TextSearcher::replacement(const Rope &text, TextRange hit, const ReplacementTemplate &replacementTemplate)
{
    std::optional<QString> result;
    const auto take = [&](const Walk::Place &place) {
        if (place.hit == hit) {
            result = inPlaceOf(hit, text, place.excerpt, replacementTemplate);
        }
        return false;
    };
    const SearchControl control;
    Walk one{.text = text, .range = {hit.location, 1}, .control = control, .visit = take};
    walk(one);
    return result;
}

TextReplacement TextSearcher::replacementOfAll(const Rope &text, TextRange range, const ReplacementTemplate &replacementTemplate,
                                               TextReplacement::Occurrences occurrences, const SearchControl &control)
{
    TextReplacement result;
    // Beyond so many hits: the text with them replaced, from the first to the last of them.
    Rope changed;
    TextRange hull;
    qsizetype shift = 0;
    TextRange line{-1, 0};
    const auto take = [&](const Walk::Place &place) {
        if (occurrences == TextReplacement::Occurrences::firstOfLine) {
            if (place.hit.location < line.end()) {
                return true;
            }
            const TextRange own = lineRange(text, {place.hit.location, 0});
            if (own.location == line.location) {
                return true; // at the end of the text
            }
            line = own;
        }
        const QString inserted = inPlaceOf(place.hit, text, place.excerpt, replacementTemplate);
        hull = result.count == 0 ? place.hit : TextRange::between(hull.location, place.hit.end());
        ++result.count;
        if (result.count <= TextReplacement::mostHits) {
            result.edits.add(place.hit, Rope(inserted));
            return true;
        }
        if (result.count == TextReplacement::mostHits + 1) {
            changed = result.edits.applied(text);
            shift = std::exchange(result.edits, {}).growth();
        }
        changed.replace({place.hit.location + shift, place.hit.length}, inserted);
        shift += inserted.size() - place.hit.length;
        return true;
    };
    Walk all{.text = text, .range = range, .control = control, .visit = take};
    walk(all);
    if (result.count > TextReplacement::mostHits) {
        result.edits.add(hull, changed.slice({hull.location, hull.length + shift}));
    }
    return result;
}

TextSelection TextReplacement::selectionAfter(const Rope &before, TextSelection selection) const
{
    const Rope after = edits.applied(before);
    const TextSelection mapped = TextChange{edits, before, after}.mapped(selection);
    return count > mostHits ? TextSelection::at(mapped.range().location) : mapped;
}
