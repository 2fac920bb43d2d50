// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Bytes as journals of edits, whole and cut off: nothing crashes whatever they are, a text that is replayed has what they brought, and what
// was written comes back as far as it is there.
#include "Base/FileState.h"
#include "Require.h"
#include "Session/EditJournal.h"

#include <QtEndian>

#include <fuzzer/FuzzedDataProvider.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

/// With its length and hash, as no random bytes would have them.
QByteArray recordOf(const QByteArray &content)
{
    const quint32 length = qToLittleEndian(quint32(content.size()));
    const quint64 hash = qToLittleEndian(ContentHash::of(content.data(), size_t(content.size())));
    return QByteArray(reinterpret_cast<const char *>(&length), sizeof length) +
           QByteArray(reinterpret_cast<const char *>(&hash), sizeof hash) + content;
}

SessionSnapshot::Document entry()
{
    return {.id = QUuid(u"1B4E28BA-2FA1-11D2-883F-0016D3CCA427"_s), .lineEnding = u"\n"_s};
}

QByteArray bytesFrom(FuzzedDataProvider &data, size_t most)
{
    const std::string taken = data.ConsumeRandomLengthString(most);
    return {taken.data(), qsizetype(taken.size())};
}

void checkParsed(const EditJournal &journal, const Rope &base)
{
    for (const TextEdits &change : journal.changes) {
        qsizetype end = 0;
        for (const auto &edit : change) {
            REQUIRE(edit.range.location >= end && edit.range.length >= 0);
            REQUIRE(edit.range.length <= std::numeric_limits<qsizetype>::max() - edit.range.location);
            end = edit.range.end();
        }
    }
    if (const auto text = replayed({journal}, base)) {
        REQUIRE(EditJournal::hashOf(base) == journal.baseHash);
        REQUIRE(replayed({journal, journal}, base));
    }
    std::ignore = areContained({journal}, base);
    std::ignore = insertionsOf({journal});
}

/// Records that hold what the fuzzer says.
void checkForged(FuzzedDataProvider &data)
{
    const Rope base(QString::fromUtf8(bytesFrom(data, 64)));
    QByteArray bytes = EditJournal::beginning(data.ConsumeBool() ? EditJournal::hashOf(base) : data.ConsumeIntegral<quint64>(), entry());
    while (data.remaining_bytes() > 0) {
        bytes += data.ConsumeProbability<float>() < 0.9F ? recordOf(bytesFrom(data, 200)) : bytesFrom(data, 20);
    }
    if (const auto journal = EditJournal::parse(bytes)) {
        checkParsed(*journal, base);
    }
}

/// Edits of a text, written and cut off.
void checkWritten(FuzzedDataProvider &data)
{
    Rope text(QString::fromUtf8(bytesFrom(data, 64)));
    std::vector<Rope> texts{text};
    QByteArray bytes = EditJournal::beginning(EditJournal::hashOf(text), entry());
    std::vector<qsizetype> ends{bytes.size()};
    while (data.remaining_bytes() > 4) {
        TextEdits change;
        for (qsizetype from = 0; data.ConsumeBool() && from <= text.length();) {
            const auto start = data.ConsumeIntegralInRange<qsizetype>(from, text.length());
            const auto end = data.ConsumeIntegralInRange<qsizetype>(start, text.length());
            change.add(TextRange::between(start, end), Rope(QString::fromUtf8(bytesFrom(data, 8))));
            from = end + 1;
        }
        text = change.applied(text);
        bytes += EditJournal::record(change);
        texts.push_back(text);
        ends.push_back(bytes.size());
    }
    const auto kept = data.ConsumeIntegralInRange<qsizetype>(0, bytes.size());
    const auto journal = EditJournal::parse(bytes.first(kept));
    REQUIRE(journal.has_value() == (kept >= ends.front()));
    if (!journal) {
        REQUIRE(EditJournal::isCutOff(bytes.first(kept)));
        return;
    }
    const auto whole = size_t(std::ranges::upper_bound(ends, kept) - ends.begin()) - 1;
    REQUIRE(journal->changes.size() == whole);
    REQUIRE(replayed({*journal}, texts.front()) == texts[whole]);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::ignore = EditJournal::parse(QByteArrayView(data, qsizetype(size)));
    std::ignore = EditJournal::isCutOff(QByteArrayView(data, qsizetype(size)));
    FuzzedDataProvider provider(data, size);
    provider.ConsumeBool() ? checkForged(provider) : checkWritten(provider);
    return 0;
}
