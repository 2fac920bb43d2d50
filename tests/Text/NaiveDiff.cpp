// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/NaiveDiff.h"

#include <QTextBoundaryFinder>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct Operation {
    QChar kind; // = - +
    qsizetype old = 0;
    qsizetype newer = 0;
};

QList<Operation> backtracked(const QList<QList<qsizetype>> &trace, qsizetype offset, qsizetype x, qsizetype y)
{
    QList<Operation> operations;
    for (qsizetype d = trace.size() - 1; d >= 0; --d) {
        const auto reached = [&](qsizetype k) { return trace[d][k + offset]; };
        const qsizetype k = x - y;
        const bool isDown = k == -d || (k != d && reached(k - 1) < reached(k + 1));
        const qsizetype previousK = isDown ? k + 1 : k - 1;
        const qsizetype previousX = reached(previousK);
        const qsizetype previousY = previousX - previousK;
        while (x > previousX && y > previousY) {
            operations.append({u'=', --x, --y});
        }
        if (d > 0) {
            operations.append(isDown ? Operation{u'+', 0, y - 1} : Operation{u'-', x - 1, 0});
            x = previousX;
            y = previousY;
        }
    }
    std::ranges::reverse(operations);
    return operations;
}

QList<Operation> middleOperations(const QStringList &old, const QStringList &newer)
{
    const qsizetype limit = std::min<qsizetype>(old.size() + newer.size(), 2000);
    const qsizetype offset = limit + 1;
    QList<qsizetype> v(2 * limit + 3, 0);
    QList<QList<qsizetype>> trace;
    for (qsizetype d = 0; d <= limit && !old.isEmpty() && !newer.isEmpty(); ++d) {
        trace.append(v);
        for (qsizetype k = -d; k <= d; k += 2) {
            const bool isDown = k == -d || (k != d && v[k - 1 + offset] < v[k + 1 + offset]);
            qsizetype x = isDown ? v[k + 1 + offset] : v[k - 1 + offset] + 1;
            qsizetype y = x - k;
            while (x < old.size() && y < newer.size() && old[x] == newer[y]) {
                ++x;
                ++y;
            }
            v[k + offset] = x;
            if (x >= old.size() && y >= newer.size()) {
                return backtracked(trace, offset, old.size(), newer.size());
            }
        }
    }
    QList<Operation> operations;
    for (qsizetype x = 0; x < old.size(); ++x) {
        operations.append({u'-', x, 0});
    }
    for (qsizetype y = 0; y < newer.size(); ++y) {
        operations.append({u'+', 0, y});
    }
    return operations;
}

QList<Operation> operationsOf(const QStringList &old, const QStringList &newer)
{
    qsizetype prefix = 0;
    while (prefix < old.size() && prefix < newer.size() && old[prefix] == newer[prefix]) {
        ++prefix;
    }
    qsizetype suffix = 0;
    while (suffix < old.size() - prefix && suffix < newer.size() - prefix &&
           old[old.size() - 1 - suffix] == newer[newer.size() - 1 - suffix]) {
        ++suffix;
    }
    QList<Operation> operations;
    for (qsizetype i = 0; i < prefix; ++i) {
        operations.append({u'=', i, i});
    }
    const qsizetype oldEnd = old.size() - suffix;
    const qsizetype newEnd = newer.size() - suffix;
    for (Operation operation : middleOperations(old.sliced(prefix, oldEnd - prefix), newer.sliced(prefix, newEnd - prefix))) {
        operation.old += prefix;
        operation.newer += prefix;
        operations.append(operation);
    }
    for (qsizetype i = 0; i < suffix; ++i) {
        operations.append({u'=', oldEnd + i, newEnd + i});
    }
    return operations;
}

QStringList charactersOf(const QString &line)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, line);
    QStringList characters;
    for (qsizetype from = 0; from < line.size();) {
        const qsizetype to = finder.toNextBoundary();
        characters.append(line.sliced(from, to - from).normalized(QString::NormalizationForm_C));
        from = to;
    }
    return characters;
}

