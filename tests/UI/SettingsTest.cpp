// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/EditorFont.h"
#include "WindowFixture.h"

#include <QCheckBox>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace {

enum Page { appearance, editing, saving, toolbar };

class SettingsTest : public WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        showSettings();
    }

    void showSettings() const
    {
        send(Actions::showSettings);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&settings()));
    }

    [[nodiscard]] static QWidget &settings()
    {
        const QWidgetList all = QApplication::topLevelWidgets();
        return **std::ranges::find(all, u"settings"_s, &QWidget::objectName);
    }
    [[nodiscard]] static QTabWidget &tabWidget()
    {
        const auto tabs = settings().findChildren<QTabWidget *>();
        return **std::ranges::find_if(tabs, [](const QTabWidget *each) { return !each->isHidden(); });
    }
    template<typename Widget>
    [[nodiscard]] static Widget &control(const char *name, Page page)
    {
        tabWidget().setCurrentIndex(page);
        return *tabWidget().findChild<Widget *>(QString::fromLatin1(name));
    }
    /// As a user does with the arrow keys.
    static void choose(QComboBox &popUp, const QString &text)
    {
        popUp.setFocus();
        QTest::keyClick(&popUp, Qt::Key_Home);
        for (int steps = popUp.count(); popUp.currentText() != text && steps > 0; --steps) {
            QTest::keyClick(&popUp, Qt::Key_Down);
        }
        EXPECT_EQ(popUp.currentText(), text);
    }
    /// The first rows, "+" before those that are checked.
    [[nodiscard]] static QString rowsOf(const QListWidget &list, int count)
    {
        QString rows;
        for (int row = 0; row < count; ++row) {
            rows += (list.item(row)->checkState() == Qt::Checked ? u"+"_s : u"-"_s) + list.item(row)->text() + u' ';
        }
        return rows.trimmed();
    }
};

/// The keys of the letters underlined on a page and in the tabs; each may be there once.
QStringList mnemonicsOf(const QTabWidget &tabs)
{
    QStringList titles;
    for (int index = 0; index < tabs.count(); ++index) {
        titles << tabs.tabText(index);
    }
    for (const QWidget *widget : tabs.currentWidget()->findChildren<QWidget *>()) {
        const auto *label = qobject_cast<const QLabel *>(widget);
        const auto *button = qobject_cast<const QAbstractButton *>(widget);
        if (label && label->buddy()) {
            titles << label->text();
        } else if (button && !button->text().isEmpty()) {
            titles << button->text();
        }
    }
    std::ranges::transform(titles, titles.begin(), [](const QString &title) { return QKeySequence::mnemonic(title).toString(); });
    return titles;
}

bool isClipped(const QWidget &widget)
{
    const auto *label = qobject_cast<const QLabel *>(&widget);
    if (label && label->wordWrap()) {
        return label->height() < label->heightForWidth(label->width());
    }
    const bool hasText = label || qobject_cast<const QAbstractButton *>(&widget) || qobject_cast<const QComboBox *>(&widget);
    return hasText && (widget.width() < widget.sizeHint().width() || widget.height() < widget.sizeHint().height());
}

} // namespace

// Every control stores at once, and shows what was stored by others.

TEST_F(SettingsTest, CheckboxesAreTheirPreferences)
{
    for (size_t page = 0; page < Settings::pages.size(); ++page) {
        for (const SettingRow &row : Settings::pages[page].rows) {
            const auto *setting = row.setting.as<bool>();
            if (!setting) {
                continue;
            }
            SCOPED_TRACE(setting->key.latin1());
            auto &box = control<QCheckBox>(row.controlName().latin1(), Page(page));
            const bool before = preferences.value(*setting);
            EXPECT_EQ(box.isChecked(), before);
            QTest::keyClick(&box, Qt::Key_Space);
            EXPECT_EQ(preferences.value(*setting), !before);
            preferences.set(*setting, before);
            EXPECT_EQ(box.isChecked(), before);
        }
    }
}

