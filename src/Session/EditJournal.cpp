// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/EditJournal.h"

#include "Base/FileState.h"
#include "Files/TextEncoding.h"

#include <QtEndian>

#include <algorithm>
#include <tuple>

using namespace Qt::StringLiterals;

namespace {

constexpr auto suffix = ".journal"_L1;
constexpr int numberWidth = 6;

template<typename Number>
void append(QByteArray &bytes, Number number)
{
    number = qToLittleEndian(number);
    bytes.append(reinterpret_cast<const char *>(&number), sizeof number);
}

/// Takes values off the front, and remembers whether all were there.
class Reader final {
public:
    explicit Reader(QByteArrayView bytes) : m_bytes(bytes) {}

    template<typename Number>
    Number number()
    {
        const QByteArrayView taken = bytes(sizeof(Number));
        return taken.isEmpty() ? Number(0) : qFromLittleEndian<Number>(taken.data());
    }
    QByteArrayView bytes(quint64 count)
    {
        m_isWhole = m_isWhole && count <= quint64(m_bytes.size());
        const QByteArrayView taken = m_isWhole ? m_bytes.first(qsizetype(count)) : QByteArrayView();
        m_bytes = m_bytes.sliced(taken.size());
        return taken;
    }
    [[nodiscard]] QByteArrayView rest() const { return m_bytes; }
    [[nodiscard]] bool isWhole() const { return m_isWhole; }

private:
    QByteArrayView m_bytes;
    bool m_isWhole = true;
};

QByteArray recordOf(const QByteArray &content)
{
    QByteArray bytes;
    append(bytes, quint32(content.size()));
    append(bytes, ContentHash::of(content.data(), size_t(content.size())));
    return bytes + content;
}

/// None when it is not whole.
std::optional<QByteArrayView> takeRecord(Reader &reader)
{
    const auto length = reader.number<quint32>();
    const auto hash = reader.number<quint64>();
    const QByteArrayView content = reader.bytes(length);
    return reader.isWhole() && ContentHash::of(content.data(), size_t(content.size())) == hash ? std::optional(content) : std::nullopt;
}

std::optional<TextEdits> changeFrom(QByteArrayView content)
{
    Reader reader(content);
    TextEdits edits;
    qsizetype end = 0;
    while (!reader.rest().isEmpty()) {
        const TextRange range{reader.number<qint64>(), reader.number<qint64>()};
        const auto length = reader.number<quint64>();
        const bool isThere = length <= quint64(reader.rest().size()) / 2;
        const QByteArrayView units = isThere ? reader.bytes(2 * length) : QByteArrayView();
        const bool isValid = reader.isWhole() && isThere && range.location >= end && range.length >= 0 &&
                             range.length <= std::numeric_limits<qsizetype>::max() - range.location;
        if (!isValid) {
            return std::nullopt;
        }
        std::vector<char16_t> text(length);
        if (length != 0) {
            qFromLittleEndian<char16_t>(units.data(), qsizetype(length), text.data());
        }
        edits.add(range, Rope(QStringView(text.data(), qsizetype(length))));
        end = range.end();
    }
    return edits;
}

/// None when they are not of this text.
std::optional<Rope> applied(const std::vector<TextEdits> &changes, Rope text)
{
    for (const TextEdits &change : changes) {
        if (!change.isEmpty() && change.hull().location + change.hull().removed > text.length()) {
            return std::nullopt;
        }
        text = change.withWholePairs(text).applied(text);
    }
    return text;
}

/// As one change.
TextEdits together(const EditJournal &journal)
{
    TextEdits all;
    for (const TextEdits &change : journal.changes) {
        all = all.followedBy(change);
    }
    return all;
}

} // namespace

quint64 EditJournal::hashOf(const Rope &text)
{
    ContentHash hash;
    // No pair is split between two chunks.
    text.forEachChunk({0, text.length()}, [&hash](const Rope::Chunk &chunk) {
        const QLatin1StringView narrow(reinterpret_cast<const char *>(chunk.narrow), chunk.narrow ? chunk.length : 0);
        if (chunk.narrow && QtPrivate::isAscii(narrow)) {
            hash.add(chunk.narrow, size_t(chunk.length));
        } else {
            const QString latin1(narrow);
            const QStringView units = chunk.narrow ? QStringView(latin1) : QStringView(chunk.wide, chunk.length);
            const QByteArray bytes = encoded(units, TextEncoding::utf8, TextEncoder::Mode::lossy).value();
            hash.add(bytes.constData(), size_t(bytes.size()));
        }
        return true;
    });
    return hash.value();
}

