// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What colouring costs: the samples of the tests, repeated until the text is as long as it should be.

#include "Highlighting/LanguageRegistry.h"
#include "Highlighting/Rule.h"
#include "Highlighting/SyntaxHighlighter.h"

#include <benchmark/benchmark.h>

#include <QDirIterator>
#include <QFile>

#include <functional>
#include <memory>
#include <random>

#include <malloc.h>
#include <time.h>

using namespace Qt::StringLiterals;

namespace {

/// What this thread has computed, so that a busy machine does not count.
struct Clock {
    static double now()
    {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) * 1e6 + double(time.tv_nsec) / 1e3;
    }
};

double microsecondsSince(double start)
{
    return Clock::now() - start;
}

QString sampleOf(const Language &language)
{
    QString sample;
    QDirIterator files(QStringLiteral(QUILLET_TEST_DATA "/highlight/") + language.id(), QDir::Files);
    while (files.hasNext()) {
        QFile file(files.next());
        if (file.open(QIODevice::ReadOnly)) {
            sample += QString::fromUtf8(file.readAll());
        }
    }
    return sample;
}

QString textOf(const Language &language, qsizetype length)
{
    const QString sample = sampleOf(language);
    QString text;
    text.reserve(length + sample.size());
    while (!sample.isEmpty() && text.size() < length) {
        text += sample;
    }
    text.truncate(length);
    return text;
}

/// A document that is coloured.
struct Document {
    Document(const Language &language, const QString &text) : highlighter(storage, language, Theme::dark(), scheduler, notifications)
    {
        storage.apply({{0, 0}, text});
        highlighter.rehighlightAll();
    }

    TextStorage storage;
    ManualScheduler scheduler;
    NotificationCenter notifications;
    SyntaxHighlighter highlighter;
};

void addQuantiles(benchmark::State &state, std::vector<double> microseconds)
{
    std::ranges::sort(microseconds);
    const auto at = [&](double part) { return microseconds[size_t(part * double(microseconds.size() - 1))]; };
    state.counters["median_us"] = at(0.5);
    state.counters["p95_us"] = at(0.95);
    state.counters["max_us"] = at(1);
}

/// The chunk at the start of a file of 250 K units, with the search for spans around it.
void firstColours(benchmark::State &state, const Language &language)
{
    Document document(language, textOf(language, 250'000));
    std::vector<double> times;
    for (auto _ : state) {
        document.highlighter.rehighlightAll();
        const double start = Clock::now();
        document.highlighter.ensureHighlighted({0, SyntaxHighlighter::chunkSize});
        times.push_back(microsecondsSince(start));
        state.SetIterationTime(times.back() / 1e6);
    }
    addQuantiles(state, times);
}

/// A letter typed somewhere in a coloured text of 250 K units, then deleted.
void keystroke(benchmark::State &state, const Language &language)
{
    Document document(language, textOf(language, 250'000));
    document.highlighter.ensureHighlighted({0, document.storage.length()});
    std::minstd_rand random(1);
    std::vector<double> times;
    for (auto _ : state) {
        const qsizetype at = qsizetype(random()) % document.storage.length();
        const double start = Clock::now();
        document.storage.apply({{at, 0}, u"e"});
        times.push_back(microsecondsSince(start));
        state.SetIterationTime(times.back() / 1e6);
        document.storage.apply({{at, 1}, u""});
        document.highlighter.ensureHighlighted({at, 1});
    }
    addQuantiles(state, times);
}

/// A letter typed in a long text: the letter, and the pass after the pause.
void typeInLargeText(benchmark::State &state, const Language &language, const QString &text)
{
    Document document(language, text);
    std::minstd_rand random(1);
    std::vector<double> times;
    double edits = 0;
    for (auto _ : state) {
        const qsizetype at = qsizetype(random()) % document.storage.length();
        double start = Clock::now();
        document.storage.apply({{at, 0}, u"e"});
        edits += microsecondsSince(start);
        start = Clock::now();
        document.scheduler.advance(SyntaxHighlighter::editDebounce);
        times.push_back(microsecondsSince(start));
        state.SetIterationTime(times.back() / 1e6);
    }
    state.counters["edit_us"] = edits / double(times.size());
    addQuantiles(state, times);
}

void largeText(benchmark::State &state, const Language &language)
{
    typeInLargeText(state, language, textOf(language, 5'000'000));
}

/// 1 M units in one line, which every pass has to do as a whole.
void longLine(benchmark::State &state, const Language &language)
{
    typeInLargeText(state, language, textOf(language, 1'000'000).replace(u'\n', u' '));
}

/// All of a text of 1 M units, and what its runs take.
void wholeText(benchmark::State &state, const Language &language)
{
    Document document(language, textOf(language, 1'000'000));
    double bytes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        document.highlighter.rehighlightAll();
        malloc_trim(0);
        const auto before = mallinfo2();
        state.ResumeTiming();
        document.highlighter.ensureHighlighted({0, document.storage.length()});
        const auto after = mallinfo2();
        bytes = double(after.uordblks + after.hblkhd) - double(before.uordblks + before.hblkhd);
    }
    state.counters["bytes_per_unit"] = bytes / double(document.storage.length());
}

/// Each rule alone over 250 K units; the label names those that take longest.
void rules(benchmark::State &state, const Language &language)
{
    const QString text = textOf(language, 250'000);
    std::vector<std::pair<double, QString>> slowest;
    const auto time = [&](const RegularExpression &rule, const QString &name) {
        RegularExpression regex = rule.clone();
        const double start = Clock::now();
        int matches = 0;
        regex.forEachMatch(text, {0, text.size()}, [&](const RegularExpression &) { return ++matches > 0; });
        slowest.emplace_back(microsecondsSince(start), name);
    };
    for (auto _ : state) {
        slowest.clear();
        for (size_t index = 0; index < language.spans().size(); ++index) {
            time(language.spans()[index].regex, u"span %1 "_s.arg(index + 1) + rawValue(language.spans()[index].scope).toString());
        }
        for (size_t index = 0; index < language.rules().size(); ++index) {
            time(language.rules()[index].regex, u"rule %1 "_s.arg(index + 1) + rawValue(language.rules()[index].scope).toString());
        }
    }
    std::ranges::sort(slowest, std::greater());
    QString label;
    for (size_t index = 0; index < std::min<size_t>(4, slowest.size()); ++index) {
        label += u"%1 %2 us; "_s.arg(slowest[index].second).arg(slowest[index].first, 0, 'f', 0);
    }
    state.SetLabel(label.toStdString());
}

void add(const char *name, const Language &language, void (*run)(benchmark::State &, const Language &), int iterations)
{
    const std::string full = std::string(name) + '/' + language.id().toStdString();
    auto *bench = benchmark::RegisterBenchmark(full.c_str(), run, language)->Unit(benchmark::kMillisecond)->Iterations(iterations);
    if (run != wholeText && run != rules) {
        bench->UseManualTime();
    }
}

} // namespace

int main(int argc, char **argv)
{
    for (const Language &language : LanguageRegistry::all()) {
        if (sampleOf(language).isEmpty()) {
            continue;
        }
        add("firstColours", language, firstColours, 30);
        add("keystroke", language, keystroke, 100);
        add("largeText", language, largeText, 20);
        add("longLine", language, longLine, 2);
        add("wholeText", language, wholeText, 2);
        add("rules", language, rules, 3);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
