// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Dragging text out of a view and dropping it.

#include "ViewFixture.h"

#include <QDropEvent>
#include <QMimeData>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Ends every drag at once by a drop.
class DragView : public TextView {
public:
    using TextView::TextView;

    std::function<Qt::DropAction(const QMimeData &)> dropIt;

protected:
    Qt::DropAction runDrag(QMimeData *content, Qt::DropActions, Qt::DropAction) override
    {
        const std::unique_ptr<QMimeData> owned(content);
        return dropIt(*owned);
    }
};

class Dropping : public testing::Test {
protected:
    Dropping()
    {
        for (DragView *view : {&source, &other}) {
            view->setTextFont(testFont());
            view->resize(300, 200);
            view->show();
        }
    }
    Qt::DropAction drop(TextView &onto, qsizetype offset, const QMimeData &data, Qt::DropAction action)
    {
        QDragEnterEvent enter(pointIn(onto, offset), action, &data, Qt::LeftButton, {});
        QDropEvent event(pointIn(onto, offset), action, &data, Qt::LeftButton, {});
        const bool isTaken = QApplication::sendEvent(onto.viewport(), &enter) && enter.isAccepted() &&
                             QApplication::sendEvent(onto.viewport(), &event) && event.isAccepted();
        return isTaken ? event.dropAction() : Qt::IgnoreAction;
    }
    void setText(const QString &marked)
    {
        around.setText(marked);
        source.setSelection(MarkedText(marked).selection);
    }
    /// Drags the selection of `source` to an offset of `onto`.
    void drag(TextView &onto, qsizetype offset, Qt::DropAction action)
    {
        source.dropIt = [&](const QMimeData &data) { return drop(onto, offset, data, action); };
        const QPoint from = pointIn(source, source.selection().range().location) + QPoint(3, 0);
        QTest::mousePress(source.viewport(), Qt::LeftButton, {}, from);
        dragMouse(source, from + QPoint(60, 0));
        QTest::mouseRelease(source.viewport(), Qt::LeftButton, {}, from + QPoint(60, 0));
    }
    [[nodiscard]] QString text() const { return around.text(); }

    ViewFixture around;
    DragView source{around.storage, around.undo, {around.scheduler, around.pasteboard}, testFont()};
    DragView other{around.storage, around.undo, {around.scheduler, around.pasteboard}, testFont()};
};

TEST_F(Dropping, WithinAViewTextIsMovedOrCopiedInOneStep)
{
    struct Case {
        qsizetype to;
        Qt::DropAction action;
        QString after;
    };
    const Case cases[] = {{0, Qt::MoveAction, u"^two|one  three"_s}, {13, Qt::MoveAction, u"one  three^two|"_s},
                          {4, Qt::MoveAction, u"one ^two| three"_s}, {5, Qt::MoveAction, u"one ^two| three"_s},
                          {7, Qt::MoveAction, u"one ^two| three"_s}, {5, Qt::CopyAction, u"one t^two|wo three"_s}};
    for (const Case &c : cases) {
        setText(u"one ^two| three"_s);
        drag(source, c.to, c.action);
        EXPECT_EQ(MarkedText::marked(text(), source.selection()), c.after) << "to " << c.to;
        around.undo.undo();
        EXPECT_EQ(text(), u"one two three"_s);
    }
}

TEST_F(Dropping, BetweenTwoViewsOfOneTextItIsTheSame)
{
    setText(u"one ^two| three"_s);
    drag(other, 13, Qt::MoveAction);
    EXPECT_EQ(text(), u"one  threetwo"_s);
    around.undo.undo();
    EXPECT_EQ(text(), u"one two three"_s) << "one step takes it back";
}

TEST_F(Dropping, AnotherTextTakesItOrTheSourceKeepsIt)
{
    ViewFixture elsewhere(u"abc"_s);
    setText(u"one ^two| three"_s);
    drag(elsewhere.view, 1, Qt::MoveAction);
    EXPECT_EQ(text(), u"one  three"_s);
    EXPECT_EQ(elsewhere.text(), u"atwobc"_s);
    setText(u"one ^two| three"_s);
    DragView refusing(elsewhere.storage, elsewhere.undo, {elsewhere.scheduler, elsewhere.pasteboard}, testFont());
    refusing.setAccess(TextView::Access::readOnly);
    refusing.resize(300, 200);
    drag(refusing, 1, Qt::MoveAction);
    EXPECT_EQ(text(), u"one two three"_s);
}

TEST_F(Dropping, TextOfOtherProgramsIsInsertedAndFilesPassThrough)
{
    setText(u"one two"_s);
    QMimeData data;
    data.setText(u"NEW"_s);
    EXPECT_EQ(drop(source, 4, data, Qt::CopyAction), Qt::CopyAction);
    EXPECT_EQ(MarkedText::marked(text(), source.selection()), u"one ^NEW|two"_s);
    around.undo.undo();
    EXPECT_EQ(text(), u"one two"_s);
    QMimeData files;
    files.setUrls({QUrl(u"file:///etc/hostname"_s)});
    EXPECT_EQ(drop(source, 4, files, Qt::CopyAction), Qt::IgnoreAction);
}

} // namespace
