// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// A text as a web page: one <pre> with a span for each piece that has a colour. Numbers of lines are drawn by the style sheet, so that they
// are not copied with the text. Spans end with their line.

#include "Base/AtomicFile.h"
#include "Base/Translation.h"
#include "Print/PaperColors.h"
#include "Print/Printing.h"
#include "View/DisplayText.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int allDone = 1000;
/// Of a line that are written at once, in units.
constexpr qsizetype longestPiece = 0x10000;

QString colorName(quint32 color)
{
    return u'#' + QString::number(color & 0xFFFFFF, 16).rightJustified(6, u'0');
}

/// As a style sheet wants it, with the browser's own for those who have it not; "monospace" is no name of any.
QString fontFamilies(const QString &name)
{
    QString escaped = name;
    if (name.compare(u"monospace"_s, Qt::CaseInsensitive) == 0) {
        return u"monospace"_s;
    }
    escaped.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s).replace(u'<', u"\\3c "_s);
    return u"\"%1\",monospace"_s.arg(escaped);
}

QString styleSheet(const PrintedText &text, const PrintStyle &style, const Theme &theme)
{
    QString sheet = u"pre{margin:1em;tab-size:%1;font-family:%2}\n"_s.arg(text.tabWidth).arg(fontFamilies(text.font.family()));
    sheet += u"body{margin:0;background:#ffffff;color:%1}\n"_s.arg(style.hasColors ? colorName(theme.foreground) : u"#000000"_s);
    if (style.hasLineNumbers) {
        sheet += u"[data-line]::before{content:attr(data-line);display:inline-block;width:%1ch;margin-right:2ch;text-align:right;"
                 u"color:#606060}\n"_s.arg(QString::number(text.text.lineAt(text.range.end()) + 1).size());
    }
    for (const ScopeRow &row : scopes) {
        if (const auto color = theme.color(row.scope); color && style.hasColors) {
            sheet += u".%1{color:%2%3%4}\n"_s.arg(row.rawValue, colorName(*color),
                                                  theme.bold.contains(row.scope) ? u";font-weight:bold"_s : u""_s,
                                                  theme.italic.contains(row.scope) ? u";font-style:italic"_s : u""_s);
        }
    }
    return sheet;
}

/// What stands in a line, no more than a piece of it at a time.
class HtmlLines final {
public:
    HtmlLines(const PrintedText &text, const PrintStyle &style, const Theme &theme) : m_text(text.text), m_hasNumbers(style.hasLineNumbers)
    {
        if (style.hasColors) {
            m_colors.emplace(text.text, text.language, theme, PaperColors::Slab::wholeText);
        }
    }

    void addNumber(QString &out, qsizetype line) const
    {
        if (m_hasNumbers) {
            out += u"<span data-line=\"%1\"></span>"_s.arg(line + 1);
        }
    }
    void add(QString &out, TextRange piece)
    {
        if (!m_colors) {
            out += displayText(m_text, piece).toHtmlEscaped();
            return;
        }
        m_colors->forEachScope(piece, [&](TextRange range, Scope scope) {
            const QString escaped = displayText(m_text, range).toHtmlEscaped();
            if (m_colors->theme().color(scope)) {
                out += u"<span class=\"%1\">%2</span>"_s.arg(rawValue(scope), escaped);
            } else {
                out += escaped;
            }
        });
    }

private:
    const Rope &m_text;
    bool m_hasNumbers;
    std::optional<PaperColors> m_colors;
};

/// Of the piece that begins at `from`.
qsizetype pieceEnd(const Rope &text, qsizetype from, qsizetype lineEnd)
{
    const qsizetype to = std::min(lineEnd, from + longestPiece);
    return to < lineEnd && text.splitsPair(to) ? to + 1 : to;
}

} // namespace

Result<void> writeHtml(const PrintedText &text, const PrintStyle &style, const QString &path, FileCalls &files, const std::stop_token &stop,
                       PrintProgress &progress)
{
    auto file = AtomicFile::open(path, AtomicFile::NewFile::readableByOthers, files);
    if (!file) {
        return tl::make_unexpected(file.error());
    }
    const Theme &theme = Theme::light();
    HtmlLines lines(text, style, theme);
    // The line break behind <pre> is none of the text.
    QString out =
        u"<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>%1</title>\n<style>\n%2</style>\n</head>\n<body>\n<pre>\n"_s
            .arg(text.title.toHtmlEscaped(), styleSheet(text, style, theme));
    qsizetype line = text.text.lineAt(text.range.location);
    qsizetype from = text.range.location;
    while (from < text.range.end()) {
        if (stop.stop_requested()) {
            return failure({});
        }
        const PrintedLine whole = printedLine(text, line);
        if (from <= whole.range.location) {
            lines.addNumber(out, line);
        }
        const TextRange piece = TextRange::between(from, pieceEnd(text.text, from, whole.range.end()));
        lines.add(out, piece);
        from = piece.end();
        if (from == whole.range.end()) {
            out += whole.next > from ? u"\n"_s : u""_s;
            from = whole.next;
            ++line;
        }
        if (out.size() >= longestPiece) {
            if (const auto written = file->write(std::exchange(out, {}).toUtf8()); !written) {
                return written;
            }
            progress.set(int((from - text.range.location) * allDone / text.range.length));
        }
    }
    out += u"</pre>\n</body>\n</html>\n"_s;
    if (const auto written = file->write(out.toUtf8()); !written) {
        return written;
    }
    progress.set(allDone);
    return stop.stop_requested() ? failure({}) : file->commit().map([](const AtomicFile::Written &) {});
}
