// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/TerminationSignals.h"

#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::array handledSignals = {SIGTERM, SIGINT, SIGHUP};
std::atomic<int> signalSocket = -1;
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may not wait");

void passOn(int)
{
    const int error = errno;
    const char byte = 0;
    // A full socket has news enough.
    [[maybe_unused]] const ssize_t written = ::send(signalSocket, &byte, 1, MSG_DONTWAIT | MSG_NOSIGNAL);
    errno = error;
}

/// Puts `handler` in the place of `expected`; a signal that is dealt with in another way is left alone.
void exchangeHandler(void (*expected)(int), void (*handler)(int))
{
    for (const int number : handledSignals) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler != expected) {
            continue;
        }
        action.sa_handler = handler;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        sigaction(number, &action, nullptr);
    }
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> action)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, m_sockets) != 0) {
        // No descriptors left: the signals then do what they do to any program.
        return;
    }
    signalSocket = m_sockets[0];
    m_notifier = std::make_unique<QSocketNotifier>(m_sockets[1], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [socket = m_sockets[1], action = std::move(action)] {
        char bytes[16];
        while (::recv(socket, bytes, sizeof bytes, MSG_DONTWAIT) > 0) {
        }
        action();
    });
    // A signal that is ignored was meant to be: nohup does so.
    exchangeHandler(SIG_DFL, passOn);
}

TerminationSignals::~TerminationSignals()
{
    if (!m_notifier) {
        return;
    }
    exchangeHandler(passOn, SIG_DFL);
    signalSocket = -1;
    m_notifier.reset();
    ::close(m_sockets[0]);
    ::close(m_sockets[1]);
}
