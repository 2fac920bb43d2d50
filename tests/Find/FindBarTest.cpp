// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/FindBar.h"

#include "Commands/Actions.h"
#include "Find/FindField.h"
#include "Find/FindState.h"
#include "Find/TextFinder.h"
#include "View/ViewFixture.h"

#include <QLabel>
#include <QProxyStyle>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>
#include <gmock/gmock.h>

#include <deque>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::ElementsAre;

namespace {

/// Does nothing until it is told to.
class HeldWorkers final : public Workers {
public:
    void run(std::function<void()> job) override { m_jobs.push_back(std::move(job)); }
    void release()
    {
        while (!m_jobs.empty()) {
            const auto job = std::move(m_jobs.front());
            m_jobs.pop_front();
            job();
        }
        QCoreApplication::processEvents();
    }
    void releaseLast()
    {
        const auto job = std::move(m_jobs.back());
        m_jobs.pop_back();
        job();
        QCoreApplication::processEvents();
    }
    [[nodiscard]] size_t count() const { return m_jobs.size(); }

private:
    std::deque<std::function<void()>> m_jobs;
};

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
    TextFinder finder{*view, {scheduler, workers, shared, [this] { ++beeps; }}};
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
        layout->setSpacing(0);
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
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) { QTest::keyClick(window.focusWidget(), key, modifiers); }
    void type(const QString &text) { QTest::keyClicks(window.focusWidget(), text); }
    [[nodiscard]] FindField *field(int row) const { return bar->findChildren<FindField *>()[row]; }
    [[nodiscard]] QString note() const { return field(0)->note(); }
    [[nodiscard]] QToolButton *button(const QString &name) const
    {
        for (QToolButton *button : bar->findChildren<QToolButton *>()) {
            if (button->accessibleName() == name || button->text() == name) {
                return button;
            }
        }
        qFatal("no such button: %s", qPrintable(name));
    }
    [[nodiscard]] QString message() const
    {
        for (const QLabel *label : bar->findChildren<QLabel *>()) {
            if (label->wordWrap() && label->isVisible()) {
                return label->text();
            }
        }
        return {};
    }
    [[nodiscard]] std::string marked() const { return MarkedText::marked(storage.string(), view->selection()).toStdString(); }
};

