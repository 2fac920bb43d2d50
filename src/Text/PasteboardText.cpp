// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/PasteboardText.h"

#include "Base/Pasteboard.h"
#include "Text/CaretEditing.h"

#include <numeric>

using namespace Qt::StringLiterals;

void setText(Pasteboard &pasteboard, const Rope &text)
{
    constexpr qsizetype eagerLimit = 1 << 20;
    if (text.length() <= eagerLimit) {
        pasteboard.setText(text.toString());
    } else {
        pasteboard.setLazyText([text] { return text.toString(); });
    }
}

void setPieces(Pasteboard &pasteboard, const Rope &text, const Selections &selections)
{
    setText(pasteboard, CaretEditing::joinedPieces(text, selections));
    std::vector<qsizetype> lengths;
    for (const CaretSelection &one : selections)
        lengths.push_back(one.range().length);
    pasteboard.setPieces(std::move(lengths));
}

std::optional<std::vector<Rope>> piecesOf(const Pasteboard &pasteboard, const QString &text, size_t count)
{
    std::vector<Rope> pieces;
    const std::vector<qsizetype> lengths = pasteboard.pieces();
    const qsizetype units = std::accumulate(lengths.begin(), lengths.end(), qsizetype(lengths.size()) - 1);
    if (lengths.size() == count && units == text.size()) {
        qsizetype at = 0;
        for (const qsizetype length : lengths) {
            pieces.emplace_back(withLineFeeds(text.sliced(at, length)));
            at += length + 1;
        }
        return pieces;
    }
    const QString lines = withLineFeeds(text);
    // The last one may have a break of its own.
    const QStringView content = QStringView(lines).chopped(lines.endsWith(u'\n') ? 1 : 0);
    if (size_t(content.count(u'\n')) + 1 != count)
        return std::nullopt;
    for (const QStringView line : content.tokenize(u'\n'))
        pieces.emplace_back(line);
    return pieces;
}

QString withLineFeeds(QString text)
{
    return text.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n');
}
