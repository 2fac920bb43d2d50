// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/RegularExpression.h"

#include "Base/Translation.h"

#include <unicode/uregex.h>

#include <array>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype engineMaximum = std::numeric_limits<int32_t>::max();

const UChar *units(QStringView text)
{
    // The engine refuses a null pointer even for an empty text.
    return text.isNull() ? u"" : text.utf16();
}

QStringView reasonOf(UErrorCode status)
{
    struct Row {
        UErrorCode status;
        QStringView reason;
    };
    static constexpr auto rows = std::to_array<Row>({
        {U_REGEX_BAD_ESCAPE_SEQUENCE, u"the backslash sequence is unknown"},
        {U_REGEX_PROPERTY_SYNTAX, u"the property name is unknown"},
        {U_REGEX_MISMATCHED_PAREN, u"a parenthesis has no counterpart"},
        {U_REGEX_BAD_INTERVAL, u"the repeat count in braces is malformed"},
        {U_REGEX_MAX_LT_MIN, u"the largest repeat count is below the smallest"},
        {U_REGEX_NUMBER_TOO_BIG, u"a number is too large"},
        {U_REGEX_INVALID_BACK_REF, u"the group that is referred to does not exist"},
        {U_REGEX_INVALID_FLAG, u"the option in (?…) is unknown"},
        {U_REGEX_LOOK_BEHIND_LIMIT, u"a look-behind may not be unbounded in length"},
        {U_REGEX_SET_CONTAINS_STRING, u"a set may hold single characters only"},
        {U_REGEX_MISSING_CLOSE_BRACKET, u"a bracket is not closed"},
        {U_REGEX_INVALID_RANGE, u"a range in brackets runs backwards"},
        {U_REGEX_PATTERN_TOO_BIG, u"the expression is too long"},
        {U_REGEX_INVALID_CAPTURE_GROUP_NAME, u"the group's name is invalid"},
    });
    for (const Row &row : rows) {
        if (row.status == status) {
            return row.reason;
        }
    }
    return u"it is malformed";
}

Error compileError(QStringView pattern, UErrorCode status, const UParseError &where)
{
    const QString reason = localized(reasonOf(status));
    if (where.line > 1 || where.offset < 0) {
        return {formatted(localized(u"“%@” is not a valid regular expression: %@."), pattern.toString(), reason), status};
    }
    return {
        formatted(localized(u"“%@” is not a valid regular expression: %@ (near character %d)."), pattern.toString(), reason, where.offset),
        status};
}

/// What the engine calls while it searches is told that the search belongs to `object` now.
void moveCallback(URegularExpression *expression, const RegularExpression *object)
{
    UErrorCode status = U_ZERO_ERROR;
    URegexMatchCallback *callback = nullptr;
    const void *before = nullptr;
    uregex_getMatchCallback(expression, &callback, &before, &status);
    uregex_setMatchCallback(expression, callback, object, &status);
}

} // namespace

std::optional<TextRange> RegularExpression::Match::group(int number) const
{
    if (number < 0 || number >= m_groups.size() || m_groups[number].location < 0) {
        return std::nullopt;
    }
    return m_groups[number];
}

Result<RegularExpression> RegularExpression::compile(QStringView pattern, Options options)
{
    return compile(pattern, options, Limits{});
}

Result<RegularExpression> RegularExpression::compile(QStringView pattern, Options options, Limits limits)
{
    UParseError where = {};
    UErrorCode status = U_ZERO_ERROR;
    URegularExpression *expression = nullptr;
    if (pattern.size() > engineMaximum) {
        status = U_REGEX_PATTERN_TOO_BIG;
    } else if (pattern.isEmpty()) {
        // The engine refuses an empty pattern; this one matches the same, nothing everywhere.
        expression = uregex_open(u"(?:)", 4, 0, &where, &status);
    } else {
        const uint32_t flags =
            (options.dotMatchesLineSeparators ? uint32_t(UREGEX_DOTALL) : 0) | (options.anchorsMatchLines ? uint32_t(UREGEX_MULTILINE) : 0);
        expression = uregex_open(pattern.utf16(), int32_t(pattern.size()), flags, &where, &status);
    }
    if (U_FAILURE(status)) {
        uregex_close(expression);
        return tl::make_unexpected(compileError(pattern, status, where));
    }
    const int groupCount = uregex_groupCount(expression, &status);
    return RegularExpression(expression, limits, groupCount);
}

RegularExpression::RegularExpression(URegularExpression *expression, Limits limits, int groupCount)
    : m_expression(expression), m_limits(limits), m_groupCount(groupCount)
{
    UErrorCode status = U_ZERO_ERROR;
    uregex_setStackLimit(m_expression, limits.stackBytes, &status);
    Q_ASSERT(U_SUCCESS(status));
}