TEST(FindBar, FindsWhileTypingAndGoesRoundFromHitToHit)
{
    FindState shared;
    Editor editor(shared, u"an ant, |a man, an Ant"_s);
    editor.perform(Actions::find);
    ASSERT_EQ(editor.window.focusWidget(), editor.field(0));
    editor.type(u"an"_s);
    EXPECT_EQ(editor.marked(), "an ant, a m^an|, an Ant") << "from the caret on";
    EXPECT_EQ(editor.note(), u"3 of 5"_s);
    editor.type(u"t"_s);
    EXPECT_EQ(editor.marked(), "an ant, a man, an ^Ant|");
    EXPECT_EQ(editor.note(), u"2 of 2"_s);
    editor.type(u"x"_s);
    EXPECT_EQ(editor.marked(), "an ant, |a man, an Ant") << "back where it was";
    EXPECT_EQ(editor.note(), u"Not found"_s);
    EXPECT_EQ(editor.field(0)->state(), FindField::State::notFound);
    EXPECT_FALSE(editor.button(u"Find Next"_s)->isEnabled()) << "there is nowhere to go";
    editor.key(Qt::Key_Backspace);
    EXPECT_EQ(editor.note(), u"2 of 2"_s);
    EXPECT_EQ(editor.field(0)->state(), FindField::State::normal);
    EXPECT_TRUE(editor.button(u"Find Next"_s)->isEnabled());
    EXPECT_EQ(editor.beeps, 0);

    editor.key(Qt::Key_Return);
    EXPECT_EQ(editor.marked(), "an ^ant|, a man, an Ant");
    EXPECT_EQ(editor.note(), u"↻ 1 of 2"_s);
    editor.key(Qt::Key_Return);
    EXPECT_EQ(editor.note(), u"2 of 2"_s);
    editor.key(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(editor.note(), u"1 of 2"_s);
    editor.key(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(editor.note(), u"↻ 2 of 2"_s);

    editor.key(Qt::Key_C, Qt::AltModifier);
    EXPECT_TRUE(editor.button(u"Match Case"_s)->isChecked());
    EXPECT_EQ(editor.field(0)->text(), u"ant"_s);
    EXPECT_EQ(editor.note(), u"↻ 1 of 1"_s) << "the other is no hit any more";
    editor.view->setSelection({0, 1});
    EXPECT_EQ(editor.note(), u"1 hit"_s);
    editor.storage.apply({{0, 0}, u"ant "_s});
    EXPECT_EQ(editor.note(), u"2 hits"_s);
}

TEST(FindBar, ReplacingTheLastHitLeadsBackToTheField)
{
    FindState shared;
    Editor editor(shared, u"|one two"_s);
    editor.perform(Actions::findAndReplace);
    editor.type(u"two"_s);
    editor.button(u"Replace"_s)->setFocus();
    editor.key(Qt::Key_Return);
    EXPECT_EQ(editor.storage.string(), u"one "_s);
    EXPECT_FALSE(editor.button(u"Replace"_s)->isEnabled());
    EXPECT_EQ(editor.window.focusWidget(), editor.field(0)) << "not the button that closes the bar";
}

TEST(FindBar, SaysWhatIsWrongWithAnExpression)
{
    FindState shared;
    Editor editor(shared, u"|a1 b22"_s);
    editor.perform(Actions::findAndReplace);
    editor.key(Qt::Key_R, Qt::AltModifier);
    editor.scheduler.advance(1s);
    const int height = editor.bar->height();
    editor.type(u"(\\d"_s);
    EXPECT_EQ(editor.field(0)->state(), FindField::State::wrong);
    EXPECT_THAT(editor.message().toStdString(), testing::HasSubstr("parenthesis"));
    EXPECT_GT(editor.bar->height(), height);
    editor.key(Qt::Key_Return);
    EXPECT_EQ(editor.beeps, 1);
    editor.type(u"+)"_s);
    EXPECT_EQ(editor.field(0)->state(), FindField::State::normal);
    EXPECT_EQ(editor.message(), QString());
    EXPECT_EQ(editor.bar->height(), height);
    EXPECT_EQ(editor.marked(), "a^1| b22");

    editor.field(1)->setText(u"$2"_s);
    editor.button(u"Replace"_s)->click();
    EXPECT_EQ(editor.field(1)->state(), FindField::State::wrong);
    EXPECT_THAT(editor.message().toStdString(), testing::HasSubstr("group 2"));
    editor.field(1)->setText(u"<$1>"_s);
    EXPECT_EQ(editor.field(1)->state(), FindField::State::normal) << "what was typed since may be right";
    EXPECT_EQ(editor.message(), QString());
    editor.button(u"Replace"_s)->click();
    EXPECT_EQ(editor.marked(), "a<1> b^22|");
    EXPECT_EQ(editor.message(), QString());

    const QString hard = (QString(60, u'a') + u"b\n"_s).repeated(50);
    editor.storage.apply({{0, editor.storage.length()}, hard});
    editor.field(0)->setText(u"(a+)+$"_s);
    EXPECT_EQ(editor.note(), u"Not found"_s);
    EXPECT_THAT(editor.message().toStdString(), testing::HasSubstr("too hard")) << "so that nobody relies on it";
    EXPECT_TRUE(editor.button(u"Find Next"_s)->isEnabled());
    editor.field(0)->setText(u"c"_s);
    EXPECT_EQ(editor.message(), QString());
}

TEST(FindBar, ClosesToTheTextAndWorksClosed)
{
    FindState shared;
    Editor editor(shared, u"|one two one"_s);
    editor.perform(Actions::findNext);
    EXPECT_EQ(editor.beeps, 1) << "nothing is sought yet";
    editor.perform(Actions::find);
    editor.type(u"two"_s);
    editor.key(Qt::Key_Escape);
    EXPECT_FALSE(editor.bar->isOpen());
    EXPECT_EQ(editor.window.focusWidget(), editor.view);
    EXPECT_EQ(editor.marked(), "one ^two| one");
    editor.scheduler.advance(1s);
    EXPECT_FALSE(editor.bar->isVisible());

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
    EXPECT_EQ(editor.marked(), "^one| two one");
}

TEST(FindBar, TakesTheSelectionAndFollowsOtherWindows)
{
    FindState shared;
    Editor editor(shared, u"o^ne| two\none"_s);
    Editor other(shared, u"|one two"_s);
    other.perform(Actions::find);
    editor.activate();
    editor.perform(Actions::find);
    EXPECT_EQ(editor.field(0)->text(), u"ne"_s);
    EXPECT_EQ(editor.note(), u"1 of 2"_s);
    EXPECT_EQ(other.field(0)->text(), u"ne"_s);
    EXPECT_EQ(other.note(), u"1 hit"_s);
    EXPECT_EQ(other.marked(), "|one two") << "nobody's selection moves by itself";

    editor.key(Qt::Key_Escape);
    editor.view->setSelection({1, 10});
    editor.perform(Actions::find);
    EXPECT_EQ(editor.field(0)->text(), u"ne"_s) << "not of several lines";
    EXPECT_FALSE(editor.bar->textFinderActionState({.tag = 7}).isEnabled);
    editor.key(Qt::Key_R, Qt::AltModifier);
    editor.key(Qt::Key_Return);
    EXPECT_TRUE(other.button(u"Regular Expression"_s)->isChecked());
    editor.storage.apply({{0, 0}, u"a.b "_s});
    editor.view->setSelection({0, 3});
    editor.perform(Actions::useSelectionForFind);
    EXPECT_EQ(other.field(0)->text(), u"a\\.b"_s) << "as an expression it stands for itself";

    editor.button(u"Match Case"_s)->setFocus();
    editor.key(Qt::Key_Space);
    editor.view->setFocus();
    editor.view->setSelection({0, 0});
    editor.perform(Actions::find);
    EXPECT_TRUE(editor.button(u"Match Case"_s)->isChecked()) << "as the bar was left";
}

TEST(FindBar, RemembersWhatWasSought)
{
    FindState shared;
    Editor editor(shared, u"|"_s);
    editor.perform(Actions::findAndReplace);
    for (const QString &text : {u"one"_s, u"two"_s, u"one"_s, u"three"_s}) {
        editor.field(0)->setText(text);
        editor.key(Qt::Key_Return);
    }
    editor.field(0)->setText(u"new"_s);
    QStringList seen;
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Up, Qt::Key_Up, Qt::Key_Up, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down}) {
        editor.key(key);
        seen << editor.field(0)->text();
    }
    EXPECT_EQ(seen, (QStringList{u"three"_s, u"one"_s, u"two"_s, u"two"_s, u"one"_s, u"three"_s, u"new"_s}));
    seen.clear();
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Up, Qt::Key_Return, Qt::Key_Up, Qt::Key_Down}) {
        editor.key(key);
        seen << editor.field(0)->text();
    }
    EXPECT_EQ(seen, (QStringList{u"three"_s, u"one"_s, u"one"_s, u"three"_s, u"one"_s})) << "what is sought again is the latest";
}

