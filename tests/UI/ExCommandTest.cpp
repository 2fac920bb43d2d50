// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "WindowFixture.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

class ExCommandTest : public WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        preferences.set(Settings::vimMode, true);
    }
    void start(const QByteArray &content) { workspace().open({put(u"a.txt"_s, content)}); }
    void run(const QString &command)
    {
        flashes.clear();
        press(u':' + command + u"<CR>"_s);
    }
    [[nodiscard]] TextDocument &document() const { return *workspace().currentDocument(); }
};

} // namespace

TEST_F(ExCommandTest, WritesAndCloses)
{
    start("one\n");
    type(u"x"_s);
    run(u"w"_s);
    EXPECT_EQ(read(u"a.txt"_s), "ne\n");
    EXPECT_EQ(flashes, QStringList{u"Saved"_s});
    type(u"x"_s);
    run(u"q"_s);
    EXPECT_EQ(lastAlert(), u"Do you want to save the changes made to “a.txt”?"_s);
    EXPECT_EQ(tabs(), QStringList{u"a.txt"_s});
    run(u"x"_s);
    EXPECT_EQ(read(u"a.txt"_s), "e\n");
    EXPECT_EQ(tabs(), QStringList{u"Untitled"_s});
    EXPECT_EQ(documents.documents().size(), 1U);

    // What cannot be written stays.
    start("two\n");
    type(u"x"_s);
    ASSERT_TRUE(QDir(path({})).rename(u"a.txt"_s, u"b.txt"_s));
    ASSERT_TRUE(QDir(path({})).mkdir(u"a.txt"_s)) << "a folder in its place";
    run(u"wq"_s);
    EXPECT_EQ(tabs(), QStringList{u"a.txt"_s});
    const auto questions = presenter.alerts().size();
    run(u"q!"_s);
    EXPECT_EQ(tabs(), QStringList{u"Untitled"_s});
    EXPECT_EQ(presenter.alerts().size(), questions) << "nothing is asked";
    EXPECT_EQ(documents.documents().size(), 1U);
}

TEST_F(ExCommandTest, WritesToTheFileThatIsNamed)
{
    start("one\n");
    put(u"b.txt"_s, "two\n");
    type(u"x"_s);
    run(u"w "_s + path(u"b.txt"_s));
    EXPECT_EQ(flashes, QStringList{u"“b.txt” exists already; nothing was written. “:w!” and the name write over it."_s});
    EXPECT_EQ(read(u"b.txt"_s), "two\n");
    EXPECT_EQ(read(u"a.txt"_s), "one\n");
    run(u"w! "_s + path(u"b.txt"_s));
    run(u"w "_s + path(u"c d.txt"_s));
    EXPECT_EQ(flashes, QStringList{u"Written to “c d.txt”"_s});
    EXPECT_EQ(read(u"b.txt"_s), "ne\n");
    EXPECT_EQ(read(u"c d.txt"_s), "ne\n");
    EXPECT_EQ(read(u"a.txt"_s), "one\n");
    EXPECT_TRUE(document().isDirty());
    EXPECT_EQ(tabs(), QStringList{u"a.txt"_s});
    run(u"w "_s + path(u"a.txt"_s));
    EXPECT_EQ(flashes, QStringList{u"Saved"_s}) << "its own";
    EXPECT_FALSE(document().isDirty());
    send(Actions::newDocument);
    press(u"ix<Esc>"_s);
    run(u"w "_s + path(u"b.txt"_s));
    EXPECT_TRUE(document().isUntitled());
    run(u"w "_s + path(u"e.txt"_s));
    EXPECT_EQ(document().path(), path(u"e.txt"_s));

    // One that comes between the look and the writing is not written over either.
    workers.isHeld = true;
    run(u"w "_s + path(u"f.txt"_s));
    workers.finish();
    QCoreApplication::processEvents();
    put(u"f.txt"_s, "theirs\n");
    workers.isHeld = false;
    workers.finish();
    QCoreApplication::processEvents();
    EXPECT_TRUE(flashes.value(0).contains(u"exists already")) << flashes.join(u'\n').toStdString();
    EXPECT_EQ(read(u"f.txt"_s), "theirs\n");
}

TEST_F(ExCommandTest, GivesUpNoTextThatIsShownBeside)
{
    start("one\n");
    type(u"x"_s);
    run(u"vs"_s);
    run(u"sp"_s);
    EXPECT_EQ(workspace().panes().size(), 3U);
    run(u"q!"_s);
    EXPECT_EQ(workspace().panes().size(), 2U);
    EXPECT_EQ(text(), u"ne\n"_s);
    EXPECT_TRUE(document().isDirty());
    run(u"only"_s);
    EXPECT_EQ(workspace().panes().size(), 1U);
    run(u"qa"_s);
    EXPECT_EQ(lastAlert(), u"Do you want to save the changes made to “a.txt”?"_s);
    EXPECT_EQ(application.windows().size(), 1U);
}

