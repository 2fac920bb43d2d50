// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Keys that run by themselves in a view.

#include "Editor/EditorVim.h"
#include "Commands/Actions.h"
#include "Desktop/ForeignKeyboard.h"
#include "Editor/EditorFixture.h"
#include "HeldWorkers.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
#include "Vim/VimConfiguration.h"
#include "Vim/VimRegisters.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Who asks for the time takes a millisecond of it; what is to be done in the next turn of the event loop is done by turn().
class BusyScheduler final : public Scheduler {
public:
    [[nodiscard]] Milliseconds now() const override { return Milliseconds(++m_asked); }
    /// False when there was nothing to be done.
    bool turn()
    {
        const auto next = std::ranges::find(m_timings, Milliseconds(0), &Timing::interval);
        if (next == m_timings.end()) {
            return false;
        }
        fire(next->id);
        return true;
    }

protected:
    int startTiming(Milliseconds interval, Milliseconds /*tolerance*/, Repeat /*repeat*/) override
    {
        m_timings.push_back({++m_lastId, interval});
        return m_lastId;
    }
    void stopTiming(int id) override
    {
        std::erase_if(m_timings, [id](const Timing &timing) { return timing.id == id; });
    }

private:
    struct Timing {
        int id;
        Milliseconds interval;
    };
    mutable qint64 m_asked = 0;
    std::vector<Timing> m_timings;
    int m_lastId = 0;
};

class EditorVimTest : public testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<EditorVim> modalEditing(EditorTextView &view, Scheduler &clock)
    {
        return std::make_unique<EditorVim>(
            view,
            EditorVim::Services{.commands = {clock, workers, [] {}, [this](const QString &message, auto) { shown << message; }},
                                .registers = registers,
                                .keyboard = keyboard,
                                .configuration = configuration.get(),
                                .name = [] { return VimTextName{.path = {}, .title = {}, .id = u"text"_s}; }},
            configuration->options(),
            EditorVim::Callbacks{.stateChanged = [] {},
                                 .runCommand = [](const QString &) {},
                                 .say = [this](const QString &message) { said << message; },
                                 .list = [](const QString &, const QString &) {},
                                 .performCommand = [](const Action &, const QString &) {},
                                 .substitute = [](const VimSubstituteJob &) {}});
    }
    void start(const QString &text, Scheduler &clock)
    {
        preferences.set(Settings::vimMode, true);
        preferences.set(Settings::vimExact, true);
        preferences.set(Settings::vimSharesClipboard, false);
        editor = std::make_unique<EditorFixture>(text);
        configuration = std::make_unique<VimConfiguration>(preferences);
        vim = modalEditing(editor->view, clock);
        QObject::connect(&editor->storage, &TextStorage::changed, &editor->view, [this] { ++changes; });
        QObject::connect(&editor->view, &TextView::selectionChanged, &editor->view, [this] { ++selections; });
    }
    void record(char16_t name, const QString &keys) { registers.store({.text = Rope(keys)}, name); }
    void press(const QString &keys)
    {
        for (const QChar key : keys) {
            key == u'\n' ? press(Qt::Key_Return) : QTest::keyClicks(&editor->view, key);
        }
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&editor->view, key, modifiers); }
    void turnToTheEnd()
    {
        while (busy.turn()) {
        }
    }
    [[nodiscard]] QString text() const { return editor->storage.string(); }

    ManualScheduler still;
    BusyScheduler busy;
    NotificationCenter notifications;
    DefaultsStore defaults{QString(), still};
    Preferences preferences{defaults, notifications};
    MemoryPasteboard pasteboard;
    VimRegisters registers{pasteboard, preferences};
    ForeignKeyboard keyboard;
    HeldWorkers workers;
    QStringList shown;
    QStringList said;
    int changes = 0;
    int selections = 0;
    std::unique_ptr<EditorFixture> editor;
    std::unique_ptr<VimConfiguration> configuration;
    std::unique_ptr<EditorVim> vim;
};

const QString appendAndGoDown = u"A!\u001bj"_s;

} // namespace

