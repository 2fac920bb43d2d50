// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What looking for every hit of an expression costs in 100 MB of C, once it is read. compare_search.py asks grep for the same.

#include "Text/TextSearch.h"

#include <benchmark/benchmark.h>

#include <QFile>

#include <algorithm>
#include <vector>

namespace {

// clang-format off
constexpr const char *expressions[] = {
    R"(absent_\d+)",
    R"(bad checksum 0x%08x|limit of %u)",
    R"(sizeof\(\*\w+\))",
    R"(^static .*\(struct \w+ \*self)",
    R"(\b(\w)\w*_\1\w*\b)",
    R"([a-z]+_[a-z]+_[0-9]{6})",
    R"(->\w*count)",
    R"((?i)RETURN -?[a-z0-9]+;)",
};
// clang-format on

Rope textOfFile()
{
    QFile file(QStringLiteral(QUILLET_BENCH_DATA "/large.c"));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray bytes = file.readAll();
    RopeBuilder builder;
    builder.appendLatin1(reinterpret_cast<const uchar *>(bytes.constData()), bytes.size());
    return builder.build();
}

void expression(benchmark::State &state)
{
    const char *pattern = expressions[state.range(0)];
    const Rope text = textOfFile();
    if (text.isEmpty()) {
        state.SkipWithError("the file is not there: bench/make_files.py build/bench-data");
        return;
    }
    TextSearcher searcher =
        *TextSearcher::compile({.pattern = QString::fromLatin1(pattern), .matchesCase = true, .isRegularExpression = true});
    std::vector<qsizetype> hits;
    for (auto _ : state) {
        hits.clear();
        searcher.forEachHit(text, {0, text.length()}, [&](TextRange hit) {
            hits.push_back(hit.location);
            return true;
        });
    }
    std::ranges::transform(hits, hits.begin(), [&](qsizetype hit) { return text.lineAt(hit); });
    state.SetLabel(pattern);
    state.counters["hits"] = double(hits.size());
    state.counters["lines"] = double(std::ranges::unique(hits).begin() - hits.begin());
}
BENCHMARK(expression)->DenseRange(0, std::ssize(expressions) - 1)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