TEST_F(ExCommandTest, OpensFilesAndReadsThemAgain)
{
    start("one\n");
    put(u"b c.txt"_s, "two\n");
    run(u"e "_s + path(u"b c.txt"_s));
    EXPECT_EQ(text(), u"two\n"_s);
    const QString working = QDir::currentPath();
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", path({}).toUtf8());
    run(u"e ~/a.txt"_s);
    EXPECT_EQ(text(), u"one\n"_s);
    qputenv("HOME", home);
    QDir::setCurrent(path({}));
    run(u"e b c.txt"_s);
    QDir::setCurrent(working);
    EXPECT_EQ(text(), u"two\n"_s);
    EXPECT_EQ(tabs(), (QStringList{u"a.txt"_s, u"b c.txt"_s}));
    run(u"e missing.txt"_s);
    EXPECT_EQ(presenter.alerts().size(), 1U);

    type(u"ddp"_s);
    put(u"b c.txt"_s, "three\n");
    run(u"e!"_s);
    EXPECT_EQ(text(), u"three\n"_s);
    EXPECT_FALSE(document().isDirty());
    type(u"x"_s);
    QFile::remove(path(u"b c.txt"_s));
    run(u"e"_s);
    EXPECT_EQ(text(), u"hree\n"_s) << "nothing to read, nothing lost";
}

TEST_F(ExCommandTest, LeavesTheCaretOnACharacter)
{
    start("one\ntwo\nend");
    type(u"G$"_s);
    run(u"s/d//"_s);
    EXPECT_EQ(flashes, QStringList{u"1 substitution"_s});
    EXPECT_EQ(textView().selection().caret, 9);
    run(u"2"_s);
    EXPECT_EQ(textView().selection().caret, 4);
    run(u"%s/(/x/"_s);
    EXPECT_EQ(flashes, QStringList{u"Bad pattern: ("_s});
    run(u"%s/z/x/"_s);
    EXPECT_EQ(flashes, QStringList{u"Pattern not found: z"_s});
    EXPECT_EQ(text(), u"one\ntwo\nen"_s);
    type(u"u"_s);
    EXPECT_EQ(text(), u"one\ntwo\nend"_s);
}

TEST_F(ExCommandTest, SwitchesModalEditingOffFromWithin)
{
    start("abc\n");
    run(u"vs"_s);
    run(u"set novim"_s);
    EXPECT_FALSE(preferences.value(Settings::vimMode));
    type(u"x"_s);
    EXPECT_EQ(text(), u"xabc\n"_s);
    EXPECT_EQ(pane(0).currentEditor()->vim(), nullptr);

    preferences.set(Settings::vimExact, true);
    preferences.set(Settings::vimMode, true);
    run(u"set novim"_s);
    EXPECT_FALSE(preferences.value(Settings::vimMode));
    EXPECT_EQ(flashes, QStringList()) << "it is no interruption";
}

TEST_F(ExCommandTest, KeepsTheWindowUsableWhileItSubstitutesInALongText)
{
    const QByteArray lines = QByteArray("aaa " + QByteArray(60, '-') + "\n").repeated(10'000);
    start(lines + "end");
    const QString before = text();
    const auto finish = [this] {
        workers.finish();
        QCoreApplication::sendPostedEvents();
        return std::exchange(flashes, {});
    };
    workers.isHeld = true;
    run(u"%s/a/bb/g"_s);
    EXPECT_EQ(flashes, QStringList());
    scheduler.advance(std::chrono::seconds(1));
    EXPECT_EQ(flashes, QStringList{u"Substituting… Esc stops."_s});
    press(u"<Esc>"_s);
    EXPECT_EQ(flashes.last(), u"The substitution was stopped; nothing was changed"_s);
    flashes.clear();
    EXPECT_TRUE(finish().isEmpty());
    EXPECT_EQ(text(), before);

    // The text is another one meanwhile.
    run(u"%s/a/bb/g"_s);
    type(u"Gx"_s);
    EXPECT_TRUE(finish().isEmpty());
    EXPECT_EQ(finish(), QStringList{u"30000 substitutions"_s});
    EXPECT_EQ(text(), u"bbbbbb "_s + QString(before.mid(4)).replace(u"a"_s, u"bb"_s).chopped(3) + u"nd"_s);
    type(u"u"_s);
    EXPECT_EQ(text(), before.chopped(3) + u"nd"_s) << "one step";

    run(u"%s/a/bb/g"_s);
    run(u"q!"_s);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    scheduler.advance(std::chrono::seconds(1));
    EXPECT_TRUE(finish().isEmpty()) << "its tab is gone";
}

TEST_F(ExCommandTest, ShowsTheKeysInATabThatCannotBeEditedUntilItIsSaved)
{
    ASSERT_TRUE(send(Actions::showVimKeyReference));
    EXPECT_EQ(tabs(), QStringList{u"Vim Keys.md"_s});
    const QString before = text();
    press(u"ddixyz<Esc>"_s);
    run(u"%s/Key/x/"_s);
    EXPECT_EQ(flashes, QStringList{u"This text is read-only; nothing was changed"_s});
    document().setLineEnding(LineEnding::crlf);
    EXPECT_EQ(text(), before);
    EXPECT_FALSE(document().isDirty()) << "nothing of it is to be saved";

    presenter.answerSave(path(u"keys.md"_s));
    run(u"w"_s);
    EXPECT_EQ(tabs().last(), u"keys.md"_s);
    type(u"ddix"_s);
    EXPECT_TRUE(document().isDirty()) << "it can be edited now";
    send(Actions::showVimKeyReference);
    EXPECT_EQ(tabs().last(), u"Vim Keys.md"_s) << "another one, which leaves the file alone";
}
