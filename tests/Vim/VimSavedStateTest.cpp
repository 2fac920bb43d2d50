// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimSavedState.h"

#include "HeldWorkers.h"
#include "TestFolder.h"
#include "VimFixture.h"

#include "Vim/VimFileMarks.h"

using namespace Qt::StringLiterals;

namespace {

class VimSavedStateTest : public testing::Test {
protected:
    /// A view of a text, with what an earlier run left.
    struct Run {
        Run(VimSavedStateTest &test, bool isExact) : view(u"one\ntwo\n"_s, isExact ? exactly() : VimOptions(VimKeymapPreset::plain))
        {
            view.preferences.set(Settings::vimExact, isExact);
            view.engine.setHistory(history, [this] { return isPrivate ? VimHistory::Kept::whileRunning : VimHistory::Kept::forNextRun; });
            state = std::make_unique<VimSavedState>(
                test.m_folder.path(u"data/vim.json"_s),
                VimSavedState::Services{view.scheduler, test.m_workers, view.notifications, view.preferences, view.registers, marks()});
        }
        [[nodiscard]] VimFileMarks &marks() { return view.configuration.fileMarks(); }
        /// The registers that have something, and the marks.
        [[nodiscard]] std::string kept()
        {
            QStringList all;
            for (const auto &[name, contents] : view.registers.named()) {
                if (!contents.text.isEmpty()) {
                    const QString type = contents.isBlock      ? u"block %1"_s.arg(contents.blockWidth)
                                         : contents.isLinewise ? u"lines"_s
                                                               : u""_s;
                    all << QChar(name) + contents.text.toString().trimmed() + type;
                }
            }
            for (const VimFileMarks::Mark &mark : marks().all()) {
                all << u"%1 %2:%3:%4"_s.arg(QChar(mark.name)).arg(mark.place.text).arg(mark.place.line).arg(mark.place.column);
            }
            return all.join(u", ").toStdString();
        }
        [[nodiscard]] static VimOptions exactly()
        {
            VimOptions options(VimKeymapPreset::plain);
            options.isExact = true;
            return options;
        }

        VimHistory history;
        bool isPrivate = false;
        VimView view;
        std::unique_ptr<VimSavedState> state;
    };

    [[nodiscard]] std::unique_ptr<Run> next(bool isExact = true) { return std::make_unique<Run>(*this, isExact); }

    TestFolder m_folder;
    HeldWorkers m_workers;
};

TEST_F(VimSavedStateTest, RegistersAndMarksOfFilesAreThereAtTheNextStart)
{
    {
        const auto run = next();
        run->view.press(u"qax<Esc>qmAj\"byy<C-v>kymBk"_s);
        run->isPrivate = true;
        run->view.press(u"\"dyyqez<Esc>q\"Byy"_s);
        run->view.scheduler.advance(VimSavedState::delay);
        EXPECT_EQ(m_workers.jobs.size(), 1U);
        m_workers.finish();
        EXPECT_EQ(next()->kept(), "-o, 0n\ntblock 1, ax\x1b") << "a register that something private was added to is private";
        run->isPrivate = false;
        run->marks().restore(u'D', {.text = u"an untitled one"_s});
        // The line that goes takes A with it; the other moves.
        run->view.press(u"jmBkdd"_s);
    }
    const auto run = next();
    EXPECT_EQ(run->kept(), "-o, 0n\ntblock 1, 1nelines, ax\x1b, B /folder/file:1:0");
    run->view.press(u"p@a"_s);
    EXPECT_EQ(run->view.string().toStdString(), "one\ne\ntwo\n") << "the last register, and a macro";
    EXPECT_FALSE(QFile::permissions(m_folder.path(u"data/vim.json"_s)) & (QFile::ReadGroup | QFile::ReadOther));
}

TEST_F(VimSavedStateTest, NothingIsKeptWhileTheModeIsOff)
{
    next()->view.press(u"yy"_s);
    {
        const auto run = next(false);
        run->view.press(u"\"xyy"_s);
        EXPECT_EQ(run->kept(), "xonelines");
        run->view.preferences.set(Settings::vimExact, true);
        EXPECT_EQ(run->kept(), "0onelines, xonelines") << "it is switched on while the program runs";
        run->view.preferences.set(Settings::vimExact, false);
        run->view.engine.configure(VimOptions(VimKeymapPreset::plain));
        run->view.press(u"\"yyy"_s);
        run->isPrivate = true;
        run->view.press(u"\"zyy"_s);
        run->view.preferences.set(Settings::vimExact, true);
    }
    EXPECT_EQ(next()->kept(), "0onelines, xonelines, yonelines") << "nothing private, whatever the mode was";
}

TEST_F(VimSavedStateTest, ARunThatChangedNothingLeavesWhatAnotherKept)
{
    auto idle = next();
    next()->view.press(u"\"ayy"_s);
    idle.reset();
    EXPECT_EQ(next()->kept(), "aonelines");
}

TEST_F(VimSavedStateTest, TakesNothingElse)
{
    m_folder.put(u"data/vim.json"_s,
                 R"({"registers": [{"name": "a", "text": "one", "type": "characters"}, {"name": "b", "text": 1, "type": "lines"},
        {"name": "cc", "text": "one", "type": "sorts"}, "d", {"name": "e", "text": "x", "type": "block", "width": -3}, {"text": "x", "type": "lines"}],
        "marks": [{"name": "A", "path": "relative", "line": 1}, {"name": "a", "path": "/f"}, {"name": "B", "path": "/f", "line": -4, "column": 1e30}]})");
    EXPECT_EQ(next()->kept(), "aone, exblock 0, B /f:1:0");
    m_folder.put(u"data/vim.json"_s, "[1");
    EXPECT_EQ(next()->kept(), "");
    const auto run = next();
    run->view.registers.store({.text = Rope(QString(VimSavedState::largestRegister + 1, u'x'))}, u'l');
    run->state.reset();
    EXPECT_EQ(next()->kept(), "");
}

} // namespace
