// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimExRange.h"

#include "Base/Translation.h"
#include "Vim/VimExEdits.h"
#include "Vim/VimMarks.h"
#include "Vim/VimSearch.h"

namespace {

constexpr qsizetype largest = 1'000'000'000;

class AddressParser {
public:
    AddressParser(QStringView typed, const VimExScope &scope, VimExRange::Trace &trace)
        : m_typed(typed), m_scope(scope), m_trace(trace), m_lines(scope.text, 1, scope.lastLine), m_here(m_lines.number(scope.caret))
    {}

    [[nodiscard]] QChar next() const { return m_at < m_typed.size() ? m_typed[m_at] : QChar(); }
    [[nodiscard]] qsizetype at() const { return m_at; }
    void skip() { ++m_at; }
    void skipBlanks()
    {
        while (isSpaceOrTab(next().unicode())) {
            ++m_at;
        }
    }
    /// Over what else could be of lines, if there is a command behind it.
    void skipToCommand()
    {
        qsizetype at = m_at;
        while (at < m_typed.size() && QStringView(u".$%,;+-0123456789 \t:").contains(m_typed[at])) {
            ++at;
        }
        m_at = at < m_typed.size() && m_typed[at] != u'|' ? at : m_at;
    }
    [[nodiscard]] qsizetype here() const { return m_here; }
    /// Before the first line too, to search from there.
    void goTo(qsizetype line)
    {
        m_here = std::clamp<qsizetype>(line, 0, m_lines.count());
        m_trace.caretLine = std::max<qsizetype>(m_here, 1);
    }
    [[nodiscard]] qsizetype lastLine() const { return m_lines.count(); }

    /// None when there is no line here.
    [[nodiscard]] Result<std::optional<qsizetype>> line()
    {
        skipBlanks();
        std::optional<qsizetype> line;
        do {
            auto base = this->base(line);
            if (!base) {
                return tl::make_unexpected(base.error());
            }
            line = *base ? *base : line;
            takeOffsets(line);
        } while (next() == u'/' || next() == u'?');
        return line;
    }

    [[nodiscard]] Result<qsizetype> mark(QChar name) const
    {
        const auto place = m_scope.marks.place(name.unicode());
        if (!place) {
            return failure(formatted(localized(u"Mark not set: %@"), QString(name)));
        }
        return m_lines.number(*place);
    }

private:
    /// A number, a place or a pattern.
    [[nodiscard]] Result<std::optional<qsizetype>> base(std::optional<qsizetype> before)
    {
        const QChar first = next();
        if (first == u'.' || first == u'$') {
            ++m_at;
            return first == u'.' ? m_here : m_lines.count();
        }
        if (first == u'\'') {
            ++m_at;
            const QChar name = next();
            ++m_at;
            const auto line = mark(name);
            return line ? Result<std::optional<qsizetype>>(*line) : tl::make_unexpected(line.error());
        }
        if (first == u'/' || first == u'?') {
            ++m_at;
            const VimExPart part = VimExPart::upTo(first, m_typed.sliced(m_at));
            m_at += part.end;
            auto line = found(part.text.isEmpty() ? lastPattern() : part.text, first == u'/', before);
            if (line && part.isEnded) {
                // What follows at once belongs to the pattern, and stays in the text.
                takeOffset(*line);
                line = std::clamp<qsizetype>(**line, 1, m_lines.count());
            }
            return line;
        }
        if (first == u'\\') {
            ++m_at;
            const QChar kind = next();
            ++m_at;
            if (kind != u'/' && kind != u'?' && kind != u'&') {
                return failure(localized(u"\\ is followed by /, ? or &"));
            }
            return found(kind == u'&' ? m_scope.lastSubstituted : lastPattern(), kind != u'?', before);
        }
        if (first >= u'0' && first <= u'9') {
            return number();
        }
        return std::optional<qsizetype>();
    }

    void takeOffsets(std::optional<qsizetype> &line)
    {
        do {
            skipBlanks();
        } while (takeOffset(line));
    }

    /// "+2", "-" or "2"; false when there is none.
    bool takeOffset(std::optional<qsizetype> &line)
    {
        const QChar sign = next();
        if (sign == u'+' || sign == u'-') {
            ++m_at;
        } else if (!(sign >= u'0' && sign <= u'9')) {
            return false;
        }
        const bool hasNumber = next() >= u'0' && next() <= u'9';
        const qsizetype distance = hasNumber ? number() : 1;
        line = line.value_or(m_here) + (sign == u'-' ? -distance : distance);
        return true;
    }

