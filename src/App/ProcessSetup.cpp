// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/ProcessSetup.h"

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

namespace {

void openStandardDescriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) < 0 && errno == EBADF) {
            // The lowest that is free is this one.
            [[maybe_unused]] const int opened = ::open("/dev/null", O_WRONLY);
        }
    }
}

void surviveFileSizeLimit()
{
    // Not ignored: that would be handed down to every program that is started from here.
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGXFSZ, &action, nullptr);
}

/// The heaps that threads get otherwise are grown by a system call for every few kilobytes: a fifth of what it takes to read a large file.
void shareOneHeap()
{
    mallopt(M_ARENA_MAX, 1);
}

} // namespace

void setUpProcess()
{
    openStandardDescriptors();
    surviveFileSizeLimit();
    shareOneHeap();
}
