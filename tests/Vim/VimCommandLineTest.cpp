// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "TestFolder.h"
#include "Vim/VimCompletion.h"
#include "Vim/VimFixture.h"

using namespace Qt::StringLiterals;

namespace {

/// What is in the line after each of these keys, "|" at its cursor; none when it is left.
struct Step {
    QString keys;
    QString line;
};

class VimCommandLineTest : public testing::Test {
protected:
    VimCommandLineTest()
    {
        VimOptions options(VimKeymapPreset::plain);
        options.isExact = true;
        m_view.engine.configure(options);
        m_view.engine.setHistory(m_history, [] { return VimHistory::Kept::whileRunning; });
        m_view.select({5, 0}, 5);
    }

    void check(const std::vector<Step> &steps)
    {
        for (const Step &step : steps) {
            m_view.press(step.keys);
            EXPECT_EQ(shown(), step.line) << step.keys.toStdString();
        }
    }
    [[nodiscard]] QString shown() const
    {
        const VimCommandLine &line = m_view.engine.commandLine();
        return m_view.engine.mode() == VimEngine::Mode::commandLine ? QString(line.text()).insert(line.cursor(), u'|') : u"none"_s;
    }

    VimHistory m_history;
    VimView m_view{u"one  this-thing.bar baz\n  two\n"_s};
};

} // namespace

TEST_F(VimCommandLineTest, HasACursor)
{
    check({{u":foo.bar e\u0301x"_s, u"foo.bar e\u0301x|"_s},
           {u"<Left><Left>"_s, u"foo.bar |e\u0301x"_s},
           {u"<Del>y"_s, u"foo.bar y|x"_s},
           {u"<C-Left><S-Left>"_s, u"|foo.bar yx"_s},
           {u"<BS><C-Right>"_s, u"foo.bar |yx"_s},
           {u"<C-w>"_s, u"foo.|yx"_s},
           {u"<C-u><C-e><Del>"_s, u"y|"_s},
           {u"<C-b>x<End>z<Home><Right>"_s, u"x|yz"_s},
           {u"<C-u><C-y>"_s, u"|yz"_s},
           {u"<Del><Del><BS>"_s, u"none"_s}});
}

TEST_F(VimCommandLineTest, TakesTextFromElsewhereAndKeysAsTheyAre)
{
    m_view.press(u"\"ayiw"_s);
    check({{u":xy<Left><C-r>a"_s, u"xthis|y"_s},
           {u"<C-u><C-r><C-w>"_s, u"this|y"_s},
           {u"<C-u><C-r><C-a>"_s, u"this-thing.bar|y"_s},
           {u"<C-u><C-r><C-l>"_s, u"one  this-thing.bar baz|y"_s},
           {u"<C-u><C-r><Esc><C-r><C-r>a"_s, u"this|y"_s},
           {u"<C-u><C-v><Esc><C-v><C-a><C-q><CR><C-v>v"_s, u"\x1b\x01\rv|y"_s},
           {u"<C-u><C-e><C-u><C-v>u00e9<C-v>65.<C-v>x4a<C-v>U1f600x<C-q>uz<C-v>999"_s, u"éA.J\U0001F600xz\u00FF|"_s},
           {u"<C-u><C-k>a:<C-k>:o<C-k>a<Esc>b<C-r>%"_s, u"äöb/folder/file|"_s},
           {u"<C-v>u4<Esc>"_s, u"none"_s},
           {u"/<Tab>"_s, u"\t|"_s}});
}

TEST_F(VimCommandLineTest, RecallsWhatWasTypedBefore)
{
    for (const QString &line : {u"set one"_s, u"abcd"_s, u"second"_s, u"set two"_s, u"abcd"_s}) {
        m_view.press(u':' + line + u"<Esc>"_s);
    }
    m_view.press(u"/sought<CR>"_s);
    check({{u":sex<Left><Up>"_s, u"set two|"_s},
           {u"<Up><Left><Up><Up>"_s, u"set one|"_s},
           {u"<Down><Down><Down><Down>"_s, u"se|"_s},
           {u"<PageUp>"_s, u"abcd|"_s},
           {u"<C-p><S-Up>"_s, u"second|"_s},
           {u"<C-n><BS><Up>"_s, u"set two|"_s},
           {u"<C-u>zzz<Left><Up><Down>"_s, u"zz|z"_s},
           {u"<Esc>?<Up>"_s, u"sought|"_s}});
    for (int entry = 0; entry < 300; ++entry) {
        m_history.add(u':', QString::number(entry), VimHistory::Kept::whileRunning);
    }
    EXPECT_EQ(m_history.entries(u':').size(), 200);
}