TEST_F(SettingsTest, PopUpsAreTheirPreferences)
{
    struct Case {
        const char *name;
        Page page;
        const AnySetting &setting;
        QString text;
        QString value;
    };
    for (const Case &row : {Case{"themePopUp", appearance, Settings::themeName, u"Solarized Dark"_s, u"Solarized Dark"_s},
                            {"tabWidthPopUp", editing, Settings::tabWidth, u"2"_s, u"2"_s},
                            {"vimPresetPopUp", editing, Settings::vimKeymapPreset, u"Vim with LazyVim keys"_s, u"lazyvim"_s},
                            {"toolbarStyle", toolbar, Settings::toolbarStyle, u"Hidden"_s, u"hidden"_s}}) {
        SCOPED_TRACE(row.name);
        auto &popUp = control<QComboBox>(row.name, row.page);
        const QString before = popUp.currentText();
        const QString stored = preferences.storedValue(row.setting).toString();
        choose(popUp, row.text);
        EXPECT_EQ(preferences.storedValue(row.setting).toString(), row.value);
        EXPECT_TRUE(preferences.setFromText(row.setting, stored));
        EXPECT_EQ(popUp.currentText(), before);
    }
    preferences.set(Settings::themeName, u"Gone"_s);
    EXPECT_EQ(control<QComboBox>("themePopUp", appearance).currentText(), u"System"_s) << "which is what is shown then";
    auto &style = control<QComboBox>("toolbarStyle", toolbar);
    QWheelEvent wheel({4, 4}, style.mapToGlobal(QPointF(4, 4)), {}, {0, -120}, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&style, &wheel);
    EXPECT_EQ(preferences.value(Settings::toolbarStyle), ToolbarStyle::combined) << "the wheel scrolls";
    // An unusual width is shown as long as it is stored.
    auto &widths = control<QComboBox>("tabWidthPopUp", editing);
    preferences.set(Settings::tabWidth, 5);
    EXPECT_EQ(widths.currentText(), u"5"_s);
    choose(widths, u"2"_s);
    EXPECT_EQ(widths.findText(u"5"_s), -1);
}

TEST_F(SettingsTest, IntervalIsReadWhenItsEditingEnds)
{
    auto &field = control<QLineEdit>("intervalField", saving);
    const auto type = [&field](const QString &text) {
        field.setFocus();
        field.selectAll();
        QTest::keyClicks(&field, text);
    };
    for (const auto &[typed, stored, shown] : {std::tuple(u"0.1"_s, 0.5, u"0.5"_s),
                                               {u"2,25"_s, 2.25, u"2.25"_s},
                                               {u" 3600 "_s, 3600., u"3600"_s},
                                               {u"inf"_s, 3., u"3"_s},
                                               {u"1.000,5"_s, 3., u"3"_s},
                                               {u"-4"_s, 0.5, u"0.5"_s}}) {
        SCOPED_TRACE(typed.toStdString());
        preferences.set(Settings::autosaveInterval, 3);
        type(typed);
        preferences.set(Settings::wrapLines, !preferences.value(Settings::wrapLines));
        EXPECT_EQ(field.text(), typed) << "other changes leave it alone";
        EXPECT_EQ(preferences.value(Settings::autosaveInterval), 3);
        QTest::keyClick(&field, Qt::Key_Return);
        EXPECT_EQ(preferences.value(Settings::autosaveInterval), stored);
        EXPECT_EQ(field.text(), shown);
    }
    type(u"8"_s);
    QTest::keyClick(&settings(), Qt::Key_Escape);
    EXPECT_EQ(preferences.value(Settings::autosaveInterval), 8) << "closing ends it too";
}

