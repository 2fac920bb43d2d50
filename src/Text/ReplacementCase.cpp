// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/ReplacementCase.h"

#include "Text/TextRange.h"

#include <algorithm>
#include <vector>

namespace {

enum class Case { none, lower, upper, capital, mixed };

/// Of letters, with their marks and apostrophes.
std::vector<TextRange> wordsOf(QStringView text)
{
    std::vector<TextRange> words;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar unit = text[at];
        const bool goesOn = !words.empty() && words.back().end() == at;
        const bool isInWord = unit.isLetter() || unit.isSurrogate() || (goesOn && (unit.isMark() || unit.isDigit() || unit == u'\''));
        if (isInWord && goesOn) {
            ++words.back().length;
        } else if (isInWord) {
            words.push_back({at, 1});
        }
    }
    return words;
}

Case caseOf(QStringView text)
{
    int upper = 0;
    int lower = 0;
    bool beginsUpper = false;
    for (const char32_t character : text.toUcs4()) {
        const bool isUpper = QChar::isUpper(character) || QChar::isTitleCase(character);
        beginsUpper = beginsUpper || (isUpper && upper + lower == 0);
        upper += isUpper ? 1 : 0;
        lower += QChar::isLower(character) ? 1 : 0;
    }
    if (upper == 0) {
        return lower == 0 ? Case::none : Case::lower;
    }
    // One capital alone, as in "I", is no word in capitals.
    if (lower == 0 && upper > 1) {
        return Case::upper;
    }
    return beginsUpper ? Case::capital : Case::mixed;
}

QString capitalized(const QString &text)
{
    qsizetype at = 0;
    while (at < text.size() && !text[at].isLetter() && !text[at].isSurrogate()) {
        ++at;
    }
    const qsizetype end = std::min(at + (at < text.size() && text[at].isHighSurrogate() ? 2 : 1), text.size());
    return text.first(at) + text.sliced(at, end - at).toUpper() + text.sliced(end);
}

QString inCase(QStringView found, const QString &replacement)
{
    switch (caseOf(found)) {
    case Case::lower:
        return replacement.toLower();
    case Case::upper:
        return replacement.toUpper();
    case Case::capital:
        return capitalized(replacement);
    case Case::mixed:
    case Case::none:
        break;
    }
    return replacement;
}

} // namespace

QString inCaseOf(QStringView found, const QString &replacement)
{
    const std::vector<TextRange> from = wordsOf(found);
    const std::vector<TextRange> to = wordsOf(replacement);
    if (from.size() != to.size() || from.size() < 2) {
        return inCase(found, replacement);
    }
    QString result;
    qsizetype at = 0;
    for (size_t i = 0; i < to.size(); ++i) {
        result += QStringView(replacement).sliced(at, to[i].location - at);
        result += inCase(found.sliced(from[i].location, from[i].length), replacement.sliced(to[i].location, to[i].length));
        at = to[i].end();
    }
    return result + replacement.sliced(at);
}
