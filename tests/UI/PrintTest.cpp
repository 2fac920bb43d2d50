// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/PageView.h"
#include "UI/PrintPreview.h"
#include "WindowFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QProgressDialog>
#include <QPushButton>
#include <QSpinBox>

using namespace Qt::StringLiterals;

namespace {

class PrintTest : public WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        type(u"one two three"_s);
    }
    template<class Dialog = QDialog>
    Dialog &dialog(const QString &name = {})
    {
        auto *found = window().findChild<Dialog *>(name);
        EXPECT_NE(found, nullptr);
        return *found;
    }
    void exportTo(const QString &name, const Action &action)
    {
        presenter.answerSave(path(name));
        send(action);
        dialog(u"exportOptions"_s).accept();
        settle();
    }
    void settle()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

} // namespace

TEST_F(PrintTest, ExportsWhatIsChosenAndRemembersIt)
{
    presenter.answerSave(path(u"all.html"_s));
    send(Actions::exportAsHtml);
    QTest::mouseClick(dialog(u"exportOptions"_s).findChild<QCheckBox *>(u"printLineNumbers"_s), Qt::LeftButton);
    EXPECT_EQ(dialog(u"exportOptions"_s).findChild<QCheckBox *>(u"selectionOnly"_s), nullptr);
    dialog(u"exportOptions"_s).accept();
    settle();
    EXPECT_TRUE(read(u"all.html"_s).contains("<span data-line=\"1\"></span>one two three"));
    EXPECT_EQ(presenter.savePanels().back().suggestedName, u"Untitled.html"_s);
    EXPECT_EQ(flashes, QStringList{u"Exported as “all.html”"_s});
    EXPECT_TRUE(preferences.value(Settings::printLineNumbers));

    textView().setSelection({4, 7});
    presenter.answerSave(path(u"part.html"_s));
    send(Actions::exportAsHtml);
    auto *selectionOnly = dialog(u"exportOptions"_s).findChild<QCheckBox *>(u"selectionOnly"_s);
    ASSERT_NE(selectionOnly, nullptr);
    selectionOnly->setChecked(true);
    dialog(u"exportOptions"_s).accept();
    settle();
    EXPECT_TRUE(read(u"part.html"_s).contains("<span data-line=\"1\"></span>two</pre>"));

    exportTo(u"text.pdf"_s, Actions::exportAsPdf);
    EXPECT_TRUE(read(u"text.pdf"_s).startsWith("%PDF"));
    exportTo(u"no/such/folder.pdf"_s, Actions::exportAsPdf);
    EXPECT_TRUE(lastAlert().contains(u"folder.pdf"_s)) << lastAlert().toStdString();
    workspace().open({put(u"open.cpp"_s, "int x;")});
    exportTo(u"open.cpp"_s, Actions::exportAsHtml);
    EXPECT_TRUE(lastAlert().contains(u"open.cpp"_s)) << lastAlert().toStdString();
    EXPECT_EQ(read(u"open.cpp"_s), "int x;") << "a text is not replaced by its picture";
}

TEST_F(PrintTest, WhatTakesLongIsShownAndCanBeCancelled)
{
    workers.isHeld = true;
    exportTo(u"text.pdf"_s, Actions::exportAsPdf);
    EXPECT_EQ(window().findChild<QProgressDialog *>(), nullptr);
    scheduler.advance(std::chrono::milliseconds(500));
    auto &progress = dialog<QProgressDialog>(u"printProgress"_s);
    EXPECT_TRUE(progress.isVisible());
    EXPECT_EQ(progress.labelText(), u"Exporting “text.pdf”…"_s);
    type(u"x"_s);
    EXPECT_EQ(text(), u"one two threex"_s) << "the window can be used meanwhile";
    auto *cancel = progress.findChild<QPushButton *>();
    cancel->click();
    cancel->click();
    settle();
    workers.finish();
    settle();
    EXPECT_EQ(window().findChild<QProgressDialog *>(), nullptr);
    EXPECT_FALSE(names().contains(u"text.pdf"_s));
    EXPECT_TRUE(flashes.isEmpty());
}

TEST_F(PrintTest, WhatIsPrintedIsWrittenBeforeTheWindowGoes)
{
    QSignalSpy finished(&application, &AppDelegate::finished);
    workers.isHeld = true;
    exportTo(u"no/such/folder.pdf"_s, Actions::exportAsPdf);
    window().close();
    EXPECT_TRUE(dialog<QProgressDialog>(u"printProgress"_s).isVisible()) << "at once, since it can be cancelled";
    workers.finish();
    settle();
    EXPECT_TRUE(lastAlert().contains(u"folder.pdf"_s));
    EXPECT_TRUE(window().isVisible()) << "somebody has to read that";
    exportTo(u"text.pdf"_s, Actions::exportAsPdf);
    application.terminate();
    EXPECT_EQ(finished.count(), 0);
    workers.finish();
    settle();
    EXPECT_TRUE(read(u"text.pdf"_s).startsWith("%PDF"));
    EXPECT_EQ(finished.count(), 1);
}

