// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimSubstitution.h"

#include "Text/LineRange.h"

using namespace Qt::StringLiterals;

bool VimSubstitution::isOne(QStringView command)
{
    return command.startsWith("s/"_L1) || command.startsWith("%s/"_L1);
}

QStringList VimSubstitution::splitOnUnescapedSlashes(QStringView text)
{
    QStringList parts(1);
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] == u'/') {
            parts.emplace_back();
        } else if (text[at] != u'\\') {
            parts.back() += text[at];
        } else if (++at < text.size()) {
            parts.back() += text[at] == u'/' ? u"/"_s : u'\\' + text[at];
        }
    }
    return parts;
}

std::optional<VimSubstitution> VimSubstitution::parse(QStringView command)
{
    const QStringList parts = splitOnUnescapedSlashes(command.sliced(command.indexOf(u'/') + 1));
    if (parts.size() < 2 || parts[0].isEmpty()) {
        return std::nullopt;
    }
    const QString flags = parts.value(2);
    return VimSubstitution{.isOfWholeText = command.startsWith(u'%'),
                           .pattern = parts[0],
                           .replacement = parts[1],
                           .isGlobal = flags.contains(u'g'),
                           .ignoresCase = flags.contains(u'i')};
}

Result<TextSearcher> VimSubstitution::searcher() const
{
    return TextSearcher::compile({.pattern = pattern, .matchesCase = !ignoresCase, .isRegularExpression = true, .isBareExpression = true});
}

TextReplacement VimSubstitution::replacementIn(const Rope &text, qsizetype caret, TextSearcher &searcher,
                                               const SearchControl &control) const
{
    using enum TextReplacement::Occurrences;
    const auto occurrences = isGlobal ? all : firstOfLine;
    if (isOfWholeText) {
        return searcher.replacementOfAll(text, {0, text.length() + 1}, replacement, occurrences, control);
    }
    const TextRange line = lineRange(text, {caret, 0});
    const char16_t last = line.isEmpty() ? u' ' : text.at(line.end() - 1);
    // What begins behind its break is on the next line.
    const bool hasBreak = last == u'\n' || last == u'\r' || isLineSeparator(last);
    TextReplacement found =
        searcher.replacementOfAll(text.slice(line), {0, line.length + (hasBreak ? 0 : 1)}, replacement, occurrences, control);
    found.edits = found.edits.movedBy(line.location);
    return found;
}
