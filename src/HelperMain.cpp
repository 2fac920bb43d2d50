// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Saves one file for a program that may not write it, with the rights of whoever runs this: the administrator, when pkexec does after it
// has asked for a password. See AdministratorProtocol.
#include "Helper/SaveHelper.h"

#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

int main(int argc, char **argv)
{
    // Nothing of the asker's but the request: no language, no library's switches, no mask, no limits that kill.
    ::clearenv();
    ::umask(S_IWGRP | S_IWOTH);
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The file that is saved must not get the place of one that is closed, where the answer is written to.
        if (::fcntl(descriptor, F_GETFD) < 0) {
            return EXIT_FAILURE;
        }
    }
    if (argc != 2) {
        return EXIT_FAILURE;
    }
    const QByteArray answer = AdministratorProtocol::encoded(saveOnRequest(STDIN_FILENO, argv[1]));
    // It is shorter than what a pipe takes at once.
    return ::write(STDOUT_FILENO, answer.constData(), size_t(answer.size())) == answer.size() ? EXIT_SUCCESS : EXIT_FAILURE;
}