TEST(FindBar, ReplacesTheSelectedHitOnly)
{
    FindState shared;
    Editor editor(shared, u"|ab x ab y ab"_s);
    editor.perform(Actions::findAndReplace);
    editor.type(u"ab"_s);
    editor.view->setSelection({3, 4});
    editor.key(Qt::Key_Tab);
    ASSERT_EQ(editor.window.focusWidget(), editor.field(1));
    editor.type(u"ab!"_s);
    editor.key(Qt::Key_Return);
    EXPECT_EQ(editor.marked(), "ab x ^ab| y ab") << "what was selected is no hit";
    editor.key(Qt::Key_Return);
    EXPECT_EQ(editor.marked(), "ab x ab! y ^ab|");
    EXPECT_EQ(editor.note(), u"3 of 3"_s);
    editor.key(Qt::Key_Return);
    EXPECT_EQ(editor.marked(), "^ab| x ab! y ab!");
    EXPECT_EQ(editor.note(), u"↻ 1 of 3"_s);
    editor.view->undo();
    EXPECT_EQ(editor.storage.string(), u"ab x ab! y ab"_s);

    editor.view->setAccess(TextView::Access::readOnly);
    EXPECT_FALSE(editor.bar->textFinderActionState({.tag = 12}).isEnabled);
    editor.perform(Actions::findAndReplace);
    EXPECT_FALSE(editor.field(1)->isVisible());
    editor.finder.replaceAll(u"x"_s);
    EXPECT_EQ(editor.storage.string(), u"ab x ab! y ab"_s);
}