TEST_F(PrintTest, APrintThatFailsEndsTheQuitThatWaitsForIt)
{
    preferences.set(Settings::autosaveDrafts, false);
    presenter.hold();
    for (const bool isAskedOnceMore : {false, true}) {
        send(Actions::newWindow);
        window(1).activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window(1)));
        type(u"x"_s, 1);
        application.terminate();
        // While the question of the one window is on the screen, the other one prints.
        workers.isHeld = true;
        exportTo(u"no/such/folder.pdf"_s, Actions::exportAsPdf);
        presenter.answer(AlertReply::thirdButton);
        presenter.answerHeld();
        ASSERT_EQ(application.windows().size(), 1U);
        if (isAskedOnceMore) {
            application.terminate();
        }
        workers.finish();
        workers.isHeld = false;
        settle();
        EXPECT_TRUE(lastAlert().contains(u"folder.pdf"_s));
        presenter.answerHeld();
        ASSERT_TRUE(window().isVisible());
        // The next closing is only its own.
        const size_t questions = presenter.alerts().size();
        send(Actions::newWindow);
        window(1).close();
        EXPECT_EQ(application.windows().size(), 1U);
        EXPECT_EQ(presenter.alerts().size(), questions) << isAskedOnceMore;
    }
}

TEST_F(PrintTest, ThePreviewTurnsPages)
{
    workspace().currentDocument()->storage().apply(TextEdits({0, 0}, u"x\n"_s.repeated(100)));
    send(Actions::printPreview);
    auto &preview = dialog<PrintPreview>();
    auto &page = *preview.findChild<PageView *>();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&preview));
    EXPECT_EQ(page.accessibleName(), u"Page 1 of 2"_s);
    QTest::keyClick(&page, Qt::Key_PageDown);
    EXPECT_EQ(page.accessibleName(), u"Page 2 of 2"_s);
    QTest::keyClick(&page, Qt::Key_PageDown);
    EXPECT_EQ(page.accessibleName(), u"Page 2 of 2"_s);
    QTest::keyClick(&page, Qt::Key_Home);
    EXPECT_EQ(page.accessibleName(), u"Page 1 of 2"_s);
    preview.findChild<QSpinBox *>(u"pageNumber"_s)->setValue(2);
    auto *landscape = preview.findChild<QCheckBox *>(u"landscape"_s);
    landscape->click();
    EXPECT_EQ(page.accessibleName(), u"Page 2 of 3"_s) << "the page with what was seen";
    EXPECT_FALSE(page.grab().toImage().isNull());
}

TEST_F(PrintTest, ThePagesOfALongTextAreCountedByAWorker)
{
    workspace().currentDocument()->storage().apply(TextEdits({0, 0}, u"x\n"_s.repeated(100'000)));
    workers.isHeld = true;
    send(Actions::printPreview);
    auto &preview = dialog<PrintPreview>();
    auto &page = *preview.findChild<PageView *>();
    EXPECT_EQ(page.accessibleName(), u"Page 1"_s);
    QTest::keyClick(&page, Qt::Key_PageDown);
    EXPECT_EQ(page.accessibleName(), u"Page 2"_s);
    workers.finish();
    settle();
    EXPECT_TRUE(page.accessibleName().startsWith(u"Page 2 of 1"_s)) << page.accessibleName().toStdString();
}

TEST_F(PrintTest, ThePrintDialogPrintsTheSelection)
{
    textView().setSelection({4, 7});
    EXPECT_TRUE(isEnabled(Actions::printDocument));
    send(Actions::printDocument);
    auto &printing = dialog<QPrintDialog>();
    EXPECT_TRUE(printing.testOption(QAbstractPrintDialog::PrintSelection));
    printing.setPrintRange(QAbstractPrintDialog::Selection);
    printing.printer()->setOutputFileName(path(u"printed.pdf"_s));
    printing.printer()->setPageOrientation(QPageLayout::Landscape);
    printing.done(QDialog::Accepted);
    settle();
    EXPECT_TRUE(read(u"printed.pdf"_s).startsWith("%PDF"));
    EXPECT_TRUE(preferences.value(Settings::printLandscape));
    EXPECT_EQ(flashes, QStringList{u"Exported as “printed.pdf”"_s});
}

TEST_F(PrintTest, ModalEditingPrintsToo)
{
    preferences.set(Settings::vimMode, true);
    press(u"<Esc>:ha<CR>"_s);
    EXPECT_TRUE(dialog<QPrintDialog>().isVisible());
}
