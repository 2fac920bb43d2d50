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
    if (const auto *inserted = dynamic_cast<QAccessibleTextInsertEvent *>(event)) {
        *heard += u"+%1 %2"_s.arg(inserted->changePosition()).arg(inserted->textInserted());
    } else if (const auto *removed = dynamic_cast<QAccessibleTextRemoveEvent *>(event)) {
        *heard += u"-%1 %2"_s.arg(removed->changePosition()).arg(removed->textRemoved());
    } else if (const auto *selected = dynamic_cast<QAccessibleTextSelectionEvent *>(event)) {
        *heard += u"[%1,%2]"_s.arg(selected->selectionStart()).arg(selected->selectionEnd());
    } else if (const auto *moved = dynamic_cast<QAccessibleTextCursorEvent *>(event)) {
        *heard += u"@%1"_s.arg(moved->cursorPosition());
    }
}

class Accessibility : public testing::Test, public ViewFixture {
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
    void show(const QString &marked)
    {
        setText(marked);
        takeHeard();
    }

    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&view);
    QAccessibleTextInterface *access = interface->textInterface();
    QStringList m_heard;
};

TEST_F(Accessibility, ReportsEditsCaretAndSelection)
{
    show(u"a|bc"_s);
    for (const auto &[typed, told] : {std::pair(u"x"_s, u"+1 x;@2"_s), std::pair(u"<BS>"_s, u"-1 x;@1"_s),
                                      std::pair(u"<S-Right>"_s, u"[1,2];@2"_s), std::pair(u"Y"_s, u"-1 b;+1 Y;[2,2];@2"_s)}) {
        keys(typed);
        EXPECT_EQ(takeHeard().join(u';'), told);
    }
    show(u"abc ^def| ghi"_s);
    TextEdits edits({0, 3}, u"XY"_s);
    edits.add({8, 3}, Rope(u"G"));
    storage.apply(edits);
    EXPECT_EQ(takeHeard().join(u';'), u"-0 abc;+0 XY;-7 ghi;+7 G;[3,6];@6"_s) << "from elsewhere";
}

TEST_F(Accessibility, HugeTextsAreAnsweredInBoundedPieces)
{
    // A letter of two units lies across the end of the first part.
    const QString shown = u'-' + u"\U0001F600"_s.repeated(100'000) + u'-';
    const QList<uint> characters = shown.toUcs4();
    show(shown);
    EXPECT_LE(interface->text(QAccessible::Value).length(), 100'000);
    int start = 0;
    int end = 0;
    for (int at = 0; at < access->characterCount(); at = end) {
        for (const int offset : {at, at + 1}) {
            const QString part = access->textAtOffset(offset, QAccessible::LineBoundary, &start, &end);
            EXPECT_LE(part.length(), 65'537);
            EXPECT_EQ(start, at) << "the parts follow one another";
            ASSERT_LT(offset, end);
            EXPECT_EQ(part.toUcs4(), characters.mid(start, end - start));
        }
    }
}

TEST_F(Accessibility, CountsCharactersNotUnits)
{
    show(u"\U0001F600a\n\U0001F600\U0001F601 end\nlast"_s);
    EXPECT_EQ(access->characterCount(), 14);
    int start = -1;
    int end = -1;
    EXPECT_EQ(access->textAtOffset(3, QAccessible::LineBoundary, &start, &end), u"\U0001F600\U0001F601 end\n"_s);
    EXPECT_EQ(std::pair(start, end), std::pair(3, 10)) << "as long as a reader finds the line to be";
    EXPECT_EQ(access->textBeforeOffset(4, QAccessible::CharBoundary, &start, &end), u"\U0001F600"_s);
    access->setSelection(0, 4, 5);
    EXPECT_EQ(view.selectedText(), u"\U0001F601"_s);
    access->selection(0, &start, &end);
    EXPECT_EQ(std::pair(start, end), std::pair(4, 5));
    takeHeard();
    keys(u"<BS><S-Left>"_s);
    EXPECT_EQ(takeHeard().join(u';'), u"-4 \U0001F601;@4;[3,4];@3"_s);
    // Padded, as it comes from the bus.
    interface->editableTextInterface()->insertText(1, u"é\0"_s);
    EXPECT_EQ(text(), u"\U0001F600éa\n\U0001F600 end\nlast"_s);
}

TEST_F(Accessibility, TellsOfEverySelection)
{
    show(u"abc def ghi"_s);
    access->setSelection(0, 0, 3);
    access->addSelection(8, 11);
    access->addSelection(4, 7);
    ASSERT_EQ(access->selectionCount(), 3);
    access->setSelection(1, 4, 5);
    access->removeSelection(0);
    ASSERT_EQ(access->selectionCount(), 2);
    int start = -1;
    int end = -1;
    access->selection(0, &start, &end);
    EXPECT_EQ(std::pair(start, end), std::pair(4, 5));
}

TEST_F(Accessibility, OffsetsOutsideTheTextOrInsideALetterAreNoFault)
{
    show(u"ae\u0301b"_s);
    interface->editableTextInterface()->deleteText(2, 3);
    EXPECT_EQ(text(), u"ab"_s);
    interface->editableTextInterface()->insertText(-1, u"e\u0301"_s);
    interface->editableTextInterface()->insertText(3, u"x"_s);
    EXPECT_EQ(text(), u"abxe\u0301"_s);
    show({});
    for (const int offset : {-2, 0, 7}) {
        int start = -1;
        int end = -1;
        for (const auto boundary : {QAccessible::CharBoundary, QAccessible::WordBoundary, QAccessible::LineBoundary}) {
            EXPECT_EQ(access->textAtOffset(offset, boundary, &start, &end), QString());
            EXPECT_EQ(access->textBeforeOffset(offset, boundary, &start, &end), QString());
            EXPECT_EQ(access->textAfterOffset(offset, boundary, &start, &end), QString());
            EXPECT_EQ(std::pair(start, end), std::pair(0, 0));
        }
        EXPECT_GT(access->characterRect(offset).height(), 0);
    }
    EXPECT_EQ(access->text(-1, -2), QString());
}

} // namespace