TEST_F(EditorVimTest, ChangesTheViewOnceForAllKeysThatRunByThemselves)
{
    start(u"line\n"_s.repeated(200), still);
    record(u'a', appendAndGoDown);
    for (const QString &keys :
         {u"150@a"_s, u":51,200normal A?\n"_s, u":g/^line!$/normal! Ax\n"_s, u":g/e/s/l/L/\n"_s, u":g/./t.|normal rX\n"_s}) {
        changes = selections = 0;
        press(keys);
        EXPECT_EQ(changes, 1) << keys.toStdString();
        EXPECT_LE(selections, 3) << keys.toStdString();
    }
    EXPECT_TRUE(text().startsWith(u"Line!x\nXine!x\nLine!x\nXine!x\n"_s)) << text().first(30).toStdString();
    EXPECT_EQ(editor->undo.steps(), 5);
    press(u"5u"_s);
    EXPECT_EQ(text(), u"line\n"_s.repeated(200));
    EXPECT_TRUE(shown.isEmpty());

    // What the view itself does, and what undoes, sees all that was done before.
    record(u'b', u"ox\u001bu0a y\u001b"_s);
    press(u"gg3@b"_s);
    EXPECT_TRUE(text().startsWith(u"l yine\nline\n"_s)) << text().first(30).toStdString();
}

TEST_F(EditorVimTest, UndoesWhatRanByItselfWithTheCaretWhereItWas)
{
    for (const QString &keys : {u"jfcxw."_s, u"jfcxw@a"_s, u"jfcxw:normal x\n"_s}) {
        start(u"one\n  abc bcd cde\n"_s, still);
        record(u'a', u"x"_s);
        press(keys);
        EXPECT_EQ(text(), u"one\n  ab cd cde\n"_s) << keys.toStdString();
        press(u"u"_s);
        EXPECT_EQ(editor->view.selection().caret, 9) << keys.toStdString();
        press(u"u"_s);
        EXPECT_EQ(editor->view.selection().caret, 8) << keys.toStdString();
        vim.reset();
    }
}

TEST_F(EditorVimTest, TakesAKeyThatWaitsForAMappingWhereItWasTyped)
{
    QInputMethodEvent composed({}, {});
    composed.setCommitString(u"ö"_s);
    const std::pair<std::function<void()>, QString> rows[] = {
        {[this] { editor->view.perform(Actions::selectAll); }, u"one jtwo\n"_s},
        {[&] { QCoreApplication::sendEvent(&editor->view, &composed); }, u"one jötwo\n"_s},
        {[this] {
             QTest::mouseClick(editor->view.viewport(), Qt::LeftButton, {}, {1, 1});
         },
         u"one jtwo\n"_s},
        {[this] {
             QFocusEvent left(QEvent::FocusOut);
             QCoreApplication::sendEvent(&editor->view, &left);
         },
         u"one jtwo\n"_s},
        {[this] { press(u"k"_s); }, u"one Xtwo\n"_s},
    };
    for (const auto &[happen, after] : rows) {
        start(u"one two\n"_s, still);
        press(u":inoremap jk X\nwij"_s);
        EXPECT_EQ(text(), u"one two\n"_s);
        happen();
        EXPECT_EQ(text(), after);
        EXPECT_FALSE(vim->engine().awaitsMapping());
        vim.reset();
    }
}

TEST_F(EditorVimTest, SharesTheMarksThatKeysSetAsTheyRun)
{
    start(u"one\ntwo\n"_s, still);
    EditorTextView otherView(editor->storage, editor->undo, {editor->scheduler, pasteboard, [] {}}, testFont());
    const auto other = modalEditing(otherView, still);
    record(u'a', u"Ofirst\u001bjmaOmore\u001b"_s);
    press(u"2@a"_s);
    EXPECT_EQ(text(), u"first\nfirst\nmore\nmore\none\ntwo\n"_s);
    QTest::keyClicks(&otherView, u"'ax"_s);
    EXPECT_EQ(text(), u"first\nfirst\nmore\nore\none\ntwo\n"_s);
}

