// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/CommandLine.h"
#include "App/ProcessSetup.h"
#include "App/Program.h"
#include "App/RunningInstance.h"
#include "Base/FilePath.h"
#include "Base/Translation.h"

#include <QApplication>
#include <QProcess>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// Names as they were given.
void print(FILE *stream, const QString &text)
{
    std::fputs(encodedPath(text).constData(), stream);
}

using Answer = RunningInstance::Answer;

/// To the program that runs, if one does.
RunningInstance::Outcome handOver(const CommandLine &line)
{
    constexpr std::chrono::seconds timeout{3};
    const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN", qEnvironmentVariable("DESKTOP_STARTUP_ID"));
    return RunningInstance::handOver(QDBusConnection::sessionBus(),
                                     {.files = line.files,
                                      .opensNewWindow = line.opensNewWindow,
                                      .opensNewTab = line.opensNewTab,
                                      .problems = line.problems,
                                      .stream = line.readsStandardInput ? STDIN_FILENO : -1,
                                      .activationToken = token},
                                     line.waits ? RunningInstance::Until::closed : RunningInstance::Until::taken, timeout);
}

/// As a program of its own, that goes on when this one has done with waiting.
void startAnother(const CommandLine &line)
{
    constexpr std::chrono::seconds timeout{20};
    QProcess program;
    program.setProgram(QCoreApplication::applicationFilePath());
    if (line.language) {
        program.setArguments({u"--language"_s, *line.language == AppLanguage::german ? u"de"_s : u"en"_s});
    }
    program.setStandardInputFile(QProcess::nullDevice());
    program.setStandardOutputFile(QProcess::nullDevice());
    program.setStandardErrorFile(QProcess::nullDevice());
    if (program.startDetached()) {
        std::ignore = RunningInstance::waitUntilOneRuns(QDBusConnection::sessionBus(), timeout);
    }
}

/// What the desktop lets a window come to the front by; the toolkit takes it out of the environment.
using ActivationTokens = std::array<std::pair<const char *, QByteArray>, 2>;
ActivationTokens activationTokens()
{
    ActivationTokens tokens{{{"XDG_ACTIVATION_TOKEN", {}}, {"DESKTOP_STARTUP_ID", {}}}};
    for (auto &[name, value] : tokens) {
        value = qgetenv(name);
    }
    return tokens;
}

/// The same request in a program of its own, which outlives the terminal and is not waited for. Whether it was started.
bool startBehind(int argc, char **argv, const ActivationTokens &tokens)
{
    for (const auto &[name, value] : tokens) {
        if (!value.isEmpty()) {
            qputenv(name, value);
        }
    }
    std::string wait = "--wait";
    std::vector<char *> arguments{argv[0], wait.data()};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t files{};
    posix_spawnattr_t attributes{};
    posix_spawn_file_actions_init(&files);
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&files, descriptor, "/dev/null", O_RDWR, 0);
    }
    pid_t started = 0;
    const int error = posix_spawn(&started, "/proc/self/exe", &files, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return error == 0;
}

void printProblems(const CommandLine &line)
{
    for (const QString &problem : line.problems) {
        print(stderr, u"quillet: "_s + problem + u'\n');
    }
}

} // namespace

int main(int argc, char **argv)
{
    setUpProcess();
    QStringList arguments;
    for (int index = 1; index < argc; ++index) {
        arguments << decodedPath(argv[index]);
    }
    Localization::use(AppLanguage::system);
    CommandLine line = CommandLine::parse(arguments, workingFolder());
    if (line.language) {
        Localization::use(*line.language);
        // What is wrong was worded before that was known.
        line = line.problems.isEmpty() ? line : CommandLine::parse(arguments, workingFolder());
    }
    printProblems(line);
    switch (line.request) {
    case CommandLine::Request::refuse:
        print(stderr, CommandLine::help());
        return 2;
    case CommandLine::Request::showHelp:
        print(stdout, CommandLine::help());
        return 0;
    case CommandLine::Request::showVersion:
        print(stdout, u"Quillet "_s + QStringLiteral(QUILLET_VERSION) + u'\n');
        return 0;
    case CommandLine::Request::compare:
        if (line.files.size() < 2) {
            return 2;
        }
        break;
    case CommandLine::Request::openFiles:
        break;
    }
    // In a window is said what nobody can have read here.
    if (::isatty(STDERR_FILENO) != 0) {
        line.problems.clear();
    }
    const ActivationTokens tokens = activationTokens();
    // The arguments are all read; the application object would look for its own among them.
    int applicationArguments = 1;
    QApplication application(applicationArguments, argv);
    QApplication::setApplicationVersion(QStringLiteral(QUILLET_VERSION));
    const bool isComparison = line.request == CommandLine::Request::compare;
    if (isComparison && !line.waits && startBehind(argc, argv, tokens)) {
        return 0;
    }
    auto given = isComparison ? RunningInstance::Outcome{} : handOver(line);
    if (given.answer == Answer::nobodyRuns && line.waits && QDBusConnection::sessionBus().isConnected()) {
        startAnother(line);
        given = handOver(line);
    }
    if (given.answer == Answer::taken) {
        return given.status;
    }
    Program program(application, line);
    // Of two that start at the same time, one is the first.
    if (given.answer == Answer::nobodyRuns && !program.listen()) {
        if (const auto late = handOver(line); late.answer == Answer::taken) {
            return late.status;
        }
    }
    if (given.answer == Answer::none && !isComparison) {
        print(stderr, u"quillet: "_s + localized(u"The Quillet that is running does not answer. This one works alone.") + u'\n');
    }
    return program.run(line);
}
