// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Editing and selecting with several carets.

#include "Commands/Actions.h"
#include "SeveralMarks.h"

#include <QInputMethodEvent>
#include <QTest>
#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;

namespace {

/// What keys do to one selection in a view of its own.
struct Alone {
    std::vector<TextEdit> edits;
    TextSelection after;

    Alone(ViewFixture &copy, const QString &text, TextSelection before, const QString &keys)
    {
        copy.setText(text);
        copy.view.setSelection(before);
        const auto connection = QObject::connect(&copy.storage, &TextStorage::changed, [this](const TextChange &change) {
            edits.assign(change.edits.begin(), change.edits.end());
        });
        copy.keys(keys);
        QObject::disconnect(connection);
        after = copy.view.selection();
    }
};

/// The same in one text: what anybody removes is gone, what anybody inserts stands where it was inserted, and every caret is behind what
/// it inserted.
QString mergedByHand(const QString &text, const std::vector<Alone> &all)
{
    std::vector<bool> isGone(size_t(text.size()) + 1, false);
    std::vector<CaretSelection> after;
    for (const Alone &one : all) {
        for (const TextEdit &edit : one.edits) {
            std::fill_n(isGone.begin() + edit.range.location, edit.range.length, true);
        }
    }
    QString result;
    size_t next = 0;
    for (qsizetype at = 0; at <= text.size(); ++at) {
        for (; next < all.size() && (all[next].edits.empty() ? all[next].after.caret : all[next].edits[0].range.location) == at; ++next) {
            if (!all[next].edits.empty()) {
                result += all[next].edits[0].text.toString();
            }
            after.push_back(CaretSelection::of(TextSelection::at(result.size())));
        }
        if (at < text.size() && !isGone[size_t(at)]) {
            result += text[at];
        }
    }
    return marked(result, Selections::merged(std::move(after), 0));
}

class SeveralCarets : public testing::Test, public ViewFixture {
protected:
    [[nodiscard]] QString shown() const { return ::marked(view); }
    void set(const QString &text) { setMarked(view, text); }
    QPoint at(int row, int column)
    {
        return (QPointF(view.textViewport().left() + (column + 0.2) * view.layoutManager().cellWidth(),
                        *view.textViewport().topOf(view.layoutManager().rowOf(0)) + (row + 0.5) * view.layoutManager().rowHeight()))
            .toPoint();
    }
    void click(QPoint point, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(view.viewport(), button, modifiers, point);
    }
    void drag(QPoint from, QPoint to, Qt::MouseButton button, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mousePress(view.viewport(), button, modifiers, from);
        QMouseEvent move(QEvent::MouseMove, to, view.viewport()->mapToGlobal(to), Qt::NoButton, button, modifiers);
        QApplication::sendEvent(view.viewport(), &move);
        QTest::mouseRelease(view.viewport(), button, modifiers, to);
    }
};

TEST_F(SeveralCarets, DoWhatEachDoesAlone)
{
    std::mt19937 random(20260723);
    const auto upTo = [&](qsizetype most) { return std::uniform_int_distribution<qsizetype>(0, most)(random); };
    const QString letters = u"ab c\nd, e"_s;
    const QStringList edits{u"x"_s, u"<CR>"_s, u"<BS>"_s, u"<Del>"_s, u"<C-BS>"_s, u"<C-Del>"_s, u"<C-S-BS>"_s, u"<C-S-Del>"_s};
    const QStringList motions{u"<Left>"_s, u"<C-Right>"_s, u"<Home>"_s, u"<Down>"_s, u"<C-S-Left>"_s, u"<S-Up>"_s, u"<S-End>"_s};
    ViewFixture copy;
    for (int round = 0; round < 300; ++round) {
        QString text;
        for (qsizetype i = upTo(40); i >= 0; --i) {
            text += letters[upTo(letters.size() - 1)];
        }
        const bool isMotion = upTo(3) == 0;
        const QString keys = isMotion ? motions[upTo(motions.size() - 1)] : edits[upTo(edits.size() - 1)];
        std::vector<CaretSelection> all;
        for (qsizetype i = upTo(5); i >= 0; --i) {
            const qsizetype caret = upTo(text.size());
            all.push_back(CaretSelection::of({upTo(2) == 0 ? upTo(text.size()) : caret, caret}));
        }
        setText(text);
        view.setSelection(Selections::merged(std::move(all), 0));
        const Selections before = view.selections();
        SCOPED_TRACE((shown() + u"   "_s + keys).toStdString());
        std::vector<Alone> alone;
        for (const CaretSelection &one : before) {
            alone.emplace_back(copy, text, one.ends(), keys);
        }
        this->keys(keys);
        if (isMotion) {
            std::vector<CaretSelection> moved;
            std::ranges::transform(alone, std::back_inserter(moved), [](const Alone &one) { return CaretSelection::of(one.after); });
            ASSERT_EQ(shown(), ::marked(text, Selections::merged(std::move(moved), before.primaryIndex())));
            continue;
        }
        ASSERT_EQ(shown(), mergedByHand(text, alone));
        if (storage.string() != text) {
            const QString after = shown();
            view.undo();
            ASSERT_EQ(shown(), ::marked(text, before)) << "undone";
            EXPECT_FALSE(undo.canUndo()) << "it was one step";
            view.redo();
            ASSERT_EQ(shown(), after);
        }
    }
}

TEST_F(SeveralCarets, TypeOnInOneStepAndEscapeLeavesThePrimary)
{
    set(u"|a\n|b\n|c"_s);
    keys(u"xy"_s);
    EXPECT_EQ(shown(), u"xy|a\nxy|b\nxy|c"_s);
    view.undo();
    EXPECT_EQ(shown(), u"|a\n|b\n|c"_s);
    keys(u"<Esc>"_s);
    EXPECT_EQ(shown(), u"|a\nb\nc"_s);
    view.setSelection(Selections::merged({CaretSelection::at({0}), CaretSelection::at({2})}, 1));
    keys(u"x<Esc>"_s);
    EXPECT_EQ(shown(), u"xa\nx|b\nc"_s) << "not always the first one";
    view.undo();
    set(u"|a\n|b"_s);
    QInputMethodEvent composing(u"é"_s, {});
    QApplication::sendEvent(&view, &composing);
    QInputMethodEvent committed;
    committed.setCommitString(u"é"_s);
    QApplication::sendEvent(&view, &committed);
    EXPECT_EQ(shown(), u"é|a\né|b"_s);
    storage.apply({{0, 0}, u"12"_s});
    EXPECT_EQ(shown(), u"12é|a\né|b"_s) << "another view has typed";
}

TEST_F(SeveralCarets, PutPiecesBackOneByOne)
{
    set(u"^one|\n^tw\no|\n^three|"_s);
    keys(u"<C-c>"_s);
    EXPECT_EQ(pasteboard.text(), u"one\ntw\no\nthree"_s);
    set(u"|;|;|"_s);
    keys(u"<C-v>"_s);
    EXPECT_EQ(shown(), u"one|;tw\no|;three|"_s);
    set(u"|;|"_s);
    keys(u"<C-v>"_s);
    EXPECT_EQ(storage.string(), u"one\ntw\no\nthree;one\ntw\no\nthree"_s) << "of another number";
    pasteboard.setTextFromElsewhere(u"1\r\n2\r\n"_s);
    set(u"^a|-^b|"_s);
    keys(u"<C-v>"_s);
    EXPECT_EQ(shown(), u"1|-2|"_s) << "a line each";
    set(u"^a|b^c|"_s);
    keys(u"<C-x>"_s);
    EXPECT_EQ(shown(), u"|b|"_s);
}

TEST_F(SeveralCarets, ComeAboveBelowAndFromLines)
{
    set(u"abcd\na\nabc|d\nabcd"_s);
    view.perform(Actions::addCaretAbove);
    view.perform(Actions::addCaretAbove);
    view.perform(Actions::addCaretAbove);
    EXPECT_EQ(shown(), u"abc|d\na|\nabc|d\nabcd"_s) << "through a short line, and no further than the text";
    EXPECT_EQ(view.selections().primaryIndex(), 0U);
    view.perform(Actions::addCaretBelow);
    EXPECT_EQ(shown(), u"abc|d\na|\nabc|d\nabc|d"_s);
    set(u"x^y\r\n\nz|z"_s);
    view.perform(Actions::splitSelectionIntoLines);
    EXPECT_EQ(shown(), u"x^y|\r\n|\n^z|z"_s);
    set(u"^a\nb\n|c"_s);
    view.perform(Actions::splitSelectionIntoLines);
    EXPECT_EQ(shown(), u"^a|\n^b|\nc"_s);
}

TEST_F(SeveralCarets, AreAddedAndRemovedByTheMouse)
{
    set(u"|abcdef\nghijkl\nmnopqr"_s);
    click(at(1, 2), Qt::LeftButton, Qt::ControlModifier);
    drag(at(2, 1), at(2, 4), Qt::LeftButton, Qt::ControlModifier);
    EXPECT_EQ(shown(), u"|abcdef\ngh|ijkl\nm^nop|qr"_s);
    click(at(1, 2), Qt::LeftButton, Qt::ControlModifier);
    EXPECT_EQ(shown(), u"|abcdef\nghijkl\nm^nop|qr"_s);
    click(at(0, 5), Qt::LeftButton, Qt::ControlModifier);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::ControlModifier, at(0, 5));
    EXPECT_EQ(shown(), u"^abcdef|\nghijkl\nm^nop|qr"_s);
    click(at(1, 1));
    EXPECT_EQ(shown(), u"abcdef\ng|hijkl\nmnopqr"_s);
}

