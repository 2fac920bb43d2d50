// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "World.h"

// The application object, as far as the tests see the toolkit.
#if __has_include(<QApplication>)
#include <QApplication>
using Application = QApplication;
#else
#include <QCoreApplication>
using Application = QCoreApplication;
#endif

#include <gmock/gmock.h>

int main(int argc, char **argv)
{
    const World world;
    const Application application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
