// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/WidgetAlertPresenter.h"

#include "Controls.h"
#include "TestFolder.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;
using testing::ElementsAre;

namespace {

const Alert closeQuestion{
    .messageText = u"Do you want to save <b>a.txt</b>?"_s,
    .informativeText = u"<i>b.txt</i> will be lost."_s,
    .buttons = {{u"Save"_s}, {u"Cancel"_s, AlertButtonRole::cancel}, {u"Don’t Save"_s, AlertButtonRole::destructive}}};

class WidgetAlertPresenterTest : public testing::Test {
protected:
    void SetUp() override
    {
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    QWidget window;
    WidgetAlertPresenter presenter;
};

/// The one that is open; null for none.
template<typename Dialog>
Dialog *openIn(const QWidget &window)
{
    const QList<Dialog *> dialogs = window.findChildren<Dialog *>();
    const auto open = std::ranges::find_if(dialogs, &QWidget::isVisible);
    return open == dialogs.end() ? nullptr : *open;
}

void click(const QMessageBox &box, const QString &title)
{
    control<QPushButton>(box, title)->click();
}

} // namespace

TEST_F(WidgetAlertPresenterTest, AnswersWithThePlaceOfTheButton)
{
    std::vector<int> answers;
    const auto note = [&](const AlertReply &reply) { answers.push_back(reply.button); };
    const auto ask = [&] {
        presenter.present(closeQuestion, &window, note);
        return openIn<QMessageBox>(window);
    };

    QMessageBox *box = ask();
    EXPECT_TRUE(answers.empty()) << "presenting must not wait";
    EXPECT_EQ(box->windowModality(), Qt::WindowModal);
    for (const QLabel *label : box->findChildren<QLabel *>()) {
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << "a file's name is no markup: " << label->text().toStdString();
    }
    EXPECT_EQ(box->defaultButton()->text().remove(u'&'), u"Save"_s);
    QStringList titles;
    std::ranges::transform(box->buttons(), std::back_inserter(titles), &QAbstractButton::text);
    EXPECT_THAT(titles, testing::UnorderedElementsAre(u"&Save"_s, u"&Cancel"_s, u"&Don’t Save"_s));
    click(*box, u"Don’t Save"_s);
    click(*ask(), u"Cancel"_s);
    click(*ask(), u"Save"_s);
    QTest::keyClick(ask(), Qt::Key_Escape);
    ask()->close();
    EXPECT_THAT(answers, ElementsAre(1002, 1001, 1000, 1001, 1001));

    presenter.present(Alert::forError(u"“a” could not be read."_s, u"Try again."_s), &window, note);
    box = openIn<QMessageBox>(window);
    EXPECT_EQ(box->informativeText(), u"Try again."_s);
    QTest::keyClick(box, Qt::Key_Escape);
    EXPECT_EQ(answers.back(), 1000);
}

TEST_F(WidgetAlertPresenterTest, AlertsOfAWindowComeOneAfterTheOther)
{
    auto owner = std::make_unique<QWidget>();
    std::vector<std::string> events;
    presenter.present(closeQuestion, owner.get(), [&](const AlertReply &) {
        events.push_back("first");
        presenter.present(closeQuestion, owner.get(), [&](const AlertReply &) { events.push_back("third"); });
    });
    presenter.present(closeQuestion, owner.get(), [&](const AlertReply &) { events.push_back("second"); });
    EXPECT_FALSE(openIn<QMessageBox>(*owner)) << "before its window is there a dialog has no place";
    owner->show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return openIn<QMessageBox>(*owner) != nullptr; }));
    for (int count = 0; count < 3; ++count) {
        click(*openIn<QMessageBox>(*owner), u"Cancel"_s);
    }
    EXPECT_THAT(events, ElementsAre("first", "second", "third"));
    EXPECT_FALSE(openIn<QMessageBox>(*owner));

    presenter.present(closeQuestion, owner.get(), [&](const AlertReply &) { events.push_back("never"); });
    presenter.present(closeQuestion, owner.get(), [&](const AlertReply &) { events.push_back("never"); });
    owner.reset();
    EXPECT_EQ(events.size(), 3U);
}