TEST_F(VimCommandLineTest, CompletesNames)
{
    check({{u":%'a,/x/wri<Tab>"_s, u"%'a,/x/write|"_s},
           {u"<C-u>se sw=2 noexp<Tab>"_s, u"se sw=2 noexpandtab|"_s},
           {u"<C-u>set ign<Tab>"_s, u"set ignorecase|"_s},
           {u" noexp<Tab>"_s, u"set ignorecase noexpandtab|"_s},
           {u"<C-u>zzz<Tab><C-u>"_s, u"|"_s}});
    EXPECT_EQ(VimCompletion::commands(u"vs"), QStringList{u"vsplit"_s});
    EXPECT_EQ(VimCompletion::options(u"wraps"), QStringList{u"wrapscan"_s});
}

TEST_F(VimCommandLineTest, CompletesFiles)
{
    const TestFolder folder;
    for (const char *name : {"alpine.txt", "alpha.txt", ".hid", "sub/inner.txt"}) {
        folder.put(QString::fromLatin1(name), {});
    }
    const auto look = [&] {
        const auto asked = m_view.engine.commandLine().awaitedFiles();
        ASSERT_TRUE(asked) << shown().toStdString();
        m_view.engine.completeFiles(VimCompletion::files(*asked, folder.path(QString())));
    };
    const auto complete = [&](const QString &keys) {
        m_view.press(keys);
        look();
        return shown();
    };
    EXPECT_EQ(complete(u":e al.x<Left><Left><Tab>"_s), u"e alpha.txt|.x"_s);
    check({{u"<Tab>"_s, u"e alpine.txt|.x"_s}, {u"<C-n>"_s, u"e al|.x"_s}, {u"<Backtab><C-p>"_s, u"e alpha.txt|.x"_s}});
    EXPECT_EQ(m_view.offer, (VimOffer{.words = {u"alpha.txt"_s, u"alpine.txt"_s}, .chosen = 0}));
    check({{u"<C-e>"_s, u"e al|.x"_s}, {u"<C-e>"_s, u"e al.x|"_s}});
    EXPECT_FALSE(m_view.offer);
    EXPECT_EQ(complete(u"<C-u>e ./al<C-d>"_s), u"e ./al|"_s);
    EXPECT_EQ(m_view.offer, (VimOffer{.words = {u"alpha.txt"_s, u"alpine.txt"_s}})) << "all names, and none of them yet";
    check({{u"<Tab><C-y>"_s, u"e ./alpha.txt|"_s}});
    EXPECT_FALSE(m_view.offer);
    check({{u"<C-u>r<C-d>"_s, u"r|"_s}, {u"<Tab><Esc>"_s, u"none"_s}});
    EXPECT_FALSE(m_view.offer);
    m_view.press(u":"_s);
    EXPECT_EQ(complete(u"vs su<Tab>"_s), u"vs sub/|"_s);
    EXPECT_EQ(complete(u"<Tab>"_s), u"vs sub/inner.txt|"_s);
    EXPECT_EQ(complete(u"<C-u>w! .<Tab>"_s), u"w! .hid|"_s);
    EXPECT_EQ(complete(u"<C-u>e <Backtab>"_s), u"e sub/|"_s);
    m_view.press(u"<C-u>e a<Tab>b"_s);
    EXPECT_FALSE(m_view.engine.commandLine().awaitedFiles()) << "what is typed meanwhile stays";
    EXPECT_EQ(VimCompletion::files(u"~"_s, u"/"_s), QStringList{u"~/"_s});
}
