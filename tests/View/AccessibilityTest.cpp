// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "ViewFixture.h"

#include <QAccessible>
#include <gtest/gtest.h>
#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

using namespace Qt::StringLiterals;

namespace {

QStringList *heard = nullptr;

void listen(QAccessibleEvent *event)
{
    switch (event->type()) {
    case QAccessible::TextInserted: {
        const auto *inserted = static_cast<QAccessibleTextInsertEvent *>(event);
        *heard += u"+%1 %2"_s.arg(inserted->changePosition()).arg(inserted->textInserted());
        break;
    }
    case QAccessible::TextRemoved: {
        const auto *removed = static_cast<QAccessibleTextRemoveEvent *>(event);
        *heard += u"-%1 %2"_s.arg(removed->changePosition()).arg(removed->textRemoved());
        break;
    }
    case QAccessible::TextCaretMoved:
        *heard += u"@%1"_s.arg(static_cast<QAccessibleTextCursorEvent *>(event)->cursorPosition());
        break;
    case QAccessible::TextSelectionChanged: {
        const auto *selected = static_cast<QAccessibleTextSelectionEvent *>(event);
        *heard += u"[%1,%2]"_s.arg(selected->selectionStart()).arg(selected->selectionEnd());
        break;
    }
    default:
        break;
    }
}

class Accessibility : public testing::Test {
protected:
    Accessibility()
    {
        QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(true);
        heard = &m_heard;
        QAccessible::installUpdateHandler(listen);
    }
    ~Accessibility() override
    {
        QAccessible::installUpdateHandler(nullptr);
        QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(false);
    }
    QStringList takeHeard() { return std::exchange(m_heard, {}); }

    QStringList m_heard;
};

TEST_F(Accessibility, TellsEditsCaretAndSelection)
{
    ViewFixture fixture(u"abc"_s);
    fixture.view.setSelection(TextSelection::at(1));
    takeHeard();
    fixture.keys(u"x"_s);
    EXPECT_EQ(takeHeard(), (QStringList{u"+1 x"_s, u"@2"_s}));
    fixture.keys(u"<BS>"_s);
    EXPECT_EQ(takeHeard(), (QStringList{u"-1 x"_s, u"@1"_s}));
    fixture.keys(u"<S-Right>"_s);
    EXPECT_EQ(takeHeard(), (QStringList{u"[1,2]"_s, u"@2"_s}));
    fixture.keys(u"Y"_s);
    EXPECT_EQ(takeHeard(), (QStringList{u"-1 b"_s, u"+1 Y"_s, u"[2,2]"_s, u"@2"_s}));
}

TEST_F(Accessibility, GivesTextByPieceWithoutTheWhole)
{
    const QString text = u"First line here\nse\u0301cond, one\n"_s;
    ViewFixture fixture(text);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&fixture.view);
    ASSERT_NE(interface, nullptr);
    EXPECT_EQ(interface->role(), QAccessible::EditableText);
    EXPECT_TRUE(interface->state().multiLine);
    QAccessibleTextInterface *access = interface->textInterface();
    ASSERT_NE(access, nullptr);
    struct Case {
        int offset;
        QAccessible::TextBoundaryType boundary;
        QString before;
        QString at;
        QString after;
    };
    const Case cases[] = {{0, QAccessible::CharBoundary, {}, u"F"_s, u"i"_s},
                          {17, QAccessible::CharBoundary, u"s"_s, u"e\u0301"_s, u"c"_s},
                          {7, QAccessible::WordBoundary, u" "_s, u"line"_s, u" "_s},
                          {15, QAccessible::WordBoundary, u"here"_s, u"\n"_s, u"se\u0301cond"_s},
                          {3, QAccessible::LineBoundary, {}, u"First line here\n"_s, u"se\u0301cond, one\n"_s},
                          {20, QAccessible::ParagraphBoundary, u"First line here\n"_s, u"se\u0301cond, one\n"_s, {}},
                          {-1, QAccessible::LineBoundary, u"se\u0301cond, one\n"_s, {}, {}},
                          {5, QAccessible::NoBoundary, {}, text, {}}};
    for (const Case &c : cases) {
        int start = -1;
        int end = -1;
        EXPECT_EQ(access->textAtOffset(c.offset, c.boundary, &start, &end), c.at) << c.offset << " by " << c.boundary;
        EXPECT_EQ(text.mid(start, end - start), c.at);
        EXPECT_EQ(access->textBeforeOffset(c.offset, c.boundary, &start, &end), c.before) << c.offset << " by " << c.boundary;
        EXPECT_EQ(access->textAfterOffset(c.offset, c.boundary, &start, &end), c.after) << c.offset << " by " << c.boundary;
    }
    EXPECT_EQ(access->characterCount(), text.length());
    EXPECT_EQ(access->text(6, 10), u"line"_s);
    for (const int offset : {0, 6, 16, 20}) {
        const QRect rect = access->characterRect(offset);
        EXPECT_EQ(access->offsetAtPoint(rect.center()), offset);
    }
    access->setSelection(0, 6, 10);
    EXPECT_EQ(fixture.view.selectedText(), u"line"_s);
    EXPECT_EQ(access->selectionCount(), 1);
    access->setCursorPosition(2);
    EXPECT_EQ(access->cursorPosition(), 2);
    interface->editableTextInterface()->replaceText(0, 5, u"Last"_s);
    EXPECT_TRUE(fixture.storage.text().toString().startsWith(u"Last line"_s));
    fixture.keys(u"<C-z>"_s);
    EXPECT_EQ(fixture.storage.text().toString(), text);
}

