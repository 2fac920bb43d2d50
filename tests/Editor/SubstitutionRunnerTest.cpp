// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/SubstitutionRunner.h"

#include "HeldWorkers.h"
#include "Settings/Settings.h"
#include "View/ViewFixture.h"
#include "Vim/VimOptions.h"
#include "Vim/VimSubstituteJob.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(SubstitutionRunner, CarriesOutJobsOfExactModeOnAWorker)
{
    ViewFixture fixture(u"ab-----------------------------\n"_s.repeated(20'000) + u"  ab"_s);
    HeldWorkers workers;
    QStringList said;
    int changes = 0;
    SubstitutionRunner runner({.scheduler = fixture.scheduler,
                               .workers = workers,
                               .beep = [] {},
                               .showMessage = [&said](const QString &message, Scheduler::Milliseconds) { said << message; }},
                              [&changes](TextView &) { ++changes; });
    const auto run = [&](QStringView typed, VimSubstituteJob::Lines lines) {
        VimSubstituteMemory memory;
        std::optional<VimSearch> last;
        said.clear();
        const VimOptions options(VimKeymapPreset::plain);
        runner.run(fixture.view, *VimSubstituteJob::prepare(*VimSubstituteCommand::parse(typed), lines, options, memory, last));
    };
    const qsizetype length = fixture.storage.text().length();
    run(u"s/b/xy/", {0, 20'000});
    EXPECT_EQ(fixture.storage.text().length(), length);
    workers.finish();
    QTRY_COMPARE(changes, 1);
    EXPECT_EQ(said, QStringList{u"20001 substitutions on 20001 lines"_s});
    EXPECT_EQ(fixture.storage.text().length(), length + 20'001);
    EXPECT_EQ(fixture.view.selection(), TextSelection::at(length + 20'000 - 2));

    run(u"s/xy/-/", {1, 2});
    EXPECT_EQ(said, QStringList{u"2 substitutions on 2 lines"_s});
    EXPECT_EQ(fixture.view.selection(), TextSelection::at(33 + 32));
    run(u"s/a/-/n", {1, 2});
    EXPECT_EQ(said, QStringList{u"2 hits on 2 lines"_s});
    run(u"s/c/-/", {1, 2});
    EXPECT_EQ(said, QStringList{u"Pattern not found: c"_s});
    EXPECT_EQ(changes, 2);
}