TEST_F(SettingsTest, FontIsChosenInItsPanel)
{
    auto &label = control<QLabel>("fontLabel", appearance);
    auto &note = control<QLabel>("fontNote", appearance);
    auto &desktops = control<QPushButton>("desktopFontButton", appearance);
    EXPECT_TRUE(!note.isVisible() && !label.text().contains(u"SFMono")) << "nobody has chosen the default";
    EXPECT_FALSE(desktops.isEnabled());
    preferences.set(Settings::fontName, u"No Such Font"_s);
    preferences.set(Settings::fontSize, 12.6);
    const QString used = QFontInfo(editorFont(preferences)).family();
    EXPECT_EQ(label.text(), u"No Such Font 13"_s);
    EXPECT_TRUE(note.isVisible() && note.text().contains(used));

    const QString family = QFontDatabase::families().value(0);
    presenter.answerFont({family, 200});
    QTest::keyClick(&control<QPushButton>("fontButton", appearance), Qt::Key_Space);
    EXPECT_EQ(preferences.value(Settings::fontName), family);
    EXPECT_EQ(preferences.value(Settings::fontSize), 96);
    EXPECT_EQ(label.text(), family + u" 96"_s);
    EXPECT_FALSE(note.isVisible());
    desktops.click();
    EXPECT_FALSE(preferences.isSet(Settings::fontName) || preferences.isSet(Settings::fontSize));
}

TEST_F(SettingsTest, AnotherLanguageMakesThePagesAnew)
{
    auto &popUp = control<QComboBox>("languagePopUp", appearance);
    const QPoint place = settings().pos();
    popUp.setFocus();
    popUp.setCurrentIndex(popUp.findText(u"English"_s));
    QTest::keyClick(&popUp, Qt::Key_Down);
    EXPECT_EQ(preferences.value(Settings::language), AppLanguage::german);
    EXPECT_EQ(settings().windowTitle(), u"Einstellungen"_s);
    EXPECT_EQ(settings().pos(), place);
    EXPECT_EQ(settings().focusWidget(), &control<QComboBox>("languagePopUp", appearance));

    tabWidget().setCurrentIndex(saving);
    QTest::keyClick(&settings(), Qt::Key_W, Qt::ControlModifier);
    preferences.set(Settings::language, AppLanguage::english);
    EXPECT_FALSE(settings().isVisible());
    showSettings();
    EXPECT_EQ(settings().windowTitle(), u"Settings"_s);
    EXPECT_EQ(tabWidget().currentIndex(), saving);
}

// The list of the toolbar's actions.

