// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "World.h"
#include "monkey/Monkey.h"

#include <QApplication>
#include <QCommandLineParser>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

Monkey *monkey = nullptr;

void printTraceAndEnd(int signal)
{
    monkey->printTrace();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// The offscreen platform reports at length what it cannot do.
void printFatal(QtMsgType type, const QMessageLogContext & /*context*/, const QString &message)
{
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(message));
    }
}

} // namespace

/// Whatever the sanitizers find goes the way of an assertion that fails.
extern "C" __attribute__((visibility("default"))) const char *__asan_default_options()
{
    return "abort_on_error=1:handle_abort=0";
}
extern "C" __attribute__((visibility("default"))) const char *__ubsan_default_options()
{
    return "abort_on_error=1:print_stacktrace=1";
}

int main(int argc, char **argv)
{
    const World world;
    qInstallMessageHandler(printFatal);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser parser;
    parser.addOptions({{u"seed"_s, u"Begin with this number."_s, u"N"_s, u"1"_s},
                       {u"steps"_s, u"End after so many."_s, u"N"_s, u"1000"_s},
                       {u"threads"_s, u"Have workers work on threads, so that runs of a seed differ in time."_s},
                       {u"verbose"_s, u"Report every step."_s}});
    parser.addHelpOption();
    parser.process(application);
    Monkey player(parser.value(u"seed"_s).toUInt(), parser.value(u"steps"_s).toInt(),
                  parser.isSet(u"threads"_s) ? Stage::Work::onThreads : Stage::Work::inlined,
                  parser.isSet(u"verbose"_s) ? Monkey::Talk::always : Monkey::Talk::onFailure);
    monkey = &player;
    std::signal(SIGABRT, printTraceAndEnd);
    player.start();
    return QApplication::exec();
}