TEST_F(Accessibility, HugeTextsAreAnsweredInBoundedPieces)
{
    // A letter of two units lies across the end of the first part.
    const QString text = u'-' + u"\U0001F600"_s.repeated(100'000) + u'|';
    const QList<uint> characters = text.toUcs4();
    ViewFixture fixture(text);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&fixture.view);
    EXPECT_LE(interface->text(QAccessible::Value).length(), 100'000);
    int start = 0;
    int end = 0;
    QAccessibleTextInterface *access = interface->textInterface();
    for (const int offset : {0, 32'767, 32'768, 32'769, 75'000, 100'001}) {
        const QString part = access->textAtOffset(offset, QAccessible::LineBoundary, &start, &end);
        EXPECT_LE(part.length(), 65'537);
        EXPECT_TRUE(start <= offset && offset < end) << offset << " in " << start << ".." << end;
        EXPECT_EQ(part.toUcs4(), characters.mid(start, end - start));
        EXPECT_FALSE(part.front().isLowSurrogate() || part.back().isHighSurrogate()) << offset;
    }
    QString all;
    for (int at = 0; at < access->characterCount(); at = end) {
        all += access->textAtOffset(at, QAccessible::LineBoundary, &start, &end);
        ASSERT_GT(end, at);
    }
    EXPECT_EQ(all, text) << "the parts follow one another";
}

TEST_F(Accessibility, CountsCharactersNotUnits)
{
    ViewFixture fixture(u"\U0001F600a\n\U0001F600\U0001F601 end\nlast"_s);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&fixture.view);
    QAccessibleTextInterface *access = interface->textInterface();
    EXPECT_EQ(access->characterCount(), 14);
    int start = -1;
    int end = -1;
    EXPECT_EQ(access->textAtOffset(3, QAccessible::LineBoundary, &start, &end), u"\U0001F600\U0001F601 end\n"_s);
    EXPECT_EQ(std::pair(start, end), std::pair(3, 10)) << "as long as a reader finds the line to be";
    EXPECT_EQ(access->text(4, 6), u"\U0001F601 "_s);
    EXPECT_EQ(access->offsetAtPoint(access->characterRect(4).center()), 4);
    access->setSelection(0, 4, 5);
    EXPECT_EQ(fixture.view.selectedText(), u"\U0001F601"_s);
    access->selection(0, &start, &end);
    EXPECT_EQ(std::pair(start, end), std::pair(4, 5));
    access->setCursorPosition(5);
    EXPECT_EQ(access->cursorPosition(), 5);

    takeHeard();
    fixture.keys(u"<BS><S-Left>"_s);
    EXPECT_EQ(takeHeard(), (QStringList{u"-4 \U0001F601"_s, u"@4"_s, u"[3,4]"_s, u"@3"_s}));
    // Padded, as it comes from the bus.
    interface->editableTextInterface()->insertText(1, u"é\0"_s);
    EXPECT_EQ(fixture.storage.text().toString(), u"\U0001F600éa\n\U0001F600 end\nlast"_s);
}

TEST_F(Accessibility, TellsOfEditsFromElsewhere)
{
    ViewFixture fixture(u"abc def ghi"_s);
    fixture.view.setSelection({4, 7});
    takeHeard();
    TextEdits edits({0, 3}, u"XY"_s);
    edits.add({8, 3}, Rope(u"G"));
    fixture.storage.apply(edits);
    EXPECT_EQ(takeHeard(), (QStringList{u"-0 abc"_s, u"+0 XY"_s, u"-7 ghi"_s, u"+7 G"_s, u"[3,6]"_s, u"@6"_s}));
}

TEST_F(Accessibility, OffsetsInsideALetterAreNoFault)
{
    ViewFixture fixture(u"ae\u0301b"_s);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&fixture.view);
    interface->editableTextInterface()->deleteText(2, 3);
    EXPECT_EQ(fixture.storage.text().toString(), u"ab"_s);
    interface->editableTextInterface()->insertText(-1, u"e\u0301"_s);
    interface->editableTextInterface()->insertText(3, u"x"_s);
    EXPECT_EQ(fixture.storage.text().toString(), u"abxe\u0301"_s);
    fixture.keys(u"<C-a><Del>"_s);
    QAccessibleTextInterface *access = interface->textInterface();
    for (const int offset : {-2, -1, 0, 7}) {
        int start = -1;
        int end = -1;
        for (const auto boundary : {QAccessible::CharBoundary, QAccessible::WordBoundary, QAccessible::LineBoundary,
                                    QAccessible::ParagraphBoundary, QAccessible::NoBoundary}) {
            EXPECT_EQ(access->textAtOffset(offset, boundary, &start, &end), QString());
            EXPECT_EQ(access->textBeforeOffset(offset, boundary, &start, &end), QString());
            EXPECT_EQ(access->textAfterOffset(offset, boundary, &start, &end), QString());
            EXPECT_EQ(start, 0);
            EXPECT_EQ(end, 0);
        }
        EXPECT_EQ(access->characterRect(offset).height(), static_cast<int>(std::ceil(fixture.view.layoutManager().rowHeight())));
        EXPECT_EQ(access->attributes(offset, &start, &end), QString());
    }
    EXPECT_EQ(access->text(-1, -2), QString());
}

} // namespace
