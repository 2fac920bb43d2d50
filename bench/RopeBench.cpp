// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What the text system's storage costs in a document of 100 MB, as lines of about 40 units.

#include "Text/TextSearch.h"
#include "Text/UndoManager.h"

#include <benchmark/benchmark.h>

#include <QByteArray>
#include <QFile>

#include <chrono>
#include <cstring>
#include <memory>
#include <random>

#include <malloc.h>

namespace {

constexpr qsizetype documentLength = 100'000'000;

/// Lines of 20 … 59 units, most with the word that replace-all looks for.
const QByteArray &latinText()
{
    static const QByteArray text = [] {
        QByteArray made;
        made.reserve(documentLength + 100);
        std::minstd_rand random(1);
        while (made.size() < documentLength) {
            made += "value = \"";
            made += QByteArray(qsizetype(random() % 40), char('a' + random() % 26));
            made += "\", next\n";
        }
        made.resize(documentLength);
        return made;
    }();
    return text;
}

const uchar *latinBytes()
{
    return reinterpret_cast<const uchar *>(latinText().constData());
}

Rope loadedRope()
{
    RopeBuilder builder;
    builder.appendLatin1(latinBytes(), latinText().size());
    return builder.build();
}

/// Resident memory of this process in bytes.
double residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toDouble() * 4096;
}

/// The floor for loading: the bytes into memory that is fresh, too, and read once more for the line ends.
void copyAndCountLines(benchmark::State &state)
{
    (void)latinText();
    for (auto _ : state) {
        const auto copy = std::make_unique_for_overwrite<char[]>(size_t(documentLength));
        std::memcpy(copy.get(), latinText().constData(), size_t(documentLength));
        benchmark::DoNotOptimize(std::count(copy.get(), copy.get() + documentLength, '\n'));
    }
}
BENCHMARK(copyAndCountLines)->Unit(benchmark::kMillisecond);

void loadLatin1(benchmark::State &state)
{
    (void)latinText();
    const qsizetype portion = state.range(0);
    double perUnit = 0;
    for (auto _ : state) {
        state.PauseTiming();
        malloc_trim(0);
        const double before = residentBytes();
        state.ResumeTiming();
        RopeBuilder builder;
        for (qsizetype at = 0; at < documentLength; at += portion)
            builder.appendLatin1(latinBytes() + at, std::min(portion, documentLength - at));
        Rope rope = builder.build();
        state.PauseTiming();
        perUnit = (residentBytes() - before) / double(documentLength);
        rope = Rope();
        state.ResumeTiming();
    }
    state.counters["B/unit"] = perUnit;
}
BENCHMARK(loadLatin1)->Arg(documentLength)->Arg(65'536)->Arg(1000)->Unit(benchmark::kMillisecond);

void loadUtf16(benchmark::State &state)
{
    QString text = QString::fromLatin1(latinText());
    if (state.range(0)) {
        for (qsizetype i = 0; i < text.size(); i += 500)
            text[i] = QChar(0x4e2d);
    }
    for (auto _ : state) {
        Rope rope{QStringView(text)};
        state.PauseTiming();
        rope = Rope();
        state.ResumeTiming();
    }
}
BENCHMARK(loadUtf16)->ArgName("wide")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void destroy(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        Rope rope = loadedRope();
        state.ResumeTiming();
        rope = Rope();
    }
}
BENCHMARK(destroy)->Unit(benchmark::kMillisecond);

enum Where : int { anywhere, atOnePlace, anywhereWithSnapshot };

void insertUnit(benchmark::State &state)
{
    Rope rope = loadedRope();
    std::minstd_rand random(2);
    Rope snapshot;
    qsizetype place = documentLength / 2;
    for (auto _ : state) {
        if (state.range(0) != atOnePlace)
            place = qsizetype(random()) % rope.length();
        if (state.range(0) == anywhereWithSnapshot)
            snapshot = rope;
        rope.replace({place++, 0}, QStringView(u"x"));
    }
}
BENCHMARK(insertUnit)->ArgName("where")->Arg(anywhere)->Arg(atOnePlace)->Arg(anywhereWithSnapshot);

void eraseUnits(benchmark::State &state)
{
    Rope rope = loadedRope();
    std::minstd_rand random(2);
    const qsizetype count = state.range(0);
    for (auto _ : state) {
        if (rope.length() < documentLength / 2) {
            state.PauseTiming();
            rope = loadedRope();
            state.ResumeTiming();
        }
        rope.replace({qsizetype(random()) % (rope.length() - count), count}, QStringView());
    }
}
BENCHMARK(eraseUnits)->Arg(1)->Arg(10'000);

void spliceRope(benchmark::State &state)
{
    const Rope text = loadedRope();
    std::minstd_rand random(3);
    for (auto _ : state) {
        Rope rope = text;
        rope.replace({qsizetype(random()) % documentLength, 0}, text);
        benchmark::DoNotOptimize(rope.lineCount());
    }
}
BENCHMARK(spliceRope);

void lineQueries(benchmark::State &state)
{
    const Rope rope = loadedRope();
    std::minstd_rand random(4);
    for (auto _ : state) {
        if (state.range(0))
            benchmark::DoNotOptimize(rope.lineAt(qsizetype(random()) % documentLength));
        else
            benchmark::DoNotOptimize(rope.lineStart(qsizetype(random()) % rope.lineCount()));
    }
}
BENCHMARK(lineQueries)->ArgName("lineAt")->Arg(0)->Arg(1);

void readUnits(benchmark::State &state)
{
    const Rope rope = loadedRope();
    RopeCursor cursor(rope);
    qsizetype at = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(cursor.at(at));
        at = at + 1 == documentLength ? 0 : at + 1;
    }
}
BENCHMARK(readUnits);

