// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What a person waits for: from a key to the end of the painting that it causes, in a window of the program, coloured, offscreen.

#include "App/AppDelegate.h"
#include "Base/Pasteboard.h"
#include "Desktop/Desktop.h"
#include "Desktop/ForeignKeyboard.h"
#include "Editor/EditorVim.h"
#include "Find/FindState.h"
#include "Highlighting/LanguageRegistry.h"
#include "Model/DocumentStore.h"
#include "Model/RecentDocuments.h"
#include "Session/ClosedTabs.h"
#include "Session/SessionStore.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
#include "Vim/VimRegisters.h"
#include "Vim/VimSubstitution.h"
#include "Widgets/AlertPresenter.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QWindow>

#include <qpa/qwindowsysteminterface.h>

#include <functional>
#include <random>

#include <malloc.h>
#include <time.h>

using namespace Qt::StringLiterals;

namespace {

constexpr double frame = 16'000;

/// Microseconds that this thread has computed, so that a busy machine does not count.
double now()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e6 + double(time.tv_nsec) / 1e3;
}

/// A window with everything around it as in the program.
class Stage {
public:
    explicit Stage(qsizetype length)
    {
        preferences.set(Settings::themeName, u"Dark"_s);
        const QString sample = sampleText();
        QString text;
        text.reserve(length + sample.size());
        while (text.size() < length) {
            text += sample;
        }
        TextFile::Contents contents{.text = Rope(text)};
        document = &store.add(std::make_unique<TextDocument>(store.services(), QString(), contents));
        document->setLanguage(LanguageRegistry::withID(u"c").value());
        application.launch({});
        MainWindowController &window = *application.windows().front();
        window.resize(1270, 850);
        window.activateWindow();
        window.workspace().adopt(*document);
        editor = window.workspace().currentEditor();
        pass(400);
    }

    struct Pressed {
        double handled = 0;
        double painted = 0;

        operator double() const { return handled + painted; }
    };
    /// Presses a key and paints; the microseconds till the key was taken, and those till all of it is done.
    Pressed press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}, const QString &text = {})
    {
        QWindow *window = QGuiApplication::focusWindow();
        const double start = now();
        QWindowSystemInterface::handleKeyEvent<QWindowSystemInterface::SynchronousDelivery>(window, QEvent::KeyPress, key, modifiers, text);
        const double taken = now();
        QCoreApplication::processEvents();
        return {taken - start, now() - taken};
    }

    /// Moves the text by pixels as two fingers on a touchpad do, and paints; the microseconds of all of it.
    static double scrollBy(QPoint pixels)
    {
        QWindow *window = QGuiApplication::focusWindow();
        const QPointF place(window->width() / 2.0, window->height() / 2.0);
        const double start = now();
        QWindowSystemInterface::handleWheelEvent(window, place, window->mapToGlobal(place), pixels, pixels * 8);
        QCoreApplication::processEvents();
        return now() - start;
    }

    /// Lets time go by; the longest time for which it could not have taken a key, in microseconds.
    static double pass(int milliseconds)
    {
        double longest = 0;
        const QDeadlineTimer end(milliseconds);
        while (!end.hasExpired()) {
            const double start = now();
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1);
            longest = std::max(longest, now() - start);
        }
        return longest;
    }

    EventLoopScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults{QString(), scheduler};
    Preferences preferences{defaults, notifications};
    MemoryPasteboard pasteboard;
    ScriptedAlertPresenter presenter;
    DetachedWorkers workers;
    FileWatcherQueue watchers;
    QTemporaryDir folder;
    SessionStore session{{folder.path(), {}}, preferences};
    DocumentStore store{{scheduler, notifications, preferences, workers, watchers, {}}, {}};
    SessionKeeper keeper{scheduler, notifications, preferences, store, session};
    FindState find;
    VimRegisters registers{pasteboard, preferences};
    ForeignKeyboard keyboard;
    TextDocument *document = nullptr;
    RecordingDesktop desktop;
    RecentDocuments recent{QString(), workers};
    ClosedTabs closedTabs{notifications, preferences, store, session};
    AppDelegate application{{{scheduler, notifications, preferences, pasteboard, presenter, store, workers, find, registers, keyboard},
                             defaults,
                             desktop,
                             session,
                             keeper,
                             recent,
                             closedTabs}};
    EditorViewController *editor = nullptr;

