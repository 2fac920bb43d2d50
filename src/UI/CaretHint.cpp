// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/CaretHint.h"

#include "Base/Translation.h"
#include "Text/CharacterName.h"
#include "Text/Rope.h"
#include "Text/TextBoundaries.h"
#include "Text/TextCounts.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Of one grapheme; there are some of hundreds.
constexpr qsizetype mostCodePoints = 8;
constexpr qsizetype mostBytes = 32;
/// Nobody counts characters as far into a line as that.
constexpr qsizetype mostUnitsOfLine = 4096;
constexpr QStringView more = u"…";

QString bytesLine(const QString &title, const std::optional<QByteArray> &bytes)
{
    if (!bytes) {
        return formatted(localized(u"Not in %@"), title);
    }
    const QString hex = QString::fromLatin1(bytes->first(std::min(bytes->size(), mostBytes)).toHex(' ').toUpper());
    return title + u": "_s + hex + (bytes->size() > mostBytes ? more.toString() : QString());
}

/// What is written for it, without a mark of the byte order.
std::optional<QByteArray> bytesIn(TextEncoding encoding, QStringView units)
{
    auto bytes = encoded(units, encoding, TextEncoder::Mode::strict);
    if (bytes && encoding == TextEncoding::utf16) {
        bytes->remove(0, qsizetype(sizeof(char16_t)));
    }
    return bytes;
}

} // namespace

QString caretHint(const Rope &text, qsizetype caret, TextEncoding encoding, LineEnding lineEnding)
{
    QStringList lines;
    if (caret >= text.length()) {
        lines << localized(u"End of text");
    } else {
        QString grapheme = text.toString(TextRange::between(caret, TextBoundaries::nextGrapheme(text, caret)));
        if (grapheme == u"\n"_s) {
            grapheme = rawValue(lineEnding).toString();
        }
        const QList<uint> codePoints = grapheme.toUcs4();
        for (const uint codePoint : codePoints.first(std::min(codePoints.size(), mostCodePoints))) {
            lines << codePointName(codePoint) + u' ' + characterName(codePoint);
        }
        if (codePoints.size() > mostCodePoints) {
            lines << more.toString();
        }
        lines << bytesLine(displayName(TextEncoding::utf8), bytesIn(TextEncoding::utf8, grapheme));
        if (encoding != TextEncoding::utf8) {
            lines << bytesLine(displayName(encoding), bytesIn(encoding, grapheme));
        }
    }
    const qsizetype start = text.lineStart(text.lineAt(caret));
    if (const qsizetype units = caret - start; units <= mostUnitsOfLine) {
        if (const qsizetype characters = TextCounts::of(text, {start, units}).characters; characters != units) {
            lines << formatted(localized(u"Column %d, counted in characters"), characters + 1);
        }
    }
    return lines.join(u'\n');
}