TEST_F(WidgetAlertPresenterTest, AsksForALineOfText)
{
    AlertReply reply;
    presenter.present({.messageText = u"Go to Line"_s,
                       .informativeText = u"From 1 to 9:"_s,
                       .buttons = {{u"Go"_s}, {u"Cancel"_s, AlertButtonRole::cancel}},
                       .textField = Alert::TextField{.placeholder = u"Line number"_s}},
                      &window, [&](const AlertReply &given) { reply = given; });
    const QMessageBox *box = openIn<QMessageBox>(window);
    auto *edit = box->findChild<QLineEdit *>();
    EXPECT_EQ(box->focusWidget(), edit);
    EXPECT_EQ(edit->placeholderText(), u"Line number"_s);
    const auto *message = box->findChild<QLabel *>(u"qt_msgbox_label"_s);
    EXPECT_EQ(box->windowTitle(), u"Go to Line"_s);
    EXPECT_EQ(message->text(), u"From 1 to 9:"_s);
    EXPECT_EQ(message->mapTo(box, message->contentsRect().topLeft()).x(), edit->mapTo(box, QPoint()).x()) << "the title is in line";
    QTest::keyClicks(edit, u"42"_s);
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(reply.button, 1000);
    EXPECT_EQ(reply.text, u"42"_s);
}

TEST_F(WidgetAlertPresenterTest, PanelsStartWhereTheyAreAskedAndAskBeforeAFileIsReplaced)
{
    const TestFolder folder;
    const QString file = folder.path(u"notes.txt"_s);
    std::optional<QString> saved;
    QStringList opened{u"untouched"_s};
    const auto save = [&] {
        presenter.present(SavePanel{.startFolder = folder.path({}), .suggestedName = u"notes.txt"_s}, &window,
                          [&](const std::optional<QString> &path) { saved = path; });
    };
    save();
    presenter.present(OpenPanel{.startFolder = u"/nowhere/at/all"_s}, &window, [&](const QStringList &paths) { opened = paths; });
    QFileDialog *panel = openIn<QFileDialog>(window);
    EXPECT_EQ(panel->windowModality(), Qt::WindowModal);
    QMetaObject::invokeMethod(panel, "accept");
    EXPECT_EQ(std::exchange(saved, {}), file);
    panel = openIn<QFileDialog>(window);
    EXPECT_EQ(panel->fileMode(), QFileDialog::ExistingFiles);
    panel->reject();
    EXPECT_EQ(opened, QStringList());

    folder.put(u"notes.txt"_s, "");
    save();
    panel = openIn<QFileDialog>(window);
    const auto ask = [&] {
        QMetaObject::invokeMethod(panel, "accept");
        EXPECT_TRUE(QTest::qWaitFor([&] { return openIn<QMessageBox>(*panel) != nullptr; }));
        return openIn<QMessageBox>(*panel);
    };
    const QMessageBox *box = ask();
    EXPECT_THAT(box->text().toStdString(), testing::HasSubstr("notes.txt"));
    EXPECT_EQ(box->defaultButton()->text().remove(u'&'), u"Cancel"_s) << "a slip of the Return key must not cost a file";
    click(*box, u"Cancel"_s);
    EXPECT_EQ(saved, std::nullopt);
    EXPECT_TRUE(panel->isVisible()) << "for another name";
    click(*ask(), u"Replace"_s);
    EXPECT_EQ(saved, file);
}

TEST_F(WidgetAlertPresenterTest, FontsAreChosenByFamilyAndSize)
{
    std::optional<FontChoice> answer;
    const QString fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
    const QStringList families = QFontDatabase::families();
    const auto proportional = std::ranges::find_if_not(families, [](const QString &family) { return QFontDatabase::isFixedPitch(family); });
    ASSERT_NE(proportional, families.end());
    const auto ask = [&](const QString &family) {
        presenter.present(FontPanel{.current = {family, 12.5}, .leastSize = 6, .greatestSize = 96}, &window,
                          [&answer](const std::optional<FontChoice> &font) { answer = font; });
        return openIn<QDialog>(window);
    };

    QDialog *dialog = ask(fixed);
    auto *list = dialog->findChild<QListWidget *>();
    auto *fixedOnly = dialog->findChild<QCheckBox *>();
    auto *size = dialog->findChild<QDoubleSpinBox *>();
    EXPECT_TRUE(fixedOnly->isChecked());
    EXPECT_TRUE(list->findItems(*proportional, Qt::MatchExactly).isEmpty());
    fixedOnly->click();
    list->setCurrentItem(list->findItems(*proportional, Qt::MatchExactly).value(0));
    size->setValue(200);
    dialog->accept();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->family, *proportional);
    EXPECT_EQ(answer->pointSize, 96) << "no larger than it may be";

    dialog = ask(*proportional);
    EXPECT_FALSE(dialog->findChild<QCheckBox *>()->isChecked()) << "else the current one would not be listed";
    EXPECT_EQ(dialog->findChild<QListWidget *>()->currentItem()->text(), *proportional);
    dialog->reject();
    EXPECT_FALSE(answer);
}
