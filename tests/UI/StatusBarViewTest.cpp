// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/StatusBarView.h"

#include "Base/Localization.h"
#include "Controls.h"
#include "Files/TextFile.h"
#include "Highlighting/LanguageRegistry.h"
#include "Widgets/PopUpButton.h"

#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class StatusBarViewTest : public testing::Test {
protected:
    using State = StatusBarView::State;

    StatusBarViewTest()
    {
        QObject::connect(&bar, &StatusBarView::languageChosen,
                         [this](const Language &language) { reports.append(u"language "_s + language.id()); });
        QObject::connect(&bar, &StatusBarView::positionClicked, [this] { reports.append(u"position"_s); });
        bar.resize(1200, bar.sizeHint().height());
        bar.show();
    }
    ~StatusBarViewTest() override { Localization::use(AppLanguage::english); }

    [[nodiscard]] static State someState()
    {
        return {.path = u"~/work/file.py"_s, .line = LineNumber(3), .column = 2, .language = LanguageRegistry::detect(u"file.py", {})};
    }

    /// What is seen, from left to right.
    [[nodiscard]] std::vector<QWidget *> parts() const
    {
        std::vector<QWidget *> found;
        for (QWidget *child : bar.findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
            if (!child->isHidden() && !child->geometry().isEmpty()) {
                found.push_back(child);
            }
        }
        std::ranges::sort(found, {}, &QWidget::x);
        return found;
    }
    [[nodiscard]] QStringList texts() const
    {
        QStringList list;
        for (const QWidget *part : parts()) {
            list.append(part->property("text").toString());
        }
        return list;
    }

    [[nodiscard]] QMenu &menuOf(const QString &toolTip) const { return *control<PopUpButton>(bar, toolTip)->menu(); }
    void speakGerman()
    {
        Localization::use(AppLanguage::german);
        notifications.post(Localization::didChangeNotification, nullptr);
    }

    ManualScheduler scheduler;
    NotificationCenter notifications;
    StatusBarView bar{scheduler, notifications};
    QStringList reports;
};

} // namespace

TEST_F(StatusBarViewTest, ShowsTheStateAndFollowsTheLanguage)
{
    EXPECT_EQ(texts(), QStringList{u"No document"_s});
    State state = someState();
    bar.setState(state);
    EXPECT_EQ(texts(), (QStringList{u"~/work/file.py"_s, u"Ln 3, Col 2"_s, u"Spaces: 4"_s, u"LF"_s, u"UTF-8"_s, u"Python"_s}));
    QTest::mouseClick(parts()[1], Qt::LeftButton);
    EXPECT_EQ(reports, QStringList{u"position"_s});

    state.selectionLength = 5;
    state.selectedLineCount = 1;
    state.vim = {.mode = u"NORMAL"_s, .pending = u"2d"_s};
    state.encoding = TextEncoding::windows1252;
    state.lineEnding = LineEnding::crlf;
    state.indentWidth = 8;
    state.usesSpaces = false;
    state.language = Language::plainText();
    bar.setState(state);
    const QString encoding = displayName(TextEncoding::windows1252);
    EXPECT_EQ(texts().first(3), (QStringList{u" NORMAL  2d "_s, u"~/work/file.py"_s, u"Ln 3, Col 2  (5 selected)"_s}));

    state.selectedLineCount = 3;
    state.vim->commandLine = u":s/a/b"_s;
    state.indentWidth = 3;
    state.encoding = TextEncoding(12345);
    bar.setState(state);
    speakGerman();
    EXPECT_EQ(texts(), (QStringList{u" :s/a/b█ "_s, u"~/work/file.py"_s, u"Zeile 3, Spalte 2  (5 ausgewählt, 3 Zeilen)"_s,
                                    u"Tabulatoren: 8"_s, u"CRLF"_s, encoding, u"Reiner Text"_s}))
        << "what no menu has leaves the choice as it was";
    const QStringList languages = titlesOf(menuOf(u"Syntax"_s));
    EXPECT_EQ(languages.filter(u"*"_s), QStringList{u"*Reiner Text"_s});
    EXPECT_LT(languages.indexOf(u"Python"_s), languages.indexOf(u"*Reiner Text"_s)) << "in the order of the titles shown";

    bar.setState(std::nullopt);
    EXPECT_EQ(texts(), QStringList{u"Kein Dokument"_s});
}

TEST_F(StatusBarViewTest, AFlashGivesWayToTheLatestPath)
{
    bar.setState(someState());
    bar.flash(u"Saved"_s, 2s);
    State other = someState();
    other.path = u"~/other"_s;
    bar.setState(other);
    EXPECT_EQ(texts()[0], u"Saved"_s);

    scheduler.advance(1s);
    bar.flash(u"Copied to “x”"_s, 5s);
    scheduler.advance(4999ms);
    EXPECT_EQ(texts()[0], u"Copied to “x”"_s) << "the first one's end must not end the second";
    scheduler.advance(1ms);
    EXPECT_EQ(texts()[0], u"~/other"_s);
}

TEST_F(StatusBarViewTest, WhereItIsNarrowTheLeastImportantGoesFirst)
{
    State state = someState();
    state.path = QString(300, u'x');
    state.vim = {.mode = u"COMMAND"_s, .commandLine = u":"_s + QString(30, u'y')};
    speakGerman();
    bar.setState(state);
    const QStringList byImportance = {u"Zeile 3, Spalte 2"_s, u"Python"_s, u"UTF-8"_s, u"LF"_s, u"Leerzeichen: 4"_s};
    qsizetype before = byImportance.size();
    for (int width = 1400; width >= 40; width -= 3) {
        SCOPED_TRACE(width);
        bar.resize(width, bar.height());
        const QStringList shown = texts();
        QStringList controls;
        std::ranges::copy_if(byImportance, std::back_inserter(controls), [&](const QString &text) { return shown.contains(text); });
        EXPECT_EQ(controls, byImportance.first(controls.size())) << shown.join(u", "_s).toStdString();
        EXPECT_LE(controls.size(), before);
        before = controls.size();
        if (!controls.isEmpty()) {
            EXPECT_GE(parts()[1]->width(), 10 * parts()[1]->fontMetrics().averageCharWidth()) << "a control goes before the path is gone";
        }
        int right = 0;
        for (const QWidget *part : parts()) {
            EXPECT_GE(part->x(), right) << "they overlap";
            right = part->geometry().right() + 1;
        }
        EXPECT_LE(right, width);
    }
    EXPECT_EQ(before, 0) << "the narrowest bar has no room for any";
}

TEST_F(StatusBarViewTest, LanguagesAreFoundByTyping)
{
    bar.setState(someState());
    QMenu *menu = &menuOf(u"Syntax"_s);
    menu->popup({});
    QStringList found;
    for (const QString &text : {u""_s, u"javas"_s, u" later p"_s, u"p"_s, u"p"_s, u"p"_s, u" later PLAIN t"_s}) {
        scheduler.advance(text.startsWith(u" later ") ? 2s : 0s);
        QTest::keyClicks(menu, QString(text).remove(u" later "_s));
        found << (menu->activeAction() ? menu->activeAction()->text() : QString());
    }
    EXPECT_EQ(found, (QStringList{u"Python"_s, u"JavaScript"_s, u"PHP"_s, u"Plain Text"_s, u"Python"_s, u"PHP"_s, u"Plain Text"_s}));
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_EQ(reports, QStringList{u"language text"_s});
}