QString described(qsizetype lower, qsizetype upper)
{
    return lower < upper ? u"[%1,%2]"_s.arg(lower).arg(upper) : QString();
}

std::pair<QString, QString> naiveEmphasis(const QString &old, const QString &newer)
{
    const QStringList a = charactersOf(old);
    const QStringList b = charactersOf(newer);
    if (a.size() > 2000 || b.size() > 2000) {
        return {described(0, a.size()), described(0, b.size())};
    }
    qsizetype prefix = 0;
    while (prefix < a.size() && prefix < b.size() && a[prefix] == b[prefix]) {
        ++prefix;
    }
    qsizetype suffix = 0;
    while (suffix < a.size() - prefix && suffix < b.size() - prefix && a[a.size() - 1 - suffix] == b[b.size() - 1 - suffix]) {
        ++suffix;
    }
    return {described(prefix, a.size() - suffix), described(prefix, b.size() - suffix)};
}

} // namespace

QStringList naiveLines(const QString &text)
{
    QStringList lines = text.split(u'\n');
    if (lines.last().isEmpty()) {
        lines.removeLast();
    }
    return lines;
}

QStringList naiveKeys(const QString &text, Whitespace whitespace)
{
    QStringList keys = naiveLines(text);
    for (QString &key : keys) {
        if (whitespace == Whitespace::ignored) {
            key.removeIf([](QChar unit) { return unit.isSpace(); });
        }
        key = key.normalized(QString::NormalizationForm_D);
    }
    return keys;
}

QString describedRow(QChar kind, qsizetype left, qsizetype right, const QString &leftText, const QString &rightText,
                     const QString &leftEmphasis, const QString &rightEmphasis)
{
    return u"%1 %2 %3 {"_s.arg(kind).arg(left).arg(right) + leftText + u"} {"_s + rightText + u"} "_s + leftEmphasis + u'/' + rightEmphasis;
}

NaiveDiff NaiveDiff::compare(const QString &old, const QString &newer, Whitespace whitespace)
{
    const QStringList oldLines = naiveLines(old);
    const QStringList newLines = naiveLines(newer);
    NaiveDiff result;
    QList<qsizetype> deleted;
    QList<qsizetype> inserted;
    const auto flush = [&] {
        const qsizetype pairs = std::min(deleted.size(), inserted.size());
        if (!deleted.isEmpty() || !inserted.isEmpty()) {
            result.changeStarts.append(result.rows.size());
        }
        for (qsizetype i = 0; i < pairs; ++i) {
            const auto [left, right] = naiveEmphasis(oldLines[deleted[i]], newLines[inserted[i]]);
            result.rows.append(
                describedRow(u'~', deleted[i] + 1, inserted[i] + 1, oldLines[deleted[i]], newLines[inserted[i]], left, right));
        }
        for (qsizetype i = pairs; i < deleted.size(); ++i) {
            result.rows.append(describedRow(u'-', deleted[i] + 1, 0, oldLines[deleted[i]], {}, {}, {}));
        }
        for (qsizetype i = pairs; i < inserted.size(); ++i) {
            result.rows.append(describedRow(u'+', 0, inserted[i] + 1, {}, newLines[inserted[i]], {}, {}));
        }
        result.removedCount += deleted.size();
        result.addedCount += inserted.size();
        deleted.clear();
        inserted.clear();
    };
    for (const Operation &operation : operationsOf(naiveKeys(old, whitespace), naiveKeys(newer, whitespace))) {
        if (operation.kind == u'=') {
            flush();
            result.rows.append(
                describedRow(u'=', operation.old + 1, operation.newer + 1, oldLines[operation.old], newLines[operation.newer], {}, {}));
        } else if (operation.kind == u'-') {
            deleted.append(operation.old);
        } else {
            inserted.append(operation.newer);
        }
    }
    flush();
    return result;
}