TEST_F(SettingsTest, ToolbarActionsAreCheckedAndMoved)
{
    auto &list = control<QListWidget>("toolbarItems", toolbar);
    auto &up = control<QPushButton>("moveUp", toolbar);
    auto &down = control<QPushButton>("moveDown", toolbar);
    const auto stored = [this] { return preferences.value(Settings::toolbarItemIDs).join(u' '); };
    EXPECT_EQ(rowsOf(list, 7), u"+New +Open +Save +Backup +Terminal +Move to Trash -Save As"_s);
    EXPECT_FALSE(up.isEnabled());

    list.setFocus();
    list.setCurrentRow(1);
    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_EQ(stored(), u"new save backup terminal trash"_s);
    EXPECT_EQ(rowsOf(list, 3), u"+New -Open +Save"_s) << "an unchecked row stays where it is";
    QTest::keyClick(&list, Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_EQ(stored(), u"new save open backup terminal trash"_s);
    up.click();
    up.click();
    EXPECT_EQ(stored(), u"open new save backup terminal trash"_s);
    EXPECT_EQ(list.currentRow(), 0);
    EXPECT_FALSE(up.isEnabled());
    list.setCurrentRow(list.count() - 1);
    EXPECT_FALSE(down.isEnabled());
    EXPECT_TRUE(up.isEnabled());
    // What a drop does.
    ASSERT_TRUE(list.model()->moveRow({}, 0, {}, 3));
    EXPECT_EQ(stored(), u"new save open backup terminal trash"_s);
}

TEST_F(SettingsTest, ToolbarFollowsOthersAndGoesBackToItsDefaults)
{
    auto &list = control<QListWidget>("toolbarItems", toolbar);
    const auto stored = [this] { return preferences.value(Settings::toolbarItemIDs).join(u' '); };
    preferences.set(Settings::toolbarItemIDs, {u"find"_s, u"later"_s, u"new"_s});
    EXPECT_EQ(rowsOf(list, 3), u"+Find +New -Open"_s);
    list.setCurrentRow(2);
    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_EQ(stored(), u"find new open"_s) << "what is no row is not kept";
    preferences.set(Settings::toolbarStyle, ToolbarStyle::hidden);
    control<QPushButton>("restoreDefaults", toolbar).click();
    EXPECT_EQ(stored(), u"new open save backup terminal trash"_s);
    EXPECT_EQ(preferences.value(Settings::toolbarStyle), ToolbarStyle::combined);
}

// Whose the Control chords are.

TEST_F(SettingsTest, ControlKeysAreShownOnceAndChosenFromThenOn)
{
    const auto panel = [] { return settings().findChild<QDialog *>(u"vimChordsPanel"_s); };
    const auto choice = [&](const QString &name) {
        const auto all = panel()->findChildren<QRadioButton *>();
        const auto found = std::ranges::find(all, name, &QRadioButton::accessibleName);
        return found == all.end() ? nullptr : *found;
    };
    const auto close = [&] {
        QTest::keyClick(panel(), Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(panel(), nullptr);
    };
    auto &box = control<QCheckBox>("vimMode", editing);
    preferences.set(Settings::vimMode, true);
    EXPECT_EQ(panel(), nullptr) << "nobody switched it on here";
    box.click();
    box.click();
    ASSERT_NE(panel(), nullptr);
    EXPECT_FALSE(panel()->isModal());
    const QString closeTab = u"Ctrl+W, Quillet: Close Tab"_s;
    choice(closeTab)->click();
    EXPECT_EQ(preferences.value(Settings::vimChords), QStringList{u"w=quillet"_s});
    preferences.set(Settings::vimChords, {u"later"_s, u"d=quillet"_s});
    EXPECT_TRUE(choice(u"Ctrl+W, Vim: split, close and choose panes, while inserting: delete a word"_s)->isChecked());
    EXPECT_TRUE(choice(u"Ctrl+D, Quillet: Select Next Occurrence"_s)->isChecked());
    panel()->findChild<QPushButton *>(u"restoreDefaults"_s)->click();
    EXPECT_EQ(preferences.value(Settings::vimChords), QStringList{u"later"_s});
    EXPECT_EQ(choice(u"Ctrl+S, Vim: save"_s), nullptr);
    preferences.set(Settings::vimKeymapPreset, VimKeymapPreset::lazyVim);
    EXPECT_TRUE(choice(u"Ctrl+S, Vim: save"_s)->isChecked());
    close();
    box.click();
    box.click();
    EXPECT_EQ(panel(), nullptr);
    control<QPushButton>("vimChords", editing).click();
    preferences.set(Settings::language, AppLanguage::german);
    EXPECT_TRUE(choice(u"Ctrl+W, Quillet: Tab schließen"_s)) << "made anew";
    settings().close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(panel(), nullptr);
}

// Keys, readers, words.

TEST_F(SettingsTest, EveryPageHasLettersAndRoomInBothLanguages)
{
    for (const AppLanguage language : {AppLanguage::english, AppLanguage::german}) {
        preferences.set(Settings::language, language);
        for (int page = 0; page < tabWidget().count(); ++page) {
            SCOPED_TRACE(tabWidget().tabText(page).toStdString());
            tabWidget().setCurrentIndex(page);
            QCoreApplication::processEvents();
            QStringList letters = mnemonicsOf(tabWidget());
            EXPECT_FALSE(letters.contains(QString())) << "a title without a letter";
            EXPECT_EQ(letters.removeDuplicates(), 0);
            for (const QWidget *widget : tabWidget().currentWidget()->findChildren<QWidget *>()) {
                EXPECT_FALSE(widget->isVisible() && isClipped(*widget)) << widget->objectName().toStdString();
            }
        }
    }
}

// The window among the others.

TEST_F(SettingsTest, ActsOnTheWindowThatWasInFrontAndCountsAsNone)
{
    MainWindowController &second = application.makeWindow();
    second.comeToFront();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&second));
    showSettings();
    EXPECT_EQ(application.frontmostWindow(), &second);
    QTest::keyClick(&control<QPushButton>("showKeyReference", editing), Qt::Key_Space);
    EXPECT_TRUE(QTest::qWaitForWindowActive(&second));
    const QSignalSpy finished(&application, &AppDelegate::finished);
    second.close();
    window().close();
    EXPECT_EQ(finished.count(), 1);
}
