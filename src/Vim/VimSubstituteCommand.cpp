// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimSubstituteCommand.h"

#include "Base/Translation.h"
#include "Vim/VimCollection.h"
#include "Vim/VimPattern.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr auto flagLetters = "&cegiInp#lr"_L1;

struct Name {
    QLatin1StringView whole;
    qsizetype shortest;
    /// Put before the pattern.
    QLatin1StringView magic;
};

constexpr Name names[] = {{"substitute"_L1, 1, ""_L1}, {"smagic"_L1, 2, "\\m"_L1}, {"snomagic"_L1, 3, "\\M"_L1}};

QStringView lettersOf(QStringView command)
{
    const auto *end = std::ranges::find_if(command, [](QChar unit) { return unit.unicode() >= 0x80 || !unit.isLetter(); });
    return command.first(end - command.begin());
}

const Name *nameOf(QStringView letters)
{
    const auto *name =
        std::ranges::find_if(names, [letters](const Name &one) { return letters.size() >= one.shortest && one.whole.startsWith(letters); });
    return name != std::end(names) ? name : nullptr;
}

/// `sg`, `sci` and the like, which are shorter than some other command's name.
bool isRepeat(QStringView letters)
{
    if (letters.size() < 2 || letters.size() > 3 || letters[0] != u's' || !u"cgiIr"_s.contains(letters[1])) {
        return false;
    }
    const bool isOther = letters == u"scr" || letters == u"sig" || letters == u"sil" || letters == u"sim" || letters == u"sre";
    return !isOther && (letters.size() == 2 || u"cegiInplr"_s.contains(letters[2]));
}

/// Takes what it is asked for off the front.
class Reader {
public:
    explicit Reader(QStringView typed) : rest(typed) {}

    QStringView rest;

    void skipBlanks()
    {
        while (rest.startsWith(u' ') || rest.startsWith(u'\t')) {
            rest = rest.sliced(1);
        }
    }
    QStringView take(qsizetype length)
    {
        const QStringView taken = rest.first(length);
        rest = rest.sliced(length);
        return taken;
    }
    bool skips(QChar unit)
    {
        const bool isThere = rest.startsWith(unit);
        rest = rest.sliced(isThere ? 1 : 0);
        return isThere;
    }
};

qsizetype lengthOfReplacement(QStringView typed, QChar delimiter)
{
    for (qsizetype at = 0; at < typed.size(); ++at) {
        if (typed[at] == delimiter) {
            return at;
        }
        at += typed[at] == u'\\' ? 1 : 0;
    }
    return typed.size();
}

} // namespace

bool VimSubstituteCommand::isOne(QStringView command)
{
    const QStringView letters = lettersOf(command);
    return command.startsWith(u'&') || command.startsWith(u'~') || nameOf(letters) || isRepeat(letters);
}

Result<VimSubstituteCommand> VimSubstituteCommand::parse(QStringView command)
{
    using enum Pattern;
    VimSubstituteCommand parsed;
    Reader reader(command);
    const QStringView letters = lettersOf(command);
    const Name *name = nameOf(letters);
    if (reader.skips(u'~')) {
        parsed.patternKind = lastUsed;
    } else if (!reader.skips(u'&')) {
        // Of "sg" the flags remain.
        reader.take(name ? letters.size() : 1);
        reader.skipBlanks();
    }
    const QChar first = reader.rest.isEmpty() ? QChar(u'|') : reader.rest.front();
    const bool isNew = name && !u"0123456789cegriIp|\""_s.contains(first);
    if (isNew) {
        if (first.unicode() < 0x80 && first.isLetter()) {
            return failure(localized(u"A pattern cannot be delimited by letters"));
        }
        QChar delimiter = first;
        if (reader.skips(u'\\')) {
            delimiter = reader.rest.isEmpty() ? QChar() : reader.rest.front();
            if (delimiter.isNull() || !u"/?&"_s.contains(delimiter)) {
                return failure(localized(u"“\\” has to be followed by “/”, “?” or “&”"));
            }
            parsed.patternKind = delimiter == u'&' ? lastSubstituted : lastUsed;
            reader.take(1);
        } else {
            reader.take(1);
            const QStringView pattern = reader.take(VimPattern::lengthOf(reader.rest, delimiter));
            parsed.patternKind = pattern.isEmpty() ? lastUsed : typed;
            parsed.pattern = pattern.isEmpty() ? QString() : name->magic + pattern.toString();
            parsed.hasReplacement = reader.skips(delimiter);
        }
        parsed.replacement = reader.take(lengthOfReplacement(reader.rest, delimiter)).toString();
        reader.skips(delimiter);
    }
    parsed.keepsFlags = reader.skips(u'&');
    while (!reader.rest.isEmpty() && flagLetters.contains(reader.rest.front()) && !reader.rest.startsWith(u'&')) {
        parsed.flags += reader.take(1);
    }
    reader.skipBlanks();
    qsizetype digits = 0;
    if (const auto count = vimNumber(reader.rest, digits, 10, 9)) {
        reader.take(digits);
        reader.skipBlanks();
        if (*count == 0) {
            return failure(localized(u"A count of lines is at least 1"));
        }
        parsed.count = qsizetype(*count);
    }
    if (reader.skips(u'|')) {
        parsed.rest = reader.rest.toString();
    } else if (!reader.rest.isEmpty() && !reader.rest.startsWith(u'"')) {
        return failure(formatted(localized(u"Not a flag or count: %@"), reader.rest.toString()));
    }
    if (parsed.flags.contains(u'r') && parsed.patternKind == lastSubstituted) {
        parsed.patternKind = lastUsed;
    }
    return parsed;
}

VimSubstituteFlags VimSubstituteCommand::resolved(const VimSubstituteFlags &last, Default byDefault) const
{
    VimSubstituteFlags all = keepsFlags ? last : VimSubstituteFlags{.takesAll = byDefault == Default::allOfLine};
    const auto turn = [](bool &flag) { flag = !flag; };
    for (const QChar flag : flags) {
        switch (flag.unicode()) {
        case u'g':
            turn(all.takesAll);
            break;
        case u'c':
            turn(all.asks);
            break;
        case u'e':
            turn(all.isQuiet);
            break;
        case u'n':
            all.onlyCounts = true;
            break;
        case u'i':
        case u'I':
            all.matchesCase = flag == u'I';
            break;
        case u'#':
            all.showsNumber = true;
            [[fallthrough]];
        case u'p':
            all.shows = true;
            break;
        case u'l':
            all.shows = true;
            all.showsBlanks = true;
            break;
        default:
            break;
        }
    }
    all.asks = all.asks && !all.onlyCounts;
    return all;
}
