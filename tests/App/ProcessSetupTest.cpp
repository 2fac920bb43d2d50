// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/ProcessSetup.h"

#include "Base/AtomicFile.h"
#include "TestFolder.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

TEST(ProcessSetupDeathTest, ClosedStandardDescriptorsAreTakenByNobody)
{
    const auto check = [] {
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::close(descriptor);
        }
        setUpProcess();
        char byte = 0;
        const bool isUnreadable = ::read(STDIN_FILENO, &byte, 1) < 0;
        const bool isWritable = ::write(STDOUT_FILENO, &byte, 1) == 1 && ::write(STDERR_FILENO, &byte, 1) == 1;
        ::_exit(isUnreadable && isWritable && ::open("/", O_RDONLY) > STDERR_FILENO ? 0 : 1);
    };
    EXPECT_EXIT(check(), testing::ExitedWithCode(0), "");
}

TEST(ProcessSetupDeathTest, AFileThatMayNotGrowIsAnErrorAndLeavesNothingBehind)
{
    const TestFolder folder;
    const QString file = folder.put(u"file"_s, "old");
    const auto check = [&file] {
        setUpProcess();
        const rlimit limit = {.rlim_cur = 4096, .rlim_max = 4096};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const auto written = writeAtomically(file, QByteArray(8192, 'x'), AtomicFile::NewFile::privateToUser);
        ::_exit(!written && written.error().code == EFBIG ? 0 : 1);
    };
    EXPECT_EXIT(check(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(folder.read(file), "old");
    EXPECT_EQ(folder.names(), QStringList(u"file"_s));
}