    [[nodiscard]] QString lastPattern() const { return m_trace.pattern.value_or(m_scope.lastPattern); }

    [[nodiscard]] qsizetype number()
    {
        qsizetype value = 0;
        for (; next() >= u'0' && next() <= u'9'; ++m_at) {
            value = std::min(value * 10 + next().digitValue(), largest);
        }
        return value;
    }

    [[nodiscard]] Result<std::optional<qsizetype>> found(const QString &pattern, bool isForward, std::optional<qsizetype> before)
    {
        if (pattern.isEmpty()) {
            return failure(localized(u"Nothing was searched for yet"));
        }
        using enum VimSearch::Direction;
        const VimSearch search = VimSearch::exact(pattern, isForward ? forward : backward, m_scope.options);
        if (const QString problem = search.problem(); !problem.isEmpty()) {
            return failure(problem);
        }
        m_trace.pattern = pattern;
        m_trace.isBackward = !isForward;
        const qsizetype from = std::clamp<qsizetype>(before.value_or(m_here), 0, m_lines.count());
        // Line 0 is before all that there is, and the search goes on there as at the other end.
        const auto found = from > 0 ? search.move(m_scope.text, isForward ? m_lines.endOf(from) : m_lines.startOf(from))
                                    : search.move(m_scope.text, isForward ? m_scope.text.length() : 0);
        if (!found) {
            return failure(search.messageForNone());
        }
        return m_lines.number(found->hit.location);
    }

    QStringView m_typed;
    const VimExScope &m_scope;
    VimExRange::Trace &m_trace;
    VimLines m_lines;
    qsizetype m_at = 0;
    qsizetype m_here;
};

} // namespace

VimExPart VimExPart::upTo(QChar delimiter, QStringView typed)
{
    VimExPart part;
    qsizetype at = 0;
    for (; at < typed.size() && typed[at] != delimiter; ++at) {
        if (typed[at] == u'\\' && at + 1 < typed.size()) {
            ++at;
            if (typed[at] != delimiter) {
                part.text += u'\\';
            }
        }
        part.text += typed[at];
    }
    part.isEnded = at < typed.size();
    part.end = std::min(at + 1, typed.size());
    return part;
}

Result<VimExRange> VimExRange::parse(QStringView typed, const VimExScope &scope, Trace &trace)
{
    AddressParser parser(typed, scope, trace);
    VimExRange range{.first = parser.here(), .last = parser.here()};
    while (parser.next() == u':' || isSpaceOrTab(parser.next().unicode())) {
        parser.skip();
    }
    for (;;) {
        range.first = range.last;
        range.last = parser.here();
        const auto line = parser.line();
        if (!line) {
            return tl::make_unexpected(line.error());
        }
        ++range.written;
        bool isWritten = line->has_value();
        if (*line) {
            range.last = **line;
        } else if (parser.next() == u'%' || parser.next() == u'*') {
            const bool isAll = parser.next() == u'%';
            const auto start = isAll ? Result<qsizetype>(1) : parser.mark(u'<');
            const auto end = isAll ? Result<qsizetype>(parser.lastLine()) : parser.mark(u'>');
            if (!start || !end) {
                return tl::make_unexpected(start ? end.error() : start.error());
            }
            parser.skip();
            range.first = *start;
            range.last = *end;
            ++range.written;
            isWritten = true;
        }
        parser.skipBlanks();
        if (parser.next() == u';') {
            parser.goTo(range.last);
        } else if (parser.next() != u',') {
            if (range.written == 1) {
                range.first = range.last;
                range.written = isWritten ? 1 : 0;
            }
            break;
        }
        parser.skip();
    }
    while (parser.next() == u':' || isSpaceOrTab(parser.next().unicode())) {
        parser.skip();
    }
    parser.skipToCommand();
    range.target = range.last;
    range.isTurned = range.first > range.last;
    if (range.isTurned) {
        std::swap(range.first, range.last);
    }
    range.length = parser.at();
    return range;
}

Result<VimExRange::Address> VimExRange::parseAddress(QStringView typed, const VimExScope &scope, Trace &trace)
{
    AddressParser parser(typed, scope, trace);
    const auto line = parser.line();
    if (!line) {
        return tl::make_unexpected(line.error());
    }
    return Address{*line, parser.at()};
}
