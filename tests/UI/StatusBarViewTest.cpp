// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/StatusBarView.h"

#include "Base/Localization.h"
#include "Controls.h"
#include "Files/TextFile.h"
#include "Highlighting/LanguageRegistry.h"
#include "Text/Rope.h"
#include "UI/CaretHint.h"
#include "UI/StatisticsPopUp.h"
#include "Widgets/PopUpButton.h"

#include <QHelpEvent>
#include <QLabel>
#include <QTest>
#include <QToolTip>

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
        QObject::connect(&bar, &StatusBarView::reopenWithEncodingChosen, [this] { reports.append(u"reopen"_s); });
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
            if (!child->isWindow() && !child->isHidden() && !child->geometry().isEmpty()) {
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
    EXPECT_EQ(titlesOf(menuOf(u"Text Encoding"_s)).last(), u"(Reopen with Encoding…)"_s);

    state.canReopen = true;
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
    QMenu &encodings = menuOf(u"Textkodierung"_s);
    EXPECT_EQ(titlesOf(encodings).last(2), (QStringList{u"-"_s, u"Mit Kodierung neu öffnen …"_s}));
    encodings.actions().last()->trigger();
    EXPECT_EQ(reports.last(), u"reopen"_s);

    bar.setState(std::nullopt);
    EXPECT_EQ(texts(), QStringList{u"Kein Dokument"_s});
}

TEST_F(StatusBarViewTest, TheCursorOfACommandLineIsSeenHoweverLongThatIs)
{
    State state = someState();
    state.vim = {.mode = u"COMMAND"_s, .commandLine = u":"_s + QString(300, u'-')};
    bar.resize(400, bar.height());
    for (const qsizetype cursor : {1, 20, 150, 301}) {
        state.vim->cursor = cursor;
        bar.setState(state);
        const QImage image = parts()[0]->grab().toImage();
        const auto isTall = [&](int x) {
            int rows = 0;
            for (int y = 0; y < image.height(); ++y) {
                rows += image.pixel(x, y) == 0xFFFFFFFF ? 1 : 0;
            }
            return rows > image.height() / 2;
        };
        int columns = 0;
        for (int x = 0; x < image.width(); ++x) {
            columns += isTall(x) ? 1 : 0;
        }
        EXPECT_GE(columns, 2) << cursor;
        EXPECT_LE(columns, 5) << cursor;
    }
    state.vim->commandLine = u":a\x1b"_s;
    state.vim->cursor = 3;
    bar.setState(state);
    EXPECT_EQ(texts().first(), u" :a^[ "_s);
    EXPECT_EQ(parts()[0]->accessibleName(), *state.vim->commandLine);
}

TEST_F(StatusBarViewTest, TellsHowMuchTextThereIs)
{
    State state = someState();
    state.statistics = TextStatistics{.text = {TextCounts{1, 5, 1}, 2}};
    bar.setState(state);
    EXPECT_EQ(texts()[1], u"1 word"_s);
    state.statistics = TextStatistics{.text = {TextCounts{12345, 60000, 12000}, 700}, .selection = TextStatistics::Column{std::nullopt, 3}};
    bar.setState(state);
    EXPECT_EQ(texts()[1], u"… of 12,345 words"_s);

    QTest::keyClick(parts()[1], Qt::Key_Return);
    const auto *table = bar.findChild<StatisticsPopUp *>();
    ASSERT_TRUE(table && table->isVisible());
    EXPECT_TRUE(table->accessibleName().contains(u"Words: 12,345, Selection: …"_s));
    speakGerman();
    state.statistics->selection->counts = TextCounts{300, 1500, 290};
    bar.setState(state);
    EXPECT_EQ(texts()[1], u"300 von 12.345 Wörtern"_s);
    QStringList cells;
    for (const QLabel *label : table->findChildren<QLabel *>()) {
        cells << label->text();
    }
    EXPECT_EQ(cells.join(u'|'), u"Text|Auswahl|Wörter|12.345|300|Zeichen|60.000|1.500|Zeichen ohne Leerzeichen|48.000|1.210|Zeilen|700|3|"
                                u"Lesezeit|1 h 2 min|2 min"_s);
    EXPECT_EQ(readingTime(99), u"weniger als 1 min"_s);
}