QByteArray EditJournal::beginning(quint64 baseHash, const SessionSnapshot::Document &entry)
{
    QByteArray content;
    append(content, baseHash);
    return recordOf(content + SessionSnapshot{.documents = {entry}}.toJson());
}

QByteArray EditJournal::record(const TextEdits &change)
{
    qsizetype size = 0;
    for (const TextEdit &edit : change) {
        size += qsizetype(3 * sizeof(quint64) + sizeof(char16_t) * size_t(edit.text.length()));
    }
    QByteArray content;
    content.reserve(size); // replacing all may be a million edits
    for (const TextEdit &edit : change) {
        append(content, qint64(edit.range.location));
        append(content, qint64(edit.range.length));
        append(content, quint64(edit.text.length()));
        const QString text = edit.text.toString();
        const qsizetype at = content.size();
        content.resize(at + text.size() * qsizetype(sizeof(char16_t)));
        qToLittleEndian<char16_t>(text.utf16(), text.size(), content.data() + at);
    }
    return recordOf(content);
}

std::optional<EditJournal> EditJournal::parse(QByteArrayView bytes)
{
    Reader reader(bytes);
    const auto beginning = takeRecord(reader);
    if (!beginning) {
        return std::nullopt;
    }
    Reader content(*beginning);
    EditJournal journal{.baseHash = content.number<quint64>(), .entry = {}, .changes = {}};
    const auto snapshot = SessionSnapshot::fromJson(content.rest().toByteArray());
    if (!snapshot || snapshot->documents.size() != 1) {
        return std::nullopt;
    }
    journal.entry = snapshot->documents.front();
    while (const auto record = takeRecord(reader)) {
        auto change = changeFrom(*record);
        if (!change) {
            break;
        }
        journal.changes.push_back(*std::move(change));
    }
    return journal;
}

bool EditJournal::isCutOff(QByteArrayView bytes)
{
    Reader reader(bytes);
    const auto length = reader.number<quint32>();
    std::ignore = reader.number<quint64>();
    std::ignore = reader.bytes(length);
    return !reader.isWhole();
}

QString EditJournal::nameFor(const QUuid &document, quint64 number)
{
    return document.toString(QUuid::WithoutBraces).toUpper() + u".%1"_s.arg(number, numberWidth, 10, QChar(u'0')) + suffix;
}

std::optional<EditJournal::Name> EditJournal::parseName(const QString &name)
{
    const QStringList parts = name.split(u'.');
    const Name parsed{QUuid(parts.value(0)), parts.value(1).toULongLong()};
    return nameFor(parsed.document, parsed.number) == name ? std::optional(parsed) : std::nullopt;
}

std::optional<Rope> replayed(const std::vector<EditJournal> &journals, Rope base)
{
    quint64 hash = EditJournal::hashOf(base);
    const auto isOfBase = [&hash](const EditJournal &journal) { return journal.baseHash == hash; };
    const auto last = std::find_if(journals.rbegin(), journals.rend(), isOfBase);
    if (last == journals.rend()) {
        return std::nullopt;
    }
    for (auto journal = last.base() - 1; journal != journals.end() && isOfBase(*journal); ++journal) {
        auto text = applied(journal->changes, base);
        if (!text) {
            break;
        }
        base = *std::move(text);
        if (journal + 1 != journals.end()) {
            hash = EditJournal::hashOf(base);
        }
    }
    return base;
}

bool areContained(const std::vector<EditJournal> &journals, const Rope &text)
{
    TextEdits all;
    for (const EditJournal &journal : journals) {
        all = all.followedBy(together(journal));
    }
    for (size_t index = 0; index < all.count(); ++index) {
        const TextRange range = all.newRange(index);
        if (range.location < 0 || range.end() > text.length() || text.slice(range) != all[index].text) {
            return false;
        }
    }
    return true;
}

QString insertionsOf(const std::vector<EditJournal> &journals)
{
    QString text;
    for (const EditJournal &journal : journals) {
        const TextEdits all = together(journal);
        for (const TextEdit &edit : all) {
            const bool isApart = !text.isEmpty() && !edit.text.isEmpty() && !text.endsWith(u'\n');
            text += (isApart ? u"\n"_s : QString()) + edit.text.toString();
        }
    }
    return text;
}