private:
    static QString sampleText()
    {
        QFile file(QStringLiteral(QUILLET_TEST_DATA "/highlight/c/ring.cpp"));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
};

void report(benchmark::State &state, std::vector<double> microseconds)
{
    std::ranges::sort(microseconds);
    const auto quantile = [&](double part) { return microseconds[size_t(part * double(microseconds.size() - 1))] / 1000; };
    state.counters["p50_ms"] = quantile(0.5);
    state.counters["p99_ms"] = quantile(0.99);
    state.counters["max_ms"] = quantile(1);
    state.counters["frames_over_16_ms"] = double(std::ranges::count_if(microseconds, [](double time) { return time > frame; }));
    state.counters["frames"] = double(microseconds.size());
}

/// Words, blanks and some new lines in the middle of the text, with a pause now and then.
void typing(benchmark::State &state)
{
    Stage stage(state.range(0));
    const Rope &text = stage.document->storage().text();
    stage.editor->textView().setSelection(TextSelection::at(text.lineStart(text.lineCount() / 2)), TextView::Reveal::center);
    Stage::pass(400);
    std::vector<double> times;
    double longest = 0;
    for (auto _ : state) {
        for (int index = 0; index < 1500; ++index) {
            if (index % 60 == 59) {
                times.push_back(stage.press(Qt::Key_Return, {}, u"\r"_s));
                longest = std::max(longest, Stage::pass(150));
            } else if (index % 7 == 6) {
                times.push_back(stage.press(Qt::Key_Space, {}, u" "_s));
            } else {
                times.push_back(stage.press(Qt::Key_A, {}, u"a"_s));
            }
        }
    }
    report(state, times);
    state.counters["longest_after_a_pause_ms"] = longest / 1000;
}

/// Down through the text; after each step the time in which colours follow.
void scrolling(benchmark::State &state, Qt::Key key, Qt::KeyboardModifiers modifiers, int steps, int pause)
{
    Stage stage(1'000'000);
    std::vector<double> times;
    for (auto _ : state) {
        for (int step = 0; step < steps; ++step) {
            times.push_back(stage.press(key, modifiers));
            if (pause > 0) {
                times.push_back(Stage::pass(pause));
            }
        }
    }
    report(state, times);
}

/// Frames of a touchpad's scrolling, faster and slower, down and up again.
void pixelScrolling(benchmark::State &state)
{
    Stage stage(state.range(0));
    TextView &view = stage.editor->textView();
    view.setSelection(TextSelection::at(view.storage().length() / 2), TextView::Reveal::center);
    Stage::pass(400);
    const QImage before = view.grab().toImage();
    std::vector<double> times;
    for (auto _ : state) {
        for (int step = 0; step < 1800; ++step) {
            times.push_back(Stage::scrollBy({0, (step % 600 < 400 ? -1 : 1) * (1 + step % 41)}));
        }
    }
    if (view.grab().toImage() == before) {
        state.SkipWithError("nothing was scrolled");
    }
    report(state, times);
}