RegularExpression::RegularExpression(RegularExpression &&other) noexcept
    : m_expression(std::exchange(other.m_expression, nullptr)), m_limits(other.m_limits), m_groupCount(other.m_groupCount),
      m_limitHits(other.m_limitHits), m_ticks(other.m_ticks), m_mostTicks(other.m_mostTicks),
      m_isSearching(std::exchange(other.m_isSearching, false))
{
    moveCallback(m_expression, this);
}

RegularExpression &RegularExpression::operator=(RegularExpression &&other) noexcept
{
    std::swap(m_expression, other.m_expression);
    m_limits = other.m_limits;
    m_groupCount = other.m_groupCount;
    m_limitHits = other.m_limitHits;
    m_ticks = other.m_ticks;
    m_mostTicks = other.m_mostTicks;
    m_isSearching = std::exchange(other.m_isSearching, false);
    moveCallback(m_expression, this);
    return *this;
}

RegularExpression::~RegularExpression()
{
    uregex_close(m_expression);
}

RegularExpression RegularExpression::clone() const
{
    UErrorCode status = U_ZERO_ERROR;
    URegularExpression *copy = uregex_clone(m_expression, &status);
    Q_CHECK_PTR(copy);
    return {copy, m_limits, m_groupCount};
}

void RegularExpression::begin(QStringView text, TextRange range, Bounds bounds)
{
    Q_ASSERT(range.location >= 0 && range.length >= 0 && range.end() <= text.size());
    if (text.size() > engineMaximum) {
        // Beyond what the engine can address.
        m_isSearching = false;
        ++m_limitHits;
        return;
    }
    UErrorCode status = U_ZERO_ERROR;
    uregex_setText(m_expression, units(text), int32_t(text.size()), &status);
    uregex_useAnchoringBounds(m_expression, bounds.areAnchoring, &status);
    uregex_useTransparentBounds(m_expression, bounds.areTransparent, &status);
    m_ticks = 0;
    m_mostTicks = m_limits.ticks + int(range.length / std::max(1, m_limits.unitsPerExtraTick));
    const auto goesOn = [](const void *context, int32_t /*ticks*/) -> UBool {
        auto *search = static_cast<RegularExpression *>(const_cast<void *>(context));
        return ++search->m_ticks < search->m_mostTicks;
    };
    uregex_setMatchCallback(m_expression, goesOn, this, &status);
    uregex_setRegion64(m_expression, range.location, range.end(), &status);
    m_isSearching = U_SUCCESS(status);
}

bool RegularExpression::findNext()
{
    if (!m_isSearching) {
        return false;
    }
    UErrorCode status = U_ZERO_ERROR;
    const bool found = uregex_findNext(m_expression, &status);
    if (U_FAILURE(status)) {
        // Out of time, of stack, or of memory for it: the expression is too hard for this text.
        ++m_limitHits;
        m_isSearching = false;
        return false;
    }
    return found;
}

std::optional<TextRange> RegularExpression::group(int number) const
{
    UErrorCode status = U_ZERO_ERROR;
    const int32_t start = uregex_start(m_expression, number, &status);
    const int32_t end = uregex_end(m_expression, number, &status);
    if (U_FAILURE(status) || start < 0) {
        return std::nullopt;
    }
    return TextRange::between(start, end);
}

RegularExpression::Match RegularExpression::match() const
{
    Match match;
    for (int number = 0; number <= m_groupCount; ++number) {
        match.m_groups.append(group(number).value_or(TextRange{-1, 0}));
    }
    return match;
}

std::optional<RegularExpression::Match> RegularExpression::firstMatch(QStringView text, TextRange range, Bounds bounds)
{
    begin(text, range, bounds);
    if (!findNext()) {
        return std::nullopt;
    }
    return match();
}

QString RegularExpression::replacement(const Match &match, QStringView text, QStringView format)
{
    int digits = 1;
    for (int largest = match.groupCount(); largest >= 10; largest /= 10) {
        ++digits;
    }
    QString result;
    for (qsizetype at = 0; at < format.size(); ++at) {
        if (format[at] == u'\\') {
            if (++at < format.size()) {
                result += format[at];
            }
            continue;
        }
        int number = 0;
        qsizetype end = at + 1;
        while (format[at] == u'$' && end < format.size() && end <= at + digits && format[end] >= u'0' && format[end] <= u'9') {
            number = number * 10 + (format[end++].unicode() - u'0');
        }
        if (end == at + 1) {
            result += format[at];
            continue;
        }
        if (const auto group = match.group(number)) {
            result += text.sliced(group->location, group->length);
        }
        at = end - 1;
    }
    return result;
}

QString RegularExpression::escapedPattern(QStringView text)
{
    QString result;
    for (const QChar unit : text) {
        if (u"\\*?+[](){}^$|./"_s.contains(unit)) {
            result += u'\\';
        }
        result += unit;
    }
    return result;
}