void snapshot(benchmark::State &state)
{
    TextStorage storage;
    storage.apply({{0, 0}, loadedRope()});
    for (auto _ : state)
        benchmark::DoNotOptimize(storage.snapshot());
}
BENCHMARK(snapshot);

/// One typed unit with everything that is notified of it below the views.
void typeIntoStorage(benchmark::State &state)
{
    TextStorage storage;
    UndoManager undo(storage, [] { return std::chrono::milliseconds(0); });
    storage.apply({{0, 0}, loadedRope()});
    qsizetype at = documentLength / 2;
    for (auto _ : state) {
        undo.beginGroup(GroupKind::typing, TextSelection::at(at), nullptr);
        storage.apply({{at, 0}, QStringView(u"x")});
        undo.endGroup(TextSelection::at(++at));
    }
}
BENCHMARK(typeIntoStorage);

/// A highlighter's pass over its window, a style every seven units: all new, or all as it was.
void styleWindow(benchmark::State &state)
{
    TextStorage storage;
    storage.apply({{0, 0}, loadedRope()});
    const StyleId styles[] = {plainStyle, storage.styles().intern({.foreground = 1}), storage.styles().intern({.foreground = 2})};
    std::vector<StyleRun> runs[2];
    for (size_t pass = 0; pass < 2; ++pass) {
        for (size_t i = 0; i < 2340; ++i)
            runs[pass].push_back({7, styles[(i + pass) % 3]});
    }
    size_t pass = 0;
    for (auto _ : state) {
        storage.setStyles({documentLength / 2, 2340 * 7}, runs[pass]);
        if (state.range(0))
            pass = 1 - pass;
    }
}
BENCHMARK(styleWindow)->ArgName("changes")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

/// A letter at many carets at once, four times, which is one group of undo in the end; then its undo.
void typeAtCarets(benchmark::State &state)
{
    const qsizetype carets = state.range(0);
    const qsizetype distance = state.range(1) / carets;
    const Rope text = loadedRope().slice({0, state.range(1)});
    const Rope letter(u"x");
    double undoTime = 0;
    for (auto _ : state) {
        state.PauseTiming();
        TextStorage storage;
        UndoManager undo(storage, [] { return std::chrono::milliseconds(0); });
        storage.apply({{}, text});
        for (qsizetype typed = 0; typed < 4; ++typed) {
            TextEdits edits;
            for (qsizetype caret = 0; caret < carets; ++caret)
                edits.add({caret * (distance + typed) + typed, 0}, letter);
            state.ResumeTiming();
            undo.beginGroup(GroupKind::typing, {}, nullptr);
            storage.apply(edits);
            undo.endGroup({});
            state.PauseTiming();
        }
        const auto start = std::chrono::steady_clock::now();
        undo.undo();
        undoTime = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
        state.ResumeTiming();
    }
    state.counters["undo ms"] = undoTime;
    state.counters["ms a letter"] = benchmark::Counter(4e-3, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(typeAtCarets)
    ->ArgNames({"carets", "units"})
    ->Args({10'000, 200'000})
    ->Args({10'000, 100'000'000})
    ->Args({100'000, 100'000'000})
    ->Unit(benchmark::kMillisecond);

/// A million replacements in one batch and one undo group, then its undo.
void replaceAll(benchmark::State &state)
{
    const Rope text = loadedRope();
    std::vector<qsizetype> hits;
    for (qsizetype at = 0; qsizetype(hits.size()) < 1'000'000 && (at = latinText().indexOf("value", at)) >= 0; at += 5)
        hits.push_back(at);
    double undoTime = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto storage = std::make_unique<TextStorage>();
        auto undo = std::make_unique<UndoManager>(*storage, [] { return std::chrono::milliseconds(0); });
        storage->apply({{0, 0}, text});
        state.ResumeTiming();
        undo->beginGroup(GroupKind::other, {}, nullptr);
        TextEdits edits;
        const Rope number(u"number");
        for (const qsizetype hit : hits)
            edits.add({hit, 5}, number);
        storage->apply(edits);
        undo->endGroup({});
        state.PauseTiming();
        const auto start = std::chrono::steady_clock::now();
        undo->undo();
        undoTime = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
        undo.reset();
        storage.reset();
        state.ResumeTiming();
    }
    state.counters["hits"] = double(hits.size());
    state.counters["undo ms"] = undoTime;
}
BENCHMARK(replaceAll)->Unit(benchmark::kMillisecond);

/// Looking through a document for a word that is not in it: plain, and with a letter that can be written in other ways.
void findAll(benchmark::State &state)
{
    const bool isComposed = state.range(0) != 0;
    QByteArray bytes = latinText();
    if (state.range(1) != 0) {
        bytes.replace("value", "valu\xe8");
    }
    RopeBuilder builder;
    builder.appendLatin1(reinterpret_cast<const uchar *>(bytes.constData()), bytes.size());
    const Rope text = builder.build();
    TextSearcher searcher = *TextSearcher::compile({.pattern = isComposed ? QStringLiteral("n\u00e9xt") : QStringLiteral("nexx")});
    for (auto _ : state) {
        benchmark::DoNotOptimize(searcher.firstHit(text, {0, text.length()}));
    }
}
BENCHMARK(findAll)->ArgNames({"composed", "letters"})->ArgsProduct({{0, 1}, {0, 1}})->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