/// The engine's own work for keys of modal editing in the middle of the text, as keys a second and as microseconds a command; nothing is
/// painted.
void modalKeys(benchmark::State &state)
{
    Stage stage(state.range(0));
    stage.preferences.set(Settings::vimExact, state.range(1) != 0);
    stage.preferences.set(Settings::vimMode, true);
    VimEngine &engine = stage.editor->vim()->engine();
    const Rope &text = stage.document->storage().text();
    stage.editor->textView().setSelection(TextSelection::at(text.lineStart(text.lineCount() / 2)), TextView::Reveal::center);
    constexpr int rounds = 300;
    double all = 0;
    double keys = 0;
    for (auto _ : state) {
        for (const QString &command : {u"w"_s, u"j"_s, u"}"_s, u"{"_s, u"dw"_s, u"ciwab\x1B"_s, u"p"_s, u"u"_s, u"."_s, u"k"_s}) {
            const double start = now();
            for (int round = 0; round < rounds; ++round) {
                for (const QChar key : command) {
                    engine.handle({.characters = QString(key), .charactersIgnoringModifiers = QString(key)});
                }
                if (engine.mode() == VimEngine::Mode::insert) {
                    state.SkipWithError("a command did not end");
                }
            }
            const double spent = now() - start;
            state.counters["us_" + command.left(3).toStdString()] = spent / rounds;
            all += spent;
            keys += double(command.size()) * rounds;
        }
    }
    state.counters["keys_per_second"] = keys / all * 1e6;
}

/// From one end of 100 MB to the other and back: everything between has to be read.
void modalJumps(benchmark::State &state)
{
    Stage stage(1);
    stage.preferences.set(Settings::vimMode, true);
    QString text = u"first {\n"_s;
    while (text.size() < 100'000'000) {
        text += u"    some words of a line (which are many)\n"_s;
    }
    text += u"} first\n"_s;
    TextStorage &storage = stage.document->storage();
    storage.apply({{0, storage.length()}, text});
    VimEngine &engine = stage.editor->vim()->engine();
    for (auto _ : state) {
        for (const QString &command : {u"gg"_s, u"G"_s, u"gg%"_s, u"%"_s, u"gg}"_s, u"{"_s, u"*"_s, u"N"_s}) {
            const double start = now();
            for (const QChar key : command) {
                engine.handle({.characters = QString(key), .charactersIgnoringModifiers = QString(key)});
            }
            state.counters["ms_" + command.toStdString()] = (now() - start) / 1000;
        }
    }
}

/// A million hits, one in a line: looking for them, which a worker does, the change on the main thread, its painting left out, and taking
/// it back.
void substitution(benchmark::State &state, const QString &line, const VimSubstitution &substitution)
{
    Stage stage(1);
    QString text = line.repeated(1'000'000);
    TextStorage &storage = stage.document->storage();
    storage.apply({{0, storage.length()}, text});
    text.clear();
    for (auto _ : state) {
        double start = now();
        auto searcher = substitution.searcher();
        const TextReplacement found = substitution.replacementIn(storage.text(), 0, *searcher);
        state.counters["ms_search"] = (now() - start) / 1000;
        start = now();
        TextView &view = stage.editor->textView();
        view.apply(found.edits, GroupKind::other, found.selectionAfter(storage.text(), view.selection()), TextView::Reveal::no);
        state.counters["ms_change"] = (now() - start) / 1000;
        start = now();
        stage.editor->textView().undo();
        state.counters["ms_undo"] = (now() - start) / 1000;
        state.counters["hits"] = double(found.count);
    }
}

/// A letter typed at many carets, all that is notified of it counted in, and what is seen painted after it; then its undo.
void carets(benchmark::State &state)
{
    const qsizetype count = state.range(0);
    Stage stage(state.range(1));
    TextView &view = stage.editor->textView();
    view.setWrapMode(state.range(2) != 0 ? TextView::WrapMode::viewWidth : TextView::WrapMode::none);
    std::vector<CaretSelection> all;
    for (qsizetype caret = 0; caret < count; ++caret) {
        all.push_back(CaretSelection::of(TextSelection::at(caret * (view.storage().length() / count))));
    }
    view.setSelection(Selections::merged(std::move(all), 0));
    double longest = 0;
    double painting = 0;
    for (auto _ : state) {
        for (int typed = 0; typed < 5; ++typed) {
            const Stage::Pressed pressed = stage.press(Qt::Key_X, {}, u"x"_s);
            longest = std::max(longest, pressed.handled);
            painting = std::max(painting, pressed.painted);
        }
        if (qsizetype(view.selections().count()) != count) {
            state.SkipWithError("carets were lost");
        }
        const double start = now();
        view.undo();
        state.counters["ms_undo"] = (now() - start) / 1000;
        state.counters["ms_left"] = stage.press(Qt::Key_Left).handled / 1000;
        state.counters["ms_down"] = stage.press(Qt::Key_Down).handled / 1000;
    }
    state.counters["ms_letter"] = longest / 1000;
    state.counters["ms_painting"] = painting / 1000;
}

