// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Diff/DiffText.h"

#include "Base/ColorContrast.h"
#include "Highlighting/Theme.h"

using LineDiff::Row;

namespace {

constexpr quint32 addedHue = 0xFF2EB859;
constexpr quint32 removedHue = 0xFFDE3D4D;
constexpr quint32 black = 0xFF000000;

quint32 hueOf(LineDiff::Side side)
{
    return side == LineDiff::Side::left ? removedHue : addedHue;
}

/// Units. In a longer line all counts as changed: it has too many characters to be looked at, but for some thousand that are composed of
/// dozens of units each, and finding that out would hold up the painting.
constexpr qsizetype longestExamined = 32 * InlineDiff::mostCharacters;

double shade(const Theme &theme, double dark, double light)
{
    return theme.isDark ? dark : light;
}

/// As much of the colour as text can be read on.
quint32 groundOfText(const Theme &theme, quint32 color)
{
    return legible(color, theme.background, limitsOf(theme.contrast).text, {theme.foreground});
}

} // namespace

Rope DiffText::composed(const LineDiff::Result &result, Side side)
{
    Rope text;
    const LineTable &lines = result.lines(side);
    const auto append = [&text](const Rope &more) { text.replace({text.length(), 0}, more); };
    for (const LineDiff::Run &run : result.runs()) {
        if (!run.has(side)) {
            append(Rope(QString(run.rowCount, u'\n')));
            continue;
        }
        const qsizetype first = run.line(side);
        const qsizetype last = first + run.rowCount - 1;
        const TextRange stretch = TextRange::between(lines.start(first), lines.range(last).end());
        append(lines.text().slice(stretch));
        append(Rope(QStringLiteral("\n")));
    }
    return text;
}

std::vector<TextRange> DiffText::emphasis(const LineDiff::Result &result, Side side, qsizetype row)
{
    if (result.runAt(row).kind != Row::Kind::modified) {
        return {};
    }
    const qsizetype length = result.lineRange(side, row)->length;
    const qsizetype otherLength = result.lineRange(side == Side::left ? Side::right : Side::left, row)->length;
    if (std::max(length, otherLength) > longestExamined) {
        return length > 0 ? std::vector<TextRange>{{0, length}} : std::vector<TextRange>();
    }
    const InlineDiff::Spans spans = result.emphasis(row);
    const QString line = side == Side::left ? result.leftText(row) : result.rightText(row);
    std::vector<TextRange> ranges;
    for (const InlineDiff::CharacterRange span : side == Side::left ? spans.left : spans.right) {
        ranges.push_back(InlineDiff::unitRange(line, span));
    }
    return ranges;
}

std::optional<quint32> DiffText::rowColor(const Theme &theme, Row::Kind kind, Side side)
{
    if (kind == Row::Kind::equal) {
        return std::nullopt;
    }
    const bool isAbsent = kind == (side == Side::left ? Row::Kind::inserted : Row::Kind::deleted);
    return isAbsent ? blended(theme.background, black, shade(theme, 0.3, 0.05))
                    : groundOfText(theme, blended(theme.background, hueOf(side), shade(theme, 0.16, 0.2)));
}

quint32 DiffText::emphasisColor(const Theme &theme, Side side)
{
    return groundOfText(theme, blended(theme.background, hueOf(side), shade(theme, 0.55, 0.45)));
}

quint32 DiffText::markColor(const Theme &theme, Row::Kind kind)
{
    constexpr quint32 changedHue = 0xFF3D85DE;
    const quint32 hue = kind == Row::Kind::deleted ? removedHue : kind == Row::Kind::inserted ? addedHue : changedHue;
    return blended(theme.gutterBackground, hue, shade(theme, 0.8, 0.85));
}
