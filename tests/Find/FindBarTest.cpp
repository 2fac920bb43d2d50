// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/FindBar.h"

#include "Base/Localization.h"
#include "Commands/Actions.h"
#include "Controls.h"
#include "Find/FindField.h"
#include "Find/FindState.h"
#include "Find/TextFinder.h"
#include "HeldWorkers.h"
#include "View/MarkedScrollBar.h"
#include "View/ViewFixture.h"

#include <QLabel>
#include <QShortcut>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>
#include <gmock/gmock.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::HasSubstr;

namespace {

/// A window with a find bar above a text.
struct Editor {
    FindState &shared;
    TextStorage storage;
    ManualScheduler scheduler;
    UndoManager undo{storage, [this] { return scheduler.now(); }};
    MemoryPasteboard pasteboard;
    HeldWorkers workers;
    int beeps = 0;
    QWidget window;
    TextView *view = new TextView(storage, undo, {scheduler, pasteboard}, testFont(), &window);
    TextFinder finder{*view, {{scheduler, workers, [this] { ++beeps; }}, shared}};
    FindBar *bar = new FindBar(finder, scheduler, &window);

    Editor(FindState &state, const QString &marked) : shared(state)
    {
        const MarkedText text(marked);
        {
            const UndoManager::Pause pause(undo);
            storage.apply({{0, 0}, text.text});
        }
        auto *layout = new QVBoxLayout(&window);
        layout->setContentsMargins({});
        layout->addWidget(bar);
        layout->addWidget(view);
        window.resize(600, 300);
        window.show();
        view->setFocus();
        activate();
        view->setSelection(text.selection);
    }