TEST_F(SeveralCarets, MakeColumnsThroughShortLines)
{
    const QString text = u"|abcdef\ngh\n\tk\nmnopqr"_s;
    set(text);
    drag(at(0, 4), at(3, 1), Qt::LeftButton, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_EQ(shown(), u"a|bcd^ef\ng|h^\n|\t^k\nm|nop^qr"_s);
    drag(at(3, 4), at(0, 4), Qt::MiddleButton);
    EXPECT_EQ(shown(), u"abcd|ef\ngh|\n\t|k\nmnop|qr"_s);
    EXPECT_EQ(view.selections().primaryIndex(), 0U);
    keys(u"<BS>"_s);
    EXPECT_EQ(shown(), u"abc|ef\ngh|\n|k\nmno|qr"_s) << "behind the end it goes back a cell";
    keys(u"X"_s);
    EXPECT_EQ(shown(), u"abcX|ef\ngh X|\nX|k\nmnoX|qr"_s) << "blanks lead to what is typed";
    pasteboard.setPrimaryFromElsewhere(u"!"_s);
    click(at(0, 0), Qt::MiddleButton);
    EXPECT_EQ(storage.string(), u"!abcXef\ngh X\nXk\nmnoXqr"_s) << "a click of the middle button pastes";
}

TEST_F(SeveralCarets, ArePaintedWhereTheyAreSeen)
{
    QString text;
    std::vector<CaretSelection> all;
    for (int line = 0; line < 5000; ++line) {
        all.push_back(CaretSelection::of({text.size(), text.size() + 2}));
        text += u"    \n"_s;
    }
    setText(text);
    view.setLook(&TextLooks::caretShape, TextView::CaretShape::block);
    view.setColors({.background = Qt::white, .text = Qt::white, .selection = Qt::blue, .caret = Qt::red});
    view.setSelection(Selections::merged(std::move(all), 0));
    const qint64 layouts = view.layoutManager().counters().layouts;
    const QImage seen = image();
    EXPECT_LT(view.layoutManager().counters().layouts - layouts, 100) << "those that are not seen cost nothing";
    const auto color = [&](int row, int column) { return seen.pixelColor((QPointF(at(row, column)) * seen.devicePixelRatio()).toPoint()); };
    for (const int row : {0, 1, 10}) {
        EXPECT_EQ(color(row, 0), QColor(Qt::blue)) << row;
        EXPECT_LT(color(row, 2).green(), 200) << row;
        EXPECT_EQ(color(row, 3), QColor(Qt::white)) << row;
    }
}

} // namespace