TEST_F(StatusBarViewTest, OffersTheDictionariesOfTheText)
{
    QStringList chosen;
    QObject::connect(&bar, &StatusBarView::dictionariesChosen, [&chosen](const QStringList &names) { chosen << names.join(u'+'); });
    State state = someState();
    state.spelling = {.inUse = {u"de_AT"_s, u"xyz"_s}, .chosen = {}, .installed = {u"de_AT"_s, u"en_US"_s, u"xyz"_s}};
    bar.setState(state);
    EXPECT_EQ(texts()[1], u"de_AT, xyz"_s);
    QMenu &menu = menuOf(u"Dictionaries"_s);
    EXPECT_EQ(titlesOf(menu),
              (QStringList{u"*Automatic"_s, u"German (Austria) – de_AT"_s, u"English (United States) – en_US"_s, u"xyz"_s}));
    menu.actions()[2]->trigger();
    EXPECT_TRUE(titlesOf(menu).contains(u"*Automatic"_s)) << "until somebody says otherwise";
    state.spelling->chosen = {u"en_US"_s};
    bar.setState(state);
    EXPECT_EQ(titlesOf(menu).filter(u"*"_s), QStringList{u"*English (United States) – en_US"_s});
    for (const int entry : {1, 2, 0}) {
        menu.actions()[entry]->trigger();
    }
    EXPECT_EQ(chosen, (QStringList{u"en_US"_s, u"en_US+de_AT"_s, u""_s, u""_s}));
    state.spelling.reset();
    bar.setState(state);
    EXPECT_EQ(texts()[1], u"Ln 3, Col 2"_s);
}

TEST_F(StatusBarViewTest, HintsAtTheCharacterAtTheCaret)
{
    const auto hint = [](const QString &text, qsizetype caret, TextEncoding encoding, LineEnding ending = LineEnding::lf) {
        return caretHint(Rope(text), caret, encoding, ending).replace(u'\n', u'|');
    };
    EXPECT_EQ(hint(u"é"_s, 0, TextEncoding::windows1252),
              u"U+00E9 LATIN SMALL LETTER E WITH ACUTE|UTF-8: C3 A9|"_s + displayName(TextEncoding::windows1252) + u": E9"_s);
    EXPECT_EQ(hint(u"e\u0301x"_s, 2, TextEncoding::utf8), u"U+0078 LATIN SMALL LETTER X|UTF-8: 78|Column 2, counted in characters");
    EXPECT_EQ(hint(u"e\u0301"_s, 0, TextEncoding::isoLatin1),
              u"U+0065 LATIN SMALL LETTER E|U+0301 COMBINING ACUTE ACCENT|UTF-8: 65 CC 81|Not in "_s +
                  displayName(TextEncoding::isoLatin1));
    EXPECT_EQ(hint(u"a\nb"_s, 1, TextEncoding::utf16, LineEnding::crlf),
              QStringLiteral("U+000D CARRIAGE RETURN|U+000A LINE FEED|UTF-8: 0D 0A|%1: 0D 00 0A 00").arg(displayName(TextEncoding::utf16)));
    EXPECT_EQ(hint(u"\U0001F600"_s, 2, TextEncoding::utf8), u"End of text|Column 2, counted in characters");
    EXPECT_LT(hint(u"e"_s + QString(200, QChar(0x301)), 0, TextEncoding::utf8).size(), 600);

    State state = someState();
    state.caretHint = [] { return u"U+0078"_s; };
    bar.setState(state);
    QWidget *position = parts()[1];
    QHelpEvent help(QEvent::ToolTip, {}, position->mapToGlobal(QPoint()));
    QApplication::sendEvent(position, &help);
    EXPECT_TRUE(QToolTip::text().endsWith(u"\nU+0078"_s)) << qPrintable(QToolTip::text());
    position->setFocus();
    QFocusEvent focus(QEvent::FocusIn);
    QApplication::sendEvent(position, &focus);
    EXPECT_EQ(position->accessibleDescription(), u"U+0078"_s);
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
