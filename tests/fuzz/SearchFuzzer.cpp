// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Patterns of the search bar over evil text: no crash, an end in bounded time (which the fuzzer's -timeout watches), hits in order
// and inside the text, plain searches as a plain search finds them, replacing all as replacing one by one.
#include "Require.h"
#include "Text/TextSearch.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace {

QString consumeText(FuzzedDataProvider &input, size_t most)
{
    const bool isUtf16 = input.ConsumeBool();
    const std::string bytes = input.ConsumeRandomLengthString(most);
    if (!isUtf16) {
        return QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
    }
    // Any units, half pairs among them.
    QString text(qsizetype(bytes.size() / 2), Qt::Uninitialized);
    std::memcpy(text.data(), bytes.data(), size_t(text.size()) * 2);
    return text;
}

bool isAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar unit) { return unit.unicode() < 0x80; });
}

void checkLiteral(const SearchQuery &query, const QString &text, const std::vector<TextRange> &hits)
{
    const Qt::CaseSensitivity sensitivity = query.matchesCase ? Qt::CaseSensitive : Qt::CaseInsensitive;
    qsizetype from = 0;
    for (const TextRange hit : hits) {
        REQUIRE(hit == (TextRange{text.indexOf(query.pattern, from, sensitivity), query.pattern.size()}));
        from = hit.end();
    }
    REQUIRE(text.indexOf(query.pattern, from, sensitivity) < 0);
}

/// All at once as one by one.
void checkReplacing(TextSearcher &searcher, const QString &text, const std::vector<TextRange> &hits, const QString &typed)
{
    const Rope rope{text};
    const auto format = searcher.replacementTemplate(typed);
    REQUIRE(format || !format.error().message.isEmpty());
    // What was too hard once is left out from then on.
    const bool wasHard = searcher.gaveUp();
    const TextReplacement all = format ? searcher.replacementOfAll(rope, {0, rope.length()}, *format) : TextReplacement();
    if (!format || wasHard || searcher.gaveUp()) {
        return;
    }
    REQUIRE(all.count == qsizetype(hits.size()));
    QString expected = text;
    for (auto hit = hits.rbegin(); hit != hits.rend(); ++hit) {
        expected.replace(hit->location, hit->length, *format);
    }
    REQUIRE(searcher.query().isRegularExpression || all.edits.applied(rope).toString() == expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider input(data, size);
    const SearchQuery query{.pattern = consumeText(input, 64),
                            .matchesCase = input.ConsumeBool(),
                            .matchesWholeWords = input.ConsumeBool(),
                            .isRegularExpression = input.ConsumeBool()};
    const QString typed = consumeText(input, 16);
    const QString piece = consumeText(input, 2048);
    // Long lines and several windows come from few bytes.
    const QString text = piece.repeated(input.ConsumeBool() ? input.ConsumeIntegralInRange<int>(1, 400) : 1);

    auto searcher = TextSearcher::compile(query);
    if (!searcher) {
        REQUIRE(!searcher.error().message.isEmpty());
        return 0;
    }
    const Rope rope{text};
    std::vector<TextRange> hits;
    searcher->forEachHit(rope, {0, rope.length()}, [&](TextRange hit) {
        REQUIRE(hit.length > 0 && hit.location >= (hits.empty() ? 0 : hits.back().end()) && hit.end() <= rope.length());
        hits.push_back(hit);
        return true;
    });
    if (!query.isRegularExpression && !query.matchesWholeWords && !query.pattern.isEmpty() && isAscii(query.pattern) && isAscii(text)) {
        checkLiteral(query, text, hits);
    }
    if (!searcher->gaveUp()) {
        const auto first = searcher->firstHit(rope, {0, rope.length()});
        REQUIRE(searcher->gaveUp() || first == (hits.empty() ? std::nullopt : std::optional(hits.front())));
    }
    const auto last = searcher->lastHit(rope, {0, rope.length()});
    REQUIRE(!last || (last->length > 0 && last->location >= 0 && last->end() <= rope.length()));
    REQUIRE(searcher->gaveUp() || last.has_value() == !hits.empty());
    checkReplacing(*searcher, text, hits, typed);
    return 0;
}
