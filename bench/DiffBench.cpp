// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What comparing two texts costs, once they are read. The pairs are those of compare_diff.py.

#include "Text/LineDiff.h"

#include <benchmark/benchmark.h>

#include <QFile>

#include <chrono>

#include <malloc.h>

namespace {

std::optional<Rope> ropeOf(const QString &name)
{
    QFile file(QStringLiteral(QUILLET_BENCH_DATA "/diff/") + name);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray bytes = file.readAll();
    RopeBuilder builder;
    builder.appendLatin1(reinterpret_cast<const uchar *>(bytes.constData()), bytes.size());
    return builder.build();
}

void comparePair(benchmark::State &state, const char *pair, Whitespace whitespace)
{
    const auto old = ropeOf(QString::fromLatin1(pair) + QStringLiteral(".old"));
    const auto newer = ropeOf(QString::fromLatin1(pair) + QStringLiteral(".new"));
    if (!old || !newer) {
        state.SkipWithError("the pairs are not there: bench/compare_diff.py --make");
        return;
    }
    std::optional<LineDiff::Result> result;
    for (auto _ : state) {
        result.reset();
        malloc_trim(0);
        const auto start = std::chrono::steady_clock::now();
        result = LineDiff::compare(*old, *newer, whitespace);
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    state.counters["rows"] = double(result->rowCount());
    state.counters["changes"] = double(result->changeStarts().size());
}
BENCHMARK_CAPTURE(comparePair, few, "few", Whitespace::counts)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(comparePair, versions, "versions", Whitespace::counts)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(comparePair, unrelated, "unrelated", Whitespace::counts)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(comparePair, equal, "equal", Whitespace::counts)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(comparePair, indented, "indented", Whitespace::ignored)->UseManualTime()->Unit(benchmark::kMillisecond);

/// What the first screen of a result asks for.
void readRows(benchmark::State &state)
{
    const auto old = ropeOf(QStringLiteral("few.old"));
    const auto newer = ropeOf(QStringLiteral("few.new"));
    if (!old || !newer) {
        state.SkipWithError("the pairs are not there: bench/compare_diff.py --make");
        return;
    }
    const auto result = LineDiff::compare(*old, *newer);
    qsizetype at = 0;
    for (auto _ : state) {
        at = (at + 7919 * 977) % (result->rowCount() - 50);
        for (qsizetype row = at; row < at + 50; ++row) {
            benchmark::DoNotOptimize(result->row(row));
            benchmark::DoNotOptimize(result->leftText(row));
            benchmark::DoNotOptimize(result->rightText(row));
            benchmark::DoNotOptimize(result->emphasis(row));
        }
    }
}
BENCHMARK(readRows)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