TEST_F(EditorVimTest, RunsInSlicesWhileFurtherKeysWait)
{
    start(u"line\n"_s.repeated(100), busy);
    record(u'a', appendAndGoDown);
    press(u"90@a"_s);
    EXPECT_LT(text().count(u'!'), 20) << "the window is used meanwhile";
    press(u"x"_s);
    editor->storage.apply({{0, 0}, u"first\n"_s});
    EXPECT_TRUE(busy.turn());
    EXPECT_GT(text().count(u'!'), 0);
    turnToTheEnd();
    EXPECT_EQ(text(), u"first\n"_s + u"line!\n"_s.repeated(90) + u"lin\n"_s + u"line\n"_s.repeated(9));
    EXPECT_GT(changes, 5);
    EXPECT_LT(changes, 30);
    EXPECT_EQ(editor->undo.steps(), 2);
    press(u"uu"_s);
    EXPECT_FALSE(text().contains(u'!')) << "one step";
}

TEST_F(EditorVimTest, StopsAndKeepsWhatWasDone)
{
    const QString before = u"line\n"_s.repeated(1000);
    start(before, busy);
    record(u'a', appendAndGoDown);
    record(u'r', u"ihop\u001b@r"_s);
    struct Case {
        QString keys;
        Qt::Key stop;
        Qt::KeyboardModifiers modifiers;
    };
    for (const Case &one : {Case{u"1000@a"_s, Qt::Key_Escape, {}}, Case{u"@r"_s, Qt::Key_C, Qt::ControlModifier},
                            Case{u":%normal! Ahop\n"_s, Qt::Key_C, Qt::ControlModifier}, Case{u":g/i/normal @a\n"_s, Qt::Key_Escape, {}}}) {
        SCOPED_TRACE(one.keys.toStdString());
        said.clear();
        press(one.keys);
        EXPECT_TRUE(busy.turn());
        EXPECT_TRUE(busy.turn());
        press(u"ggdG"_s);
        press(one.stop, one.modifiers);
        EXPECT_FALSE(busy.turn()) << "it is over";
        EXPECT_EQ(vim->engine().mode(), VimEngine::Mode::normal);
        EXPECT_EQ(said.size(), 1);
        EXPECT_NE(text(), before);
        EXPECT_EQ(editor->undo.steps(), 1);
        press(u"u"_s);
        EXPECT_EQ(text(), before);
    }
    press(u"1000@a"_s);
    vim.reset();
    EXPECT_GT(text().count(u'!'), 0) << "the end of it is the end of its keys";
}

TEST_F(EditorVimTest, ComputesLongLinesOnAWorkerWhereTheyCanBeStopped)
{
    const QString before = u"b 012345678901234567890123456789012345678901234567890123456789\n"_s.repeated(5000) + u"a\n"_s;
    start(before, still);
    press(u":sort\n"_s);
    EXPECT_EQ(workers.jobs.size(), 1U);
    press(u"x"_s);
    still.advance(Scheduler::Milliseconds(1000));
    EXPECT_EQ(shown, QStringList(u"Running… Esc stops."_s));
    press(Qt::Key_Escape);
    workers.finish();
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(text(), before);

    press(u":sort\nx"_s);
    editor->storage.apply({{before.size(), 0}, u"0\n"_s});
    for (int round = 0; round < 2; ++round) {
        workers.finish();
        QCoreApplication::sendPostedEvents();
    }
    EXPECT_EQ(text(), u"\n"_s + before.chopped(2) + u"0\n"_s) << "the text as it is, and then the key";
}

TEST_F(EditorVimTest, ComputesOperatorsOverMuchTextOnAWorker)
{
    const QString before = u"b 012345678901234567890123456789012345678901234567890123456789\n"_s.repeated(5000);
    start(before, still);
    for (const QStringView keys : {u"gUG", u"g~G", u">G", u"gqG"}) {
        const auto run = [&](const std::function<void()> &meanwhile) {
            press(keys.toString());
            EXPECT_EQ(workers.jobs.size(), 1U) << keys.toString().toStdString();
            meanwhile();
            for (int round = 0; round < 2; ++round) {
                workers.finish();
                QCoreApplication::sendPostedEvents();
            }
            return text();
        };
        EXPECT_EQ(run([&] { press(Qt::Key_Escape); }), before);
        EXPECT_EQ(run([&] { editor->storage.apply({{0, 0}, u"0\n"_s}); }), u"0\n"_s + before) << "what was meant is elsewhere now";
        editor->storage.apply({{0, 2}, QString()});
        EXPECT_NE(run([] {}), before);
        press(u"u"_s);
        EXPECT_EQ(text(), before);
    }
}
