// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/PolkitAdministrator.h"

#include "TestFolder.h"

#include <thread>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// A script takes the place of pkexec; the helper is the real one, with the rights of whoever runs the test.
class PolkitAdministratorTest : public testing::Test, protected TestFolder {
protected:
    [[nodiscard]] PolkitAdministrator::Programs programs(const QByteArray &script) const
    {
        const QString pkexec = put(u"bin/pkexec"_s, "#!/bin/sh\n" + script + '\n');
        QFile::setPermissions(pkexec, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return {.pkexec = pkexec, .helper = QStringLiteral(QUILLET_SAVE_HELPER)};
    }
    [[nodiscard]] Result<FileState, AtomicFile::WriteError> write(const QByteArray &script,
                                                                  const std::optional<AtomicFile::Expectation> &expected = std::nullopt,
                                                                  const std::stop_token &stop = {}) const
    {
        return PolkitAdministrator(programs(script)).write({.path = path(u"a.txt"_s), .expected = expected}, text, stop);
    }

    /// More than a socket takes at once.
    const QByteArray text = QByteArray("a new line\n").repeated(200'000);
};

TEST_F(PolkitAdministratorTest, HasTheHelperSaveTheFile)
{
    put(u"a.txt"_s, "old\n");
    const QByteArray permits = R"(test "$1" = --disable-internal-agent && shift && exec "$@")";
    const auto saved = write(permits);
    ASSERT_TRUE(saved) << saved.error().message.toStdString();
    EXPECT_EQ(read(u"a.txt"_s), text);
    EXPECT_TRUE(write(permits, AtomicFile::Expectation{*saved})) << "it is as it was written";
    put(u"a.txt"_s, "theirs\n");
    const auto changed = write(permits, AtomicFile::Expectation{*saved});
    ASSERT_FALSE(changed);
    EXPECT_EQ(changed.error().code, AtomicFile::changedError);
    EXPECT_EQ(changed.error().found.value_or(FileState()).stamp.size, 7);
    EXPECT_EQ(read(u"a.txt"_s), "theirs\n");
}

TEST_F(PolkitAdministratorTest, SaysWhyThereIsNoPermission)
{
    struct Case {
        QByteArray script;
        int code;
        QString words;
    };
    const Case cases[] = {
        {"exit 126", Administrator::dismissedError, u"Not saved"_s},
        {"exit 127", EPERM, u"not authorized"_s},
        {"echo 'Error executing command as another user: No authentication agent found.' >&2; exit 127", EPERM, u"authentication agent"_s},
        {"echo 'Error getting authority: Error initializing authority: Could not connect' >&2; exit 127", EPERM,
         u"polkit does not answer"_s},
        {"cat; exit 0", EPROTO, u"without an answer"_s},
        {"kill -9 $$", EPROTO, u"without an answer"_s},
    };
    for (const auto &[script, code, words] : cases) {
        const auto failed = write(script);
        ASSERT_FALSE(failed) << script.constData();
        EXPECT_EQ(failed.error().code, code) << script.constData();
        EXPECT_TRUE(failed.error().message.contains(words)) << failed.error().message.toStdString();
    }
    EXPECT_FALSE(QFile::exists(path(u"a.txt"_s)));
}

TEST_F(PolkitAdministratorTest, AStopCallsTheQuestionOff)
{
    std::stop_source stop;
    ASSERT_EQ(::mkfifo(QFile::encodeName(path(u"pipe"_s)).constData(), 0600), 0);
    // It stops when the question is on the screen.
    std::thread user([&] {
        EXPECT_EQ(read(u"pipe"_s), "asks\n");
        stop.request_stop();
    });
    const auto stopped =
        write("echo asks >" + QFile::encodeName(path(u"pipe"_s)) + "; exec tail -f /dev/null", std::nullopt, stop.get_token());
    EXPECT_EQ(stopped ? 0 : stopped.error().code, Administrator::dismissedError);
    user.join();
    EXPECT_FALSE(write("exec tail -f /dev/null", std::nullopt, stop.get_token())) << "before it was asked";
}

TEST_F(PolkitAdministratorTest, IsThereWhereItsProgramsAre)
{
    auto found = programs("exit 0");
    EXPECT_EQ(PolkitAdministrator(found).isAvailable(), ::geteuid() != 0) << "root needs none";
    found.helper = path(u"none"_s);
    EXPECT_FALSE(PolkitAdministrator(found).isAvailable());
    const auto failed = PolkitAdministrator({.pkexec = path(u"none"_s), .helper = {}}).write({.path = path(u"a.txt"_s)}, text, {});
    EXPECT_EQ(failed ? 0 : failed.error().code, ENOENT);
}

} // namespace
