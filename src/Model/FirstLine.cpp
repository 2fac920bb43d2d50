// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/FirstLine.h"

#include "Text/Rope.h"
#include "Text/TextBoundaries.h"

#include <algorithm>

namespace {

constexpr qsizetype reach = 512;
constexpr int mostGraphemes = 40;
constexpr qsizetype mostBytes = 200;

/// Without a grapheme that the reach cuts in two.
QString wholeLine(const Rope &text)
{
    const QString start = text.toString({0, TextBoundaries::snapped(text, std::min(text.length(), reach))});
    for (QStringView line : QStringView(start).split(u'\n')) {
        QString plain;
        for (const QChar unit : line) {
            plain += unit.category() == QChar::Other_Control || unit.category() == QChar::Separator_Line ||
                             unit.category() == QChar::Separator_Paragraph || unit == QChar::ByteOrderMark
                         ? QChar(u' ')
                         : unit;
        }
        plain = plain.simplified();
        if (!plain.isEmpty()) {
            return plain;
        }
    }
    return {};
}

/// The start of `line` with so many graphemes and bytes at most.
QString cut(const QString &line, qsizetype bytes)
{
    const Rope text(line);
    qsizetype end = 0;
    for (int count = 0; count < mostGraphemes && end < line.size(); ++count) {
        const qsizetype next = TextBoundaries::nextGrapheme(text, end);
        if (QStringView(line).first(next).toUtf8().size() > bytes) {
            break;
        }
        end = next;
    }
    return line.first(end);
}

} // namespace

QString firstLineOf(const Rope &text)
{
    const QString line = wholeLine(text);
    const QString shown = cut(line, line.size() * 3);
    return shown.size() < line.size() ? shown.trimmed() + u'…' : shown;
}

QString fileNameFor(const Rope &text)
{
    QString line = wholeLine(text);
    line.replace(u'/', u'-');
    // One that begins with a dot is hidden, one with a dash an option to many programs.
    const auto isUnwanted = [](QChar unit) { return unit == u'.' || unit == u'-' || unit.isSpace(); };
    const auto start = std::ranges::find_if_not(line, isUnwanted);
    return cut(line.mid(start - line.begin()), mostBytes).trimmed();
}
