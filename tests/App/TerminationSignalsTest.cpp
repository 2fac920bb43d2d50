// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/TerminationSignals.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <gtest/gtest.h>

#include <csignal>

TEST(TerminationSignals, BecomeCallsFromTheEventLoop)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        int calls = 0;
        QEventLoop loop;
        std::signal(signal, SIG_DFL); // whoever started the tests may have them ignore it
        const TerminationSignals termination([&] {
            ++calls;
            loop.quit();
        });
        std::raise(signal);
        std::raise(signal);
        EXPECT_EQ(calls, 0) << "nothing of the program runs inside the handler";
        loop.exec();
        QCoreApplication::processEvents();
        EXPECT_EQ(calls, 1) << "two signals at once are one request";
    }
    std::signal(SIGHUP, SIG_IGN);
    {
        const TerminationSignals termination([] { ADD_FAILURE() << "was to be ignored"; });
        std::raise(SIGHUP);
        QCoreApplication::processEvents();
    }
    struct sigaction action = {};
    sigaction(SIGHUP, nullptr, &action);
    EXPECT_EQ(action.sa_handler, SIG_IGN);
    std::signal(SIGHUP, SIG_DFL);
    sigaction(SIGTERM, nullptr, &action);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
}