TEST(FindBar, ReplacesAllAsOneStep)
{
    for (const int lines : {5, 1200}) {
        FindState shared;
        const QString before = QString(u"a cat and a Cat\n"_s).repeated(lines);
        const QString after = QString(u"a dog! and a dog!\n"_s).repeated(lines);
        Editor editor(shared, before);
        editor.view->setSelection(TextSelection::at(editor.storage.text().lineStart(3) + 8));
        editor.perform(Actions::findAndReplace);
        editor.field(0)->setText(u"cat"_s);
        editor.view->setSelection(TextSelection::at(editor.storage.text().lineStart(3) + 8));
        editor.field(1)->setText(u"dog!"_s);
        editor.button(u"Replace All"_s)->click();
        EXPECT_EQ(editor.storage.string(), after);
        EXPECT_EQ(editor.note(), lines == 5 ? u"10 replaced"_s : u"2,400 replaced"_s);
        EXPECT_EQ(editor.storage.text().lineAt(editor.view->selection().caret), 3) << "the caret keeps its place";
        EXPECT_TRUE(editor.view->selection().isEmpty());
        editor.view->undo();
        EXPECT_EQ(editor.storage.string(), before);
        EXPECT_FALSE(editor.undo.canUndo());
        editor.view->redo();
        EXPECT_EQ(editor.storage.string(), after);
        editor.button(u"Replace All"_s)->click();
        EXPECT_EQ(editor.storage.string(), after);
        EXPECT_EQ(editor.note(), u"Not found"_s);
    }
}

TEST(FindBar, GoesOnFromAHitInsideACharacter)
{
    FindState shared;
    Editor editor(shared, u"|e\u0301 e\u0301 \r\n \r\n"_s);
    editor.perform(Actions::find);
    editor.type(u"e"_s);
    EXPECT_EQ(editor.note(), u"1 of 2"_s);
    editor.key(Qt::Key_Return);
    EXPECT_EQ(editor.view->selection().range(), (TextRange{3, 2}));
    EXPECT_EQ(editor.note(), u"2 of 2"_s);
    editor.key(Qt::Key_R, Qt::AltModifier);
    editor.field(0)->setText(u"\\n"_s);
    editor.key(Qt::Key_Return);
    EXPECT_EQ(editor.note(), u"2 of 2"_s);
    editor.key(Qt::Key_Return);
    EXPECT_EQ(editor.note(), u"↻ 1 of 2"_s);
}

/// Some 2 million units; "rare" stands far from both ends, "often" in every line.
QString largeText()
{
    const QString line = u"often there is nothing to be found in here\n"_s;
    return line.repeated(25'000) + u"rare\n"_s + line.repeated(25'000);
}