/// Resident memory of this process in megabytes, what is free given back.
double residentMegabytes()
{
    malloc_trim(0);
    QFile file(u"/proc/self/statm"_s);
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toDouble() * 4096 / 1e6 : 0;
}

/// A million edits here and there, each a step of its own to undo; then all of them undone, without going to each.
void manyEdits(benchmark::State &state)
{
    constexpr int count = 1'000'000;
    Stage stage(state.range(0));
    // Plain text, the last: colours would take most of the time.
    stage.document->setLanguage(LanguageRegistry::all().back());
    TextView &view = stage.editor->textView();
    UndoManager &history = view.undoManager();
    const Rope before = view.storage().text();
    const Rope letter(u"x");
    const auto often = [&](const char *name, const std::function<void()> &act) {
        const double start = now();
        for (int index = 0; index < count; ++index) {
            act();
            if (index % 1000 == 999) {
                QCoreApplication::processEvents();
            }
        }
        state.counters[std::string("us_") + name] = (now() - start) / count;
        Stage::pass(1500);
        state.counters[std::string("MB_after_") + name] = residentMegabytes();
    };
    std::minstd_rand random(1);
    for (auto _ : state) {
        state.counters["MB_before"] = residentMegabytes();
        often("edit", [&] {
            const auto at = qsizetype(random()) % view.storage().length();
            history.breakCoalescing();
            view.apply({{at, 0}, letter}, GroupKind::other, TextSelection::at(at + 1), TextView::Reveal::no);
        });
        state.counters["steps"] = double(history.steps());
        often("undo", [&] { history.undo(); });
        if (view.storage().text().toString() != before.toString()) {
            state.SkipWithError("not all was undone");
        }
    }
}

BENCHMARK(manyEdits)->Name("a million edits")->Arg(1'000'000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(carets)
    ->ArgNames({"carets", "units", "wraps"})
    ->Args({10'000, 200'000, 0})
    ->Args({10'000, 1'000'000, 0})
    ->Args({10'000, 1'000'000, 1})
    ->Args({100'000, 100'000'000, 0})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(substitution, groups, u"    some words of a line (which are some 88 units, so that a million of them are 88 MB)\n"_s,
                  {.isOfWholeText = true, .pattern = u"s(o)me"_s, .replacement = u"n$1ne"_s})
    ->Name("substitution of an expression, 88 MB")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(substitution, letter, u"x and more words of the same line 0000000\n"_s,
                  {.isOfWholeText = true, .pattern = u"x"_s, .replacement = u"yy"_s, .isGlobal = true})
    ->Name("substitution of a letter, 40 MB")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(modalJumps)->Name("modal jumps, 100 MB")->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(modalKeys)
    ->Name("modal keys in C")
    ->ArgNames({"", "exact"})
    ->ArgsProduct({{20'000, 100'000'000}, {0, 1}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(typing)->Name("key in C")->Arg(20'000)->Arg(1'000'000)->Arg(100'000'000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(pixelScrolling)->Name("by pixels")->Arg(1'000'000)->Arg(100'000'000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scrolling, line, Qt::Key_Down, Qt::ControlModifier, 1500, 0)
    ->Name("line by line, 1 MB")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scrolling, page, Qt::Key_PageDown, Qt::NoModifier, 250, 0)
    ->Name("page by page, 1 MB")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scrolling, restingPage, Qt::Key_PageDown, Qt::NoModifier, 250, 80)
    ->Name("page by page, 1 MB, resting")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int applicationArguments = 1;
    const QApplication application(applicationArguments, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