    void activate()
    {
        window.activateWindow();
        (void)QTest::qWaitForWindowActive(&window);
    }
    void perform(const Action &action) { bar->performTextFinderAction({.tag = action.tag}); }
    void keys(const QString &keys) { sendKeys(*window.focusWidget(), keys); }
    void finishWork()
    {
        workers.finish();
        QCoreApplication::processEvents();
    }
    [[nodiscard]] FindField *field(int row) const { return bar->findChildren<FindField *>()[row]; }
    [[nodiscard]] QToolButton *button(const QString &name) const { return control<QToolButton>(*bar, name); }
    /// What stands in the field for the text to be found.
    [[nodiscard]] QString pattern() const { return field(0)->text(); }
    [[nodiscard]] std::string message() const
    {
        for (const QLabel *label : bar->findChildren<QLabel *>()) {
            if (label->wordWrap() && label->isVisible()) {
                return label->text().toStdString();
            }
        }
        return {};
    }
    [[nodiscard]] std::string marked() const { return MarkedText::marked(storage.string(), view->selection()).toStdString(); }
    [[nodiscard]] std::string note() const { return field(0)->note().toStdString(); }
    /// The text and the note: "a ^hit|: 1 of 2".
    [[nodiscard]] std::string shown() const { return marked() + ": " + note(); }
    /// What is shown after these keys each.
    void expect(std::initializer_list<std::pair<QString, std::string>> steps)
    {
        for (const auto &[pressed, wanted] : steps) {
            keys(pressed);
            EXPECT_EQ(shown(), wanted) << pressed.toStdString();
        }
    }
};

class FindBarTest : public testing::Test {
protected:
    FindState shared;
};

TEST_F(FindBarTest, FindsWhileTypingAndGoesRoundFromHitToHit)
{
    Editor editor(shared, u"an ant, |a man, an Ant"_s);
    editor.perform(Actions::find);
    ASSERT_EQ(editor.window.focusWidget(), editor.field(0));
    const auto look = [&editor] { return editor.view->viewport()->grab().toImage(); };
    const QImage unmarked = look();
    // From the caret on; back where it was when there is none.
    editor.expect({{u"an"_s, "an ant, a m^an|, an Ant: 3 of 5"}, {u"t"_s, "an ant, a man, an ^Ant|: 2 of 2"}});
    EXPECT_NE(look(), unmarked);
    editor.expect({{u"x"_s, "an ant, |a man, an Ant: Not found"}});
    EXPECT_EQ(look(), unmarked) << "nothing is marked any more";
    EXPECT_EQ(editor.field(0)->shownState(), FindField::State::notFound);
    EXPECT_FALSE(editor.button(u"Find Next"_s)->isEnabled());
    editor.expect({{u"<BS>"_s, "an ant, a man, an ^Ant|: 2 of 2"},
                   {u"<CR>"_s, "an ^ant|, a man, an Ant: ↻ 1 of 2"},
                   {u"<CR>"_s, "an ant, a man, an ^Ant|: 2 of 2"},
                   {u"<S-CR>"_s, "an ^ant|, a man, an Ant: 1 of 2"},
                   {u"<S-CR>"_s, "an ant, a man, an ^Ant|: ↻ 2 of 2"},
                   {u"<A-c>"_s, "an ^ant|, a man, an Ant: ↻ 1 of 1"}});
    EXPECT_EQ(editor.field(0)->shownState(), FindField::State::normal);
    EXPECT_TRUE(editor.button(u"Find Next"_s)->isEnabled());
    EXPECT_EQ(editor.beeps, 0);
    EXPECT_TRUE(editor.button(u"Match Case"_s)->isChecked());
    editor.view->setSelection({0, 1});
    EXPECT_EQ(editor.note(), "1 hit");
    editor.storage.apply({{0, 0}, u"ant "_s});
    EXPECT_EQ(editor.note(), "2 hits");
}

TEST_F(FindBarTest, SaysWhatIsWrongWithAnExpression)
{
    Editor editor(shared, u"|a1 b22"_s);
    editor.perform(Actions::findAndReplace);
    editor.keys(u"<A-r>"_s);
    editor.scheduler.advance(1s);
    const int height = editor.bar->height();
    editor.keys(u"(\\d<CR>"_s);
    EXPECT_EQ(editor.field(0)->shownState(), FindField::State::wrong);
    EXPECT_THAT(editor.message(), HasSubstr("parenthesis"));
    EXPECT_GT(editor.bar->height(), height);
    EXPECT_EQ(editor.beeps, 1);
    editor.keys(u"+)"_s);
    EXPECT_EQ(editor.field(0)->shownState(), FindField::State::normal);
    EXPECT_EQ(editor.message(), "");
    EXPECT_EQ(editor.bar->height(), height);
    EXPECT_EQ(editor.marked(), "a^1| b22");

    editor.field(1)->setText(u"$2"_s);
    editor.button(u"Replace"_s)->click();
    EXPECT_EQ(editor.field(1)->shownState(), FindField::State::wrong);
    EXPECT_THAT(editor.message(), HasSubstr("group 2"));
    editor.field(1)->setText(u"<$1>"_s);
    EXPECT_EQ(editor.field(1)->shownState(), FindField::State::normal) << "what was typed since may be right";
    editor.button(u"Replace"_s)->click();
    EXPECT_EQ(editor.marked(), "a<1> b^22|");
    EXPECT_EQ(editor.message(), "");

    editor.storage.apply({{0, editor.storage.length()}, (QString(60, u'a') + u"b\n"_s).repeated(50)});
    editor.field(0)->setText(u"(a+)+$"_s);
    EXPECT_EQ(editor.note(), "Not found");
    EXPECT_THAT(editor.message(), HasSubstr("too hard")) << "so that nobody relies on it";
    EXPECT_TRUE(editor.button(u"Find Next"_s)->isEnabled());
}

TEST_F(FindBarTest, ClosesToTheTextAndWorksClosed)
{
    Editor editor(shared, u"|one two one"_s);
    editor.perform(Actions::findNext);
    EXPECT_EQ(editor.beeps, 1) << "nothing is sought yet";
    editor.perform(Actions::find);
    editor.keys(u"two<Esc>"_s);
    EXPECT_FALSE(editor.bar->isOpen());
    EXPECT_EQ(editor.window.focusWidget(), editor.view);
    EXPECT_EQ(editor.marked(), "one ^two| one");

    editor.view->setSelection({0, 3});
    editor.perform(Actions::useSelectionForFind);
    EXPECT_FALSE(editor.bar->isOpen());
    editor.perform(Actions::findNext);
    EXPECT_EQ(editor.marked(), "one two ^one|");
    editor.perform(Actions::findPrevious);
    EXPECT_EQ(editor.marked(), "^one| two one");
    shared.setQuery({.pattern = u"three"_s});
    editor.perform(Actions::findPrevious);
    EXPECT_EQ(editor.beeps, 2);
}

TEST_F(FindBarTest, TakesTheSelectionAndFollowsOtherWindows)
{
    Editor editor(shared, u"o^ne| two\none"_s);
    Editor other(shared, u"|one two"_s);
    other.perform(Actions::find);
    editor.activate();
    editor.perform(Actions::find);
    EXPECT_EQ(editor.pattern(), u"ne"_s);
    EXPECT_EQ(editor.note(), "1 of 2");
    EXPECT_EQ(other.pattern(), u"ne"_s);
    EXPECT_EQ(other.shown(), "|one two: 1 hit") << "nobody's selection moves by itself";

    editor.keys(u"<Esc>"_s);
    editor.view->setSelection({1, 10});
    editor.perform(Actions::find);
    EXPECT_EQ(editor.pattern(), u"ne"_s) << "not of several lines";
    editor.perform(Actions::useSelectionForFind);
    EXPECT_EQ(editor.pattern(), u"ne two\non"_s) << "but when asked to";
    editor.field(0)->setText(u"ne"_s);
    editor.keys(u"<A-r><CR>"_s);
    EXPECT_TRUE(other.button(u"Regular Expression"_s)->isChecked());
    editor.storage.apply({{0, 0}, u"a.b "_s});
    editor.view->setSelection({0, 3});
    editor.perform(Actions::useSelectionForFind);
    EXPECT_EQ(other.pattern(), u"a\\.b"_s) << "as an expression it stands for itself";
}

TEST_F(FindBarTest, RemembersWhatWasSought)
{
    Editor editor(shared, u"|"_s);
    editor.perform(Actions::findAndReplace);
    for (const QString &text : {u"one"_s, u"two"_s, u"one"_s, u"three"_s}) {
        editor.field(0)->setText(text);
        editor.keys(u"<CR>"_s);
    }
    editor.field(0)->setText(u"new"_s);
    // What is sought again is the latest.
    QStringList texts;
    for (const QString &key :
         {u"<Up>"_s, u"<Up>"_s, u"<Up>"_s, u"<Up>"_s, u"<Down>"_s, u"<Down>"_s, u"<Down>"_s, u"<Up><Up><CR>"_s, u"<Up>"_s}) {
        editor.keys(key);
        texts << editor.pattern();
    }
    EXPECT_EQ(texts.join(u' '), u"three one two two one three new one three"_s);
}

TEST_F(FindBarTest, ReplacesTheSelectedHitOnly)
{
    Editor editor(shared, u"|ab x ab y ab"_s);
    editor.perform(Actions::findAndReplace);
    editor.keys(u"ab"_s);
    editor.view->setSelection({3, 4});
    editor.keys(u"<Tab>"_s);
    ASSERT_EQ(editor.window.focusWidget(), editor.field(1));
    // What was selected is no hit.
    editor.expect(
        {{u"ab!<CR>"_s, "ab x ^ab| y ab: 2 of 3"}, {u"<CR>"_s, "ab x ab! y ^ab|: 3 of 3"}, {u"<CR>"_s, "^ab| x ab! y ab!: ↻ 1 of 3"}});
    editor.field(0)->setText(u"x"_s);
    editor.button(u"Replace"_s)->setFocus();
    editor.keys(u"<CR>"_s);
    EXPECT_FALSE(editor.button(u"Replace"_s)->isEnabled());
    EXPECT_EQ(editor.window.focusWidget(), editor.field(0)) << "not the button that closes the bar";

    editor.view->setAccess(TextView::Access::readOnly);
    EXPECT_FALSE(FindBar::textFinderActionState(editor.finder, {.tag = Actions::findAndReplace.tag}).isEnabled);
    editor.perform(Actions::findAndReplace);
    EXPECT_FALSE(editor.field(1)->isVisible());
    const QString before = editor.storage.string();
    editor.field(0)->setText(u"y"_s);
    editor.finder.replaceAll(u"x"_s);
    EXPECT_EQ(editor.storage.string(), before);
}

TEST_F(FindBarTest, ReplacesAllAsOneStep)
{
    const QString before = u"a cat and a Cat\n"_s.repeated(1200);
    const QString after = u"a dog! and a dog!\n"_s.repeated(1200);
    Editor editor(shared, before);
    editor.perform(Actions::findAndReplace);
    editor.field(0)->setText(u"cat"_s);
    editor.view->setSelection(TextSelection::at(editor.storage.text().lineStart(3) + 8));
    editor.field(1)->setText(u"dog!"_s);
    QTest::keyClick(editor.field(1), Qt::Key_A, Qt::AltModifier);
    EXPECT_EQ(editor.storage.string(), after);
    EXPECT_EQ(editor.note(), "2,400 replaced");
    EXPECT_EQ(editor.storage.text().lineAt(editor.view->selection().caret), 3) << "the caret keeps its place";
    EXPECT_TRUE(editor.view->selection().isEmpty());
    editor.view->undo();
    EXPECT_EQ(editor.storage.string(), before);
    EXPECT_FALSE(editor.undo.canUndo());
}

TEST_F(FindBarTest, KeepsCaseOnRequestAndWritesNumbersAsTheInterfaceDoes)
{
    Editor editor(shared, QString(u"a Cat and a CAT\n"_s.repeated(617)));
    editor.perform(Actions::findAndReplace);
    for (const QString &keys : {u"cat<Tab>"_s, u"dog<A-k>"_s}) {
        editor.keys(keys);
    }
    EXPECT_TRUE(editor.button(u"Keep Case"_s)->isChecked());
    editor.keys(u"<CR>"_s);
    EXPECT_EQ(editor.storage.text().toString({0, 15}), u"a Dog and a CAT"_s);
    EXPECT_EQ(editor.note(), "1 of 1,233");
    Localization::use(AppLanguage::german);
    editor.bar->retranslate();
    EXPECT_EQ(editor.note(), "1 von 1.233");
    Localization::use(AppLanguage::english);
    Editor other(shared, u"|"_s);
    other.perform(Actions::findAndReplace);
    EXPECT_TRUE(other.button(u"Keep Case"_s)->isChecked()) << "as in all windows";
}

TEST_F(FindBarTest, FindsInTheSelectionThatTheUserMade)
{
    Editor editor(shared, u"ab ab\n^ab ab ab\n|ab"_s);
    QToolButton *toggle = editor.button(u"In Selection"_s);
    editor.perform(Actions::findAndReplace);
    const QImage plain = editor.view->viewport()->grab().toImage();
    editor.keys(u"ab"_s);
    EXPECT_EQ(editor.note(), "3 of 6") << "a hit that is gone to is not what the user selected";
    editor.keys(u"<A-l>"_s);
    ASSERT_TRUE(toggle->isChecked());
    editor.expect({{u""_s, "ab ab\n^ab| ab ab\nab: 1 of 3"}, {u"<S-CR>"_s, "ab ab\nab ab ^ab|\nab: ↻ 3 of 3"}});
    EXPECT_NE(editor.view->viewport()->grab().toImage(), plain) << "one sees where";
    editor.storage.apply({{0, 0}, u"ab "_s});
    EXPECT_EQ(editor.note(), "↻ 3 of 3") << "it moves with its text";
    editor.storage.apply({{editor.storage.length() - 2, 0}, u"ab "});
    EXPECT_EQ(editor.note(), "↻ 3 of 4") << "what comes at its end is in it";
    editor.field(1)->setText(u"x"_s);
    editor.button(u"Replace All"_s)->click();
    EXPECT_EQ(editor.storage.string(), u"ab ab ab\nx x x\nx ab"_s);
    editor.keys(u"<Esc>"_s);
    editor.view->setSelection({0, 2});
    editor.perform(Actions::find);
    EXPECT_EQ(editor.note(), "1 of 4") << "closing the bar ends it";
    EXPECT_FALSE(toggle->isEnabled()) << "what is sought is no place to seek in";
}

TEST_F(FindBarTest, SeeksAndReplacesSeveralLines)
{
    Editor editor(shared, u"|one\ntwo\none\ntwo"_s);
    editor.perform(Actions::findAndReplace);
    editor.scheduler.advance(1s);
    const int height = editor.bar->height();
    QShortcut textsOwn(Qt::CTRL | Qt::Key_Return, &editor.window);
    editor.keys(u"one<C-CR>tw"_s);
    // First the panel learns of its field, then the bar of its panel.
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    EXPECT_EQ(editor.note(), "1 of 2");
    EXPECT_GT(editor.field(0)->height(), editor.field(1)->height());
    EXPECT_GT(editor.bar->height(), height);
    editor.field(1)->setText(u"a\u00a0b\nc"_s);
    editor.button(u"Replace All"_s)->click();
    EXPECT_EQ(editor.storage.string(), u"a\u00a0b\nco\na\u00a0b\nco"_s);
    // Up goes through the lines first, and from there to what was sought before.
    editor.field(0)->setText(u"b"_s);
    editor.keys(u"<CR>"_s);
    QStringList texts;
    for (const QString &key : {u"<Up>"_s, u"<Down>"_s, u"<Down>"_s}) {
        editor.keys(key);
        texts << editor.pattern();
    }
    EXPECT_EQ(texts.join(u'|'), u"one\ntw|one\ntw|b"_s);
}

TEST_F(FindBarTest, TheMenusCommandsReachTheField)
{
    Editor editor(shared, u"^text|"_s);
    editor.perform(Actions::findAndReplace);
    FindField *field = editor.field(1);
    EXPECT_FALSE(field->state(Actions::copy).isEnabled) << "nothing is selected there";
    EXPECT_FALSE(field->state(Actions::undo).isEnabled);
    field->insertPlainText(u"a\nb"_s);
    for (const auto &[action, text] :
         {std::pair(&Actions::selectAll, u"a\nb"_s), std::pair(&Actions::cut, u""_s), std::pair(&Actions::paste, u"a\nb"_s),
          std::pair(&Actions::undo, u""_s), std::pair(&Actions::redo, u"a\nb"_s)}) {
        EXPECT_TRUE(field->state(*action).isEnabled) << action->name().toStdString();
        field->perform(*action);
        EXPECT_EQ(field->text(), text) << action->name().toStdString();
    }
    EXPECT_EQ(editor.storage.string(), u"text"_s);
}

TEST_F(FindBarTest, ShowsWhatTheHitWillBecome)
{
    Editor editor(shared, u"|a1 b2"_s);
    editor.perform(Actions::findAndReplace);
    editor.keys(u"<A-r>"_s);
    const auto preview = [&editor] { return editor.field(1)->accessibleDescription().toStdString(); };
    const auto *box = [&editor]() -> const QWidget * {
        editor.field(0)->setText(u"(\\w)(\\d)"_s);
        editor.field(1)->setText(u"$2$1"_s);
        return editor.view->viewport()->findChild<QWidget *>();
    }();
    ASSERT_TRUE(box && box->isVisible());
    EXPECT_EQ(preview(), "The hit becomes “1a”.");
    const QPoint place = box->pos();
    editor.keys(u"<CR>"_s);
    EXPECT_EQ(preview(), "The hit becomes “2b”.");
    EXPECT_GT(box->x(), place.x()) << "at its hit";
    editor.field(1)->setText(u"$3"_s);
    EXPECT_FALSE(box->isVisible());
    editor.field(1)->setText(u"\\2"_s);
    EXPECT_EQ(preview(), "The hit becomes “2”.");
    editor.keys(u"<Esc>"_s);
    EXPECT_FALSE(box->isVisible());
}

TEST_F(FindBarTest, GoesOnFromAHitInsideACharacter)
{
    Editor editor(shared, u"|e\u0301 e\u0301 \r\n \r\n"_s);
    editor.perform(Actions::find);
    editor.keys(u"e"_s);
    EXPECT_EQ(editor.note(), "1 of 2");
    editor.keys(u"<CR>"_s);
    EXPECT_EQ(editor.view->selection().range(), (TextRange{3, 2}));
    editor.field(0)->setText(u"\\n"_s);
    editor.keys(u"<A-r><CR>"_s);
    EXPECT_EQ(editor.note(), "2 of 2");
    editor.keys(u"<CR>"_s);
    EXPECT_EQ(editor.note(), "↻ 1 of 2");
}

/// Some 2 million units; "rare" stands far from both ends, "often" in every line.
class FindBarInALargeText : public FindBarTest {
protected:
    static QString text()
    {
        const QString line = u"often there is nothing to be found in here\n"_s;
        return u"|"_s + line.repeated(25'000) + u"rare\n"_s + line.repeated(25'000);
    }
    Editor editor{shared, text()};
};

TEST_F(FindBarInALargeText, SearchesInTheBackground)
{
    const qsizetype place = editor.storage.length() / 2;
    editor.perform(Actions::find);
    editor.keys(u"often"_s);
    EXPECT_EQ(editor.view->selection().range(), (TextRange{0, 5})) << "what is near is found at once";
    EXPECT_EQ(editor.note(), "");
    editor.view->setSelection(TextSelection::at(editor.storage.length()));
    const QImage image = editor.view->viewport()->grab().toImage();
    editor.finder.setMarking(TextFinder::Marking::hidden);
    EXPECT_NE(image, editor.view->viewport()->grab().toImage()) << "hits in view are marked before all are counted";
    editor.finder.setMarking(TextFinder::Marking::shown);

    editor.scheduler.advance(100ms);
    ASSERT_EQ(editor.workers.jobs.size(), 1U);
    editor.scheduler.advance(200ms);
    EXPECT_EQ(editor.note(), "Searching… 0 %");
    editor.storage.apply({{0, 0}, u"often "_s});
    editor.finishWork();
    EXPECT_EQ(editor.note(), "") << "counted in a text that is gone";
    editor.scheduler.advance(100ms);
    editor.finishWork();
    EXPECT_EQ(editor.note(), "50,001 hits");
    editor.keys(u"<S-CR>"_s);
    EXPECT_EQ(editor.note(), "50,001 of 50,001");
    EXPECT_TRUE(editor.workers.jobs.empty()) << "the index leads there";

    editor.field(0)->setText(u"rare"_s);
    editor.storage.apply({{0, 6}, u"XXXXXXXX"_s});
    editor.finishWork();
    EXPECT_LT(std::abs(editor.view->selection().range().location - place), 1000);
    EXPECT_EQ(editor.view->selectedText(), u"rare"_s);

    editor.view->setSelection({0, 8});
    editor.field(0)->setText(u"rarely"_s);
    editor.scheduler.advance(100ms);
    std::swap(editor.workers.jobs.front(), editor.workers.jobs.back());
    editor.finishWork();
    EXPECT_EQ(editor.note(), "Not found") << "counting found that there are none before seeking did";
    EXPECT_EQ(editor.view->selectedText(), u"XXXXXXXX"_s);

    // Who goes elsewhere is not taken from there when there is one.
    editor.field(0)->setText(u"rare"_s);
    editor.view->setSelection(TextSelection::at(3));
    editor.finishWork();
    EXPECT_EQ(editor.view->selection(), TextSelection::at(3));

    editor.field(0)->setText(u"nowhere"_s);
    EXPECT_FALSE(editor.workers.jobs.empty());
    editor.keys(u"<Esc>"_s);
    EXPECT_TRUE(editor.bar->isOpen()) << "gives the search up first";
    editor.finishWork();
    editor.scheduler.advance(1s);
    EXPECT_EQ(editor.note(), "");
    EXPECT_TRUE(editor.workers.jobs.empty());
    editor.keys(u"<Esc>"_s);
    EXPECT_FALSE(editor.bar->isOpen());
}

TEST_F(FindBarInALargeText, MarksItsHitsOnTheScrollBar)
{
    auto *bar = new MarkedScrollBar(*editor.view);
    editor.view->setVerticalScrollBar(bar);
    TextFinder finder(*editor.view, {{editor.scheduler, editor.workers}, shared});
    finder.setMarking(TextFinder::Marking::shown);
    finder.setQuery({.pattern = u"rare"_s});
    EXPECT_TRUE(bar->rowsOf(ScrollMark::hit).empty()) << "they are being counted";
    editor.scheduler.advance(100ms);
    editor.finishWork();
    const auto rows = bar->rowsOf(ScrollMark::hit);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_NEAR(rows.front(), bar->height() / 2, 3);
    editor.storage.apply({{0, 0}, u"x"_s});
    EXPECT_EQ(bar->rowsOf(ScrollMark::hit), rows) << "until they are counted again";
    QTest::mouseClick(bar, Qt::LeftButton, {}, {3, rows.front()});
    editor.finishWork();
    EXPECT_EQ(editor.view->selectedText(), u"rare"_s);
    finder.setMarking(TextFinder::Marking::hidden);
    EXPECT_TRUE(bar->rowsOf(ScrollMark::hit).empty());
}

TEST_F(FindBarInALargeText, ReplacesAllInItAsItIsThen)
{
    editor.perform(Actions::findAndReplace);
    editor.keys(u"often"_s);
    editor.field(1)->setText(u"always"_s);
    editor.button(u"Replace All"_s)->click();
    editor.storage.apply({{0, 0}, u"not "_s});
    const QString before = editor.storage.string();
    editor.finishWork();
    EXPECT_EQ(editor.storage.string(), before) << "the text is another now";
    editor.finishWork();
    EXPECT_EQ(editor.storage.string(), QString(before).replace(u"often"_s, u"always"_s));
    EXPECT_EQ(editor.note(), "50,000 replaced");
    editor.view->undo();
    EXPECT_EQ(editor.storage.string(), before);

    editor.finishWork();
    editor.button(u"Replace All"_s)->click();
    editor.keys(u"<Esc>"_s);
    editor.finishWork();
    editor.scheduler.advance(1s);
    editor.finishWork();
    EXPECT_EQ(editor.storage.string(), before) << "given up";
}

TEST_F(FindBarInALargeText, ReplacesAllInASelectionWhereverItIsThen)
{
    const QString before = editor.storage.string();
    const QString selected = before.first(100 * (before.indexOf(u'\n') + 1));
    editor.view->setSelection({0, selected.size()});
    editor.perform(Actions::findAndReplace);
    editor.keys(u"often<A-l>"_s);
    editor.field(1)->setText(u"always"_s);
    editor.button(u"Replace All"_s)->click();
    const QString pushing(selected.size(), u'x');
    editor.storage.apply({{0, 0}, pushing});
    editor.finishWork();
    editor.finishWork();
    EXPECT_EQ(editor.storage.string(), pushing + QString(selected).replace(u"often"_s, u"always"_s) + before.sliced(selected.size()));
}

TEST_F(FindBarTest, ShowsAllOfItsControlsInNarrowWindows)
{
    Editor editor(shared, u"|a"_s);
    editor.perform(Actions::findAndReplace);
    for (const int width : {400, 190, 600}) {
        editor.window.resize(width, 300);
        editor.scheduler.advance(1s);
        QCoreApplication::processEvents();
        QRegion taken;
        int count = 0;
        for (const QWidget *widget : editor.bar->findChildren<QWidget *>()) {
            if (!widget->isVisible() || !(widget->focusPolicy() & Qt::TabFocus)) {
                continue;
            }
            const QRect place(widget->mapTo(editor.bar, QPoint()), widget->size());
            EXPECT_TRUE(editor.bar->rect().contains(place) && !taken.intersects(place)) << count << " in " << width << " pixels";
            taken += place;
            ++count;
        }
        EXPECT_EQ(count, 13);
    }
}

} // namespace
