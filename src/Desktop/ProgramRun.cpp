// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/ProgramRun.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr qsizetype mostPrinted = 64 * 1024;

class Descriptor final {
public:
    explicit Descriptor(int descriptor = -1) : m_descriptor(descriptor) {}
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor() { close(); }

    [[nodiscard]] int get() const { return m_descriptor; }
    void set(int descriptor) { m_descriptor = descriptor; }
    void close()
    {
        if (m_descriptor >= 0) {
            ::close(std::exchange(m_descriptor, -1));
        }
    }

private:
    int m_descriptor;
};

/// The program's standard streams, from here and from there.
struct Streams {
    /// Both input and output: a socket, since writing to one that nobody reads any more is an error and not a signal.
    Descriptor talk;
    Descriptor talkOfProgram;
    Descriptor errors;
    Descriptor errorsOfProgram;

    [[nodiscard]] bool open()
    {
        std::array<int, 2> sockets = {-1, -1};
        std::array<int, 2> ends = {-1, -1};
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()) != 0) {
            return false;
        }
        talk.set(sockets[0]);
        talkOfProgram.set(sockets[1]);
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
            return false;
        }
        errors.set(ends[0]);
        errorsOfProgram.set(ends[1]);
        return true;
    }
};

/// `errno`, 0 when it runs.
int start(const QList<QByteArray> &command, const Streams &streams, pid_t &program)
{
    std::vector<char *> words;
    for (const QByteArray &word : command) {
        words.push_back(const_cast<char *>(word.constData()));
    }
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, streams.talkOfProgram.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, streams.talkOfProgram.get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, streams.errorsOfProgram.get(), STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    sigset_t signalSet;
    sigemptyset(&signalSet);
    posix_spawnattr_setsigmask(&attributes, &signalSet);
    sigfillset(&signalSet);
    posix_spawnattr_setsigdefault(&attributes, &signalSet);
    const int error = ::posix_spawn(&program, words.front(), &actions, &attributes, words.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

/// What is still to be given to the program.
class Input final {
public:
    explicit Input(std::span<const QByteArrayView> pieces) : m_pieces(pieces.begin(), pieces.end()) { skipEmpty(); }

    [[nodiscard]] bool isEmpty() const { return m_next == m_pieces.size(); }
    /// As much as it takes now; then its end.
    void send(int socket)
    {
        QByteArrayView &piece = m_pieces[m_next];
        const ssize_t sent = ::send(socket, piece.data(), size_t(piece.size()), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent >= 0) {
            piece = piece.sliced(sent);
            skipEmpty();
        } else if (errno != EAGAIN && errno != EINTR) {
            m_next = m_pieces.size(); // nobody reads it
        }
        if (isEmpty()) {
            ::shutdown(socket, SHUT_WR);
        }
    }

private:
    void skipEmpty()
    {
        while (!isEmpty() && m_pieces[m_next].isEmpty()) {
            ++m_next;
        }
    }

    std::vector<QByteArrayView> m_pieces;
    size_t m_next = 0;
};

/// Closes the descriptor when nothing comes any more.
void receive(Descriptor &from, QByteArray &into)
{
    std::array<char, 4096> block;
    const ssize_t count = ::read(from.get(), block.data(), block.size());
    if (count > 0) {
        into.append(block.data(), std::min<qsizetype>(count, mostPrinted - into.size()));
    } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
        from.close();
    }
}

int waitFor(pid_t program)
{
    int status = 0;
    while (::waitpid(program, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

Result<ProgramRun, int> ProgramRun::run(const QList<QByteArray> &command, std::span<const QByteArrayView> input,
                                        const std::stop_token &stop)
{
    Streams streams;
    const Descriptor stopped(::eventfd(0, EFD_CLOEXEC));
    pid_t program = -1;
    if (stopped.get() < 0 || !streams.open()) {
        return tl::make_unexpected(errno);
    }
    if (const int error = start(command, streams, program); error != 0) {
        return tl::make_unexpected(error);
    }
    streams.talkOfProgram.close();
    streams.errorsOfProgram.close();
    const std::stop_callback onStop(stop, [&stopped] { ::eventfd_write(stopped.get(), 1); });
    ProgramRun run;
    Input left(input);
    bool isToldToEnd = false;
    while (streams.talk.get() >= 0 || streams.errors.get() >= 0) {
        std::array<pollfd, 3> polled = {
            pollfd{.fd = streams.talk.get(), .events = short(left.isEmpty() ? POLLIN : POLLIN | POLLOUT), .revents = 0},
            pollfd{.fd = streams.errors.get(), .events = POLLIN, .revents = 0},
            pollfd{.fd = isToldToEnd ? -1 : stopped.get(), .events = POLLIN, .revents = 0},
        };
        if (::poll(polled.data(), polled.size(), -1) < 0) {
            continue; // a signal
        }
        if ((polled[2].revents & POLLIN) != 0) {
            // What has become the administrator's meanwhile goes on to its end.
            ::kill(program, SIGTERM);
            isToldToEnd = true;
        }
        if ((polled[0].revents & POLLOUT) != 0) {
            left.send(streams.talk.get());
        }
        if ((polled[0].revents & (POLLIN | POLLHUP | POLLERR)) != 0) {
            receive(streams.talk, run.output);
        }
        if ((polled[1].revents & (POLLIN | POLLHUP | POLLERR)) != 0) {
            receive(streams.errors, run.errors);
        }
    }
    run.status = waitFor(program);
    return run;
}
