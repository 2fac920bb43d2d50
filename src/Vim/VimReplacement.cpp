// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimReplacement.h"

#include "Base/Translation.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Changes the case of what is written, of the next character or of all.
class CaseWriter {
public:
    using Map = UChar32 (*)(UChar32);

    std::optional<Map> one;
    std::optional<Map> all;
    QString written;

    void write(QStringView text)
    {
        if (!one && !all) {
            written += text;
            return;
        }
        for (const char32_t character : text.toUcs4()) {
            const auto map = one ? std::exchange(one, std::nullopt) : all;
            const auto changed = static_cast<char32_t>(map ? (*map)(static_cast<UChar32>(character)) : static_cast<UChar32>(character));
            written += QString::fromUcs4(&changed, 1);
        }
    }
};

} // namespace

void VimReplacement::add(char16_t unit)
{
    if (m_pieces.empty() || m_pieces.back().kind != Kind::text) {
        m_pieces.emplace_back();
    }
    m_pieces.back().text += QChar(unit);
}

void VimReplacement::addEscape(QChar escape)
{
    constexpr std::pair<char16_t, Kind> changes[] = {{u'u', Kind::upperOne}, {u'l', Kind::lowerOne}, {u'U', Kind::upper},
                                                     {u'L', Kind::lower},    {u'e', Kind::asItIs},   {u'E', Kind::asItIs},
                                                     {u'r', Kind::lineBreak}};
    const auto change = std::ranges::find(changes, escape.unicode(), &std::pair<char16_t, Kind>::first);
    if (change != std::end(changes)) {
        m_pieces.push_back({.kind = change->second});
    } else if (escape >= u'0' && escape <= u'9') {
        m_pieces.push_back({.kind = Kind::group, .group = escape.unicode() - u'0'});
    } else {
        // A line feed within a line is a null character there.
        constexpr std::pair<char16_t, char16_t> controls[] = {{u'n', 0}, {u't', u'\t'}, {u'b', 8}};
        const auto control = std::ranges::find(controls, escape.unicode(), &std::pair<char16_t, char16_t>::first);
        add(control != std::end(controls) ? control->second : escape.unicode());
    }
}

Result<VimReplacement> VimReplacement::parse(QStringView typed)
{
    if (typed.startsWith("\\="_L1)) {
        return failure(localized(u"A replacement cannot be computed by an expression here"));
    }
    VimReplacement all;
    for (qsizetype at = 0; at < typed.size(); ++at) {
        const QChar unit = typed[at];
        if (unit == u'&') {
            all.m_pieces.push_back({.kind = Kind::group});
        } else if (unit == u'\r') {
            all.m_pieces.push_back({.kind = Kind::lineBreak});
        } else if (unit == u'\\' && at + 1 < typed.size()) {
            all.addEscape(typed[++at]);
        } else {
            all.add(unit.unicode());
        }
    }
    return all;
}

QString VimReplacement::withLast(QStringView typed, const QString &last)
{
    QString all;
    for (qsizetype at = 0; at < typed.size(); ++at) {
        const bool isEscaped = typed[at] == u'\\' && at + 1 < typed.size();
        if (isEscaped && typed[at + 1] == u'~') {
            all += typed[++at];
        } else if (isEscaped) {
            all += typed.sliced(at++, 2);
        } else if (typed[at] == u'~') {
            all += last;
        } else {
            all += typed[at];
        }
    }
    return all;
}

QString VimReplacement::of(const VimMatch &match, const Rope &text, QStringView lineBreak) const
{
    CaseWriter writer;
    const auto group = [&](int number) {
        const bool isThere = number > 0 && size_t(number) <= match.groups.size();
        const auto range = number == 0 ? std::optional(match.hit) : isThere ? match.groups[size_t(number) - 1] : std::nullopt;
        return range ? text.toString(*range) : QString();
    };
    for (const Piece &piece : m_pieces) {
        switch (piece.kind) {
        case Kind::text:
            writer.write(piece.text);
            break;
        case Kind::group:
            writer.write(group(piece.group));
            break;
        case Kind::lineBreak:
            writer.written += lineBreak;
            break;
        case Kind::upper:
            writer.all = u_toupper;
            break;
        case Kind::lower:
            writer.all = u_tolower;
            break;
        case Kind::upperOne:
            writer.one = u_toupper;
            break;
        case Kind::lowerOne:
            writer.one = u_tolower;
            break;
        case Kind::asItIs:
            writer.one.reset();
            writer.all.reset();
            break;
        }
    }
    return writer.written;
}