TEST(FindBar, SearchesALargeTextInTheBackground)
{
    FindState shared;
    Editor editor(shared, u"|"_s + largeText());
    const qsizetype place = editor.storage.length() / 2;
    editor.perform(Actions::find);
    editor.type(u"often"_s);
    EXPECT_EQ(editor.view->selection().range(), (TextRange{0, 5})) << "what is near is found at once";
    EXPECT_EQ(editor.note(), QString());
    editor.view->setSelection(TextSelection::at(editor.storage.length()));
    const QImage image = editor.view->viewport()->grab().toImage();
    editor.finder.setMarking(TextFinder::Marking::hidden);
    EXPECT_NE(image, editor.view->viewport()->grab().toImage()) << "hits in view are marked before all are counted";
    editor.finder.setMarking(TextFinder::Marking::shown);

    editor.scheduler.advance(100ms);
    ASSERT_EQ(editor.workers.count(), 1U);
    editor.scheduler.advance(200ms);
    EXPECT_EQ(editor.note(), u"Searching… 0 %"_s);
    editor.storage.apply({{0, 0}, u"often "_s});
    editor.workers.release();
    EXPECT_EQ(editor.note(), QString()) << "counted in a text that is gone";
    editor.scheduler.advance(100ms);
    editor.workers.release();
    EXPECT_EQ(editor.note(), u"50,001 hits"_s);
    editor.key(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(editor.note(), u"50,001 of 50,001"_s);
    EXPECT_EQ(editor.workers.count(), 0U) << "the index leads there";

    editor.field(0)->setText(u"rare"_s);
    ASSERT_EQ(editor.workers.count(), 1U);
    editor.storage.apply({{0, 6}, u"XXXXXXXX"_s});
    editor.workers.release();
    EXPECT_LT(std::abs(editor.view->selection().range().location - place), 1000);
    EXPECT_EQ(editor.view->selectedText(), u"rare"_s);

    editor.field(0)->setText(u"often"_s);
    ASSERT_EQ(editor.workers.count(), 0U);
    editor.view->setSelection({0, 8});
    editor.field(0)->setText(u"rarely"_s);
    ASSERT_EQ(editor.workers.count(), 1U);
    editor.scheduler.advance(100ms);
    editor.workers.releaseLast();
    EXPECT_EQ(editor.note(), u"Not found"_s) << "counting found that there are none before seeking did";
    EXPECT_EQ(editor.view->selectedText(), u"XXXXXXXX"_s);
    editor.workers.release();
    EXPECT_EQ(editor.view->selectedText(), u"XXXXXXXX"_s);

    editor.field(0)->setText(u"nowhere"_s);
    EXPECT_TRUE(editor.workers.count() > 0);
    editor.key(Qt::Key_Escape);
    EXPECT_TRUE(editor.bar->isOpen()) << "gives the search up first";
    editor.workers.release();
    editor.scheduler.advance(1s);
    EXPECT_EQ(editor.note(), QString());
    EXPECT_EQ(editor.workers.count(), 0U);
    editor.key(Qt::Key_Escape);
    EXPECT_FALSE(editor.bar->isOpen());
}

TEST(FindBar, ReplacesAllInALargeTextAsItIsThen)
{
    FindState shared;
    Editor editor(shared, u"|"_s + largeText());
    editor.perform(Actions::findAndReplace);
    editor.type(u"often"_s);
    editor.field(1)->setText(u"always"_s);
    editor.button(u"Replace All"_s)->click();
    editor.storage.apply({{0, 0}, u"not "_s});
    const QString before = editor.storage.string();
    editor.workers.release();
    EXPECT_EQ(editor.storage.string(), before) << "the text is another now";
    editor.workers.release();
    EXPECT_EQ(editor.storage.string(), QString(before).replace(u"often"_s, u"always"_s));
    EXPECT_EQ(editor.note(), u"50,000 replaced"_s);
    editor.view->undo();
    EXPECT_EQ(editor.storage.string(), before);

    editor.workers.release();
    editor.button(u"Replace All"_s)->click();
    editor.key(Qt::Key_Escape);
    editor.workers.release();
    editor.scheduler.advance(1s);
    editor.workers.release();
    EXPECT_EQ(editor.storage.string(), before) << "given up";
}

TEST(FindBar, SlidesUnlessTheStyleIsAgainstIt)
{
    class Still : public QProxyStyle {
    public:
        int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *data) const override
        {
            return hint == SH_Widget_Animation_Duration ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
        }
    };
    FindState shared;
    Editor editor(shared, u"|"_s);
    editor.perform(Actions::find);
    EXPECT_EQ(editor.bar->height(), 0);
    editor.scheduler.advance(60ms);
    const int halfway = editor.bar->height();
    EXPECT_GT(halfway, 0);
    editor.scheduler.advance(100ms);
    const int full = editor.bar->height();
    EXPECT_GT(full, halfway);
    editor.bar->close();
    editor.scheduler.advance(200ms);
    EXPECT_FALSE(editor.bar->isVisible());

    Still still;
    editor.bar->setStyle(&still);
    editor.perform(Actions::findAndReplace);
    EXPECT_GT(editor.bar->height(), full);
    editor.bar->close();
    EXPECT_FALSE(editor.bar->isVisible());
}

TEST(FindBar, IsReachedByTabAndNamedWherever)
{
    FindState shared;
    Editor editor(shared, u"|a"_s);
    editor.perform(Actions::findAndReplace);
    editor.type(u"a"_s);
    for (const int width : {400, 190, 600}) {
        editor.window.resize(width, 300);
        editor.field(0)->setFocus();
        editor.scheduler.advance(1s);
        QCoreApplication::processEvents();
        QStringList names;
        QStringList unseen;
        QRegion taken;
        for (int i = 0; i < 10; ++i) {
            QWidget *widget = editor.window.focusWidget();
            const auto *button = qobject_cast<QToolButton *>(widget);
            names << (widget->accessibleName().isEmpty() && button ? button->text() : widget->accessibleName());
            const QRect place(widget->mapTo(editor.bar, QPoint()), widget->size());
            if (!editor.bar->rect().contains(place) || taken.intersects(place)) {
                unseen << names.last();
            }
            taken += place;
            editor.key(Qt::Key_Tab);
        }
        EXPECT_EQ(names, (QStringList{u"Find"_s, u"Replace with"_s, u"Find Previous"_s, u"Find Next"_s, u"Match Case"_s, u"Whole Words"_s,
                                      u"Regular Expression"_s, u"Replace"_s, u"Replace All"_s, u"Done"_s}));
        EXPECT_EQ(unseen, QStringList()) << "in a window of " << width << " pixels";
    }
}

} // namespace
