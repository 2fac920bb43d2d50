// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Editor/EditorFont.h"
#include "UI/ToolbarCatalogue.h"
#include "Widgets/SettingsForm.h"
#include "WindowFixture.h"

#include <QAccessible>
#include <QCheckBox>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>

#include <set>

using namespace Qt::StringLiterals;

namespace {

enum Page { appearance, editing, saving, toolbar };

struct PopUpCase {
    const char *name;
    Page page;
    const AnySetting &setting;
    const char *text;
    const char *value;
};

constexpr auto popUpCases = std::to_array<PopUpCase>({
    {"themePopUp", appearance, Settings::themeName, "Solarized Dark", "Solarized Dark"},
    {"tabWidthPopUp", editing, Settings::tabWidth, "2", "2"},
    {"vimPresetPopUp", editing, Settings::vimKeymapPreset, "Vim with LazyVim keys", "lazyvim"},
    {"toolbarStyle", toolbar, Settings::toolbarStyle, "Hidden", "hidden"},
});

class SettingsTest : public WindowTest {
protected:
    void SetUp() override
    {
        Localization::use(AppLanguage::english);
        preferences.setLanguageResolver(Localization::use);
        WindowTest::SetUp();
        showSettings();
    }
    void TearDown() override { Localization::use(AppLanguage::english); }

    void showSettings() const
    {
        send(Actions::showSettings);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&settings()));
    }

    [[nodiscard]] static std::vector<QWidget *> settingsWindows()
    {
        std::vector<QWidget *> found;
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == u"settings"_s) {
                found.push_back(widget);
            }
        }
        return found;
    }
    [[nodiscard]] static QWidget &settings() { return *settingsWindows().at(0); }
    [[nodiscard]] static QTabWidget &tabWidget()
    {
        for (auto *tabs : settings().findChildren<QTabWidget *>()) {
            if (!tabs->isHidden()) {
                return *tabs;
            }
        }
        throw std::runtime_error("no pages");
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
    [[nodiscard]] static QStringList titlesOf(const QListWidget &list)
    {
        QStringList titles;
        for (int row = 0; row < list.count(); ++row) {
            titles << (list.item(row)->checkState() == Qt::Checked ? u"+"_s : u"-"_s) + list.item(row)->text();
        }
        return titles;
    }
};

/// The letter that a title has underlined; null for none.
QChar mnemonicOf(const QString &title)
{
    for (qsizetype place = title.indexOf(u'&'); place >= 0 && place + 1 < title.size(); place = title.indexOf(u'&', place + 2)) {
        if (title[place + 1] != u'&') {
            return title[place + 1].toLower();
        }
    }
    return {};
}

/// The letters of a page and the tabs; each may be there once.
QString mnemonicsOf(const QTabWidget &tabs)
{
    QString letters;
    for (int index = 0; index < tabs.count(); ++index) {
        letters += mnemonicOf(tabs.tabText(index));
    }
    for (const QWidget *widget : tabs.currentWidget()->findChildren<QWidget *>()) {
        const auto *label = qobject_cast<const QLabel *>(widget);
        const auto *button = qobject_cast<const QAbstractButton *>(widget);
        if (label && label->buddy()) {
            letters += mnemonicOf(label->text());
        } else if (button && !button->text().isEmpty()) {
            letters += mnemonicOf(button->text());
        }
    }
    return letters;
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
    for (const PopUpCase &row : popUpCases) {
        SCOPED_TRACE(std::string(row.name) + " " + row.text);
        auto &popUp = control<QComboBox>(row.name, row.page);
        const QString before = popUp.currentText();
        const QString stored = preferences.storedValue(row.setting).toString();
        choose(popUp, QString::fromLatin1(row.text));
        EXPECT_EQ(preferences.storedValue(row.setting).toString(), QString::fromLatin1(row.value));
        EXPECT_TRUE(preferences.setFromText(row.setting, stored));
        EXPECT_EQ(popUp.currentText(), before);
    }
    preferences.set(Settings::themeName, u"Gone"_s);
    EXPECT_EQ(control<QComboBox>("themePopUp", appearance).currentText(), u"System"_s) << "which is what is shown then";
    auto &style = control<QComboBox>("toolbarStyle", toolbar);
    QWheelEvent wheel({4, 4}, style.mapToGlobal(QPointF(4, 4)), {}, {0, -120}, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&style, &wheel);
    EXPECT_EQ(preferences.value(Settings::toolbarStyle), ToolbarStyle::combined) << "the wheel scrolls";
    QTest::keyClick(&style, 'h');
    EXPECT_EQ(preferences.value(Settings::toolbarStyle), ToolbarStyle::hidden);
}

TEST_F(SettingsTest, UnusualIndentWidthIsShownAsLongAsItIsStored)
{
    auto &popUp = control<QComboBox>("tabWidthPopUp", editing);
    const auto titles = [&popUp] {
        QStringList texts;
        for (int index = 0; index < popUp.count(); ++index) {
            texts << popUp.itemText(index);
        }
        return texts.join(u' ');
    };
    preferences.set(Settings::tabWidth, 5);
    EXPECT_EQ(titles(), u"2 3 4 5 8"_s);
    choose(popUp, u"2"_s);
    EXPECT_EQ(titles(), u"2 3 4 8"_s);
}

TEST_F(SettingsTest, IntervalIsReadWhenItsEditingEnds)
{
    struct Case {
        QString typed;
        double stored;
        QString shown;
    };
    auto &field = control<QLineEdit>("intervalField", saving);
    const auto type = [&field](const QString &text) {
        field.setFocus();
        field.selectAll();
        QTest::keyClick(&field, Qt::Key_Delete);
        QTest::keyClicks(&field, text);
    };
    for (const Case &row : {Case{u"0.1"_s, 0.5, u"0.5"_s}, Case{u"2,25"_s, 2.25, u"2.25"_s}, Case{u" 3600 "_s, 3600, u"3600"_s},
                            Case{u"inf"_s, 3, u"3"_s}, Case{u"1.000,5"_s, 3, u"3"_s}, Case{u"-4"_s, 0.5, u"0.5"_s}}) {
        SCOPED_TRACE(row.typed.toStdString());
        preferences.set(Settings::autosaveInterval, 3);
        type(row.typed);
        preferences.set(Settings::wrapLines, !preferences.value(Settings::wrapLines));
        EXPECT_EQ(field.text(), row.typed) << "other changes leave it alone";
        EXPECT_EQ(preferences.value(Settings::autosaveInterval), 3);
        QTest::keyClick(&field, Qt::Key_Return);
        EXPECT_EQ(preferences.value(Settings::autosaveInterval), row.stored);
        EXPECT_EQ(field.text(), row.shown);
    }
    type(u"8"_s);
    QTest::keyClick(&settings(), Qt::Key_Escape);
    EXPECT_EQ(preferences.value(Settings::autosaveInterval), 8) << "closing ends it too";
    showSettings();
}

TEST_F(SettingsTest, FontIsChosenInItsPanel)
{
    auto &label = control<QLabel>("fontLabel", appearance);
    auto &note = control<QLabel>("fontNote", appearance);
    auto &button = control<QPushButton>("fontButton", appearance);
    preferences.set(Settings::fontName, u"No Such Font"_s);
    preferences.set(Settings::fontSize, 12.6);
    const QString used = QFontInfo(editorFont(preferences)).family();
    EXPECT_EQ(label.text(), u"No Such Font 13"_s);
    EXPECT_TRUE(note.isVisible());
    EXPECT_TRUE(note.text().contains(used));

    QTest::keyClick(&button, Qt::Key_Space);
    ASSERT_EQ(presenter.fontPanels().size(), 1);

    const QString family = QFontDatabase::families().value(0);
    presenter.answerFont({family, 200});
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(preferences.value(Settings::fontName), family);
    EXPECT_EQ(preferences.value(Settings::fontSize), 96);
    EXPECT_EQ(label.text(), family + u" 96"_s);
    EXPECT_FALSE(note.isVisible());
}

TEST_F(SettingsTest, AnotherLanguageMakesThePagesAnew)
{
    auto &popUp = control<QComboBox>("languagePopUp", appearance);
    const QPoint place = settings().pos();
    popUp.setFocus();
    popUp.setCurrentIndex(popUp.findText(u"English"_s));
    QTest::keyClick(&popUp, Qt::Key_Down);
    EXPECT_EQ(preferences.value(Settings::language), AppLanguage::german);
    EXPECT_TRUE(settings().isVisible());
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
    EXPECT_EQ(settingsWindows().size(), 1);
}

// The list of the toolbar's actions.

TEST_F(SettingsTest, ToolbarActionsAreCheckedAndMoved)
{
    auto &list = control<QListWidget>("toolbarItems", toolbar);
    auto &up = control<QPushButton>("moveUp", toolbar);
    auto &down = control<QPushButton>("moveDown", toolbar);
    const auto stored = [this] { return preferences.value(Settings::toolbarItemIDs).join(u' '); };
    EXPECT_EQ(titlesOf(list).mid(0, 7).join(u' '), u"+New +Open +Save +Backup +Terminal +Move to Trash -Save As"_s);
    EXPECT_FALSE(up.isEnabled());

    list.setFocus();
    list.setCurrentRow(1);
    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_EQ(stored(), u"new save backup terminal trash"_s);
    EXPECT_EQ(titlesOf(list).value(1), u"-Open"_s) << "an unchecked row stays where it is";
    QTest::keyClick(&list, Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_EQ(stored(), u"new save open backup terminal trash"_s);
    QTest::mouseClick(&up, Qt::LeftButton);
    QTest::mouseClick(&up, Qt::LeftButton);
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
    preferences.set(Settings::toolbarItemIDs, {u"find"_s, u"later"_s, u"new"_s});
    EXPECT_EQ(titlesOf(list).mid(0, 3).join(u' '), u"+Find +New -Open"_s);
    list.setCurrentRow(2);
    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_EQ(preferences.value(Settings::toolbarItemIDs), QStringList({u"find"_s, u"new"_s, u"open"_s})) << "what is no row is not kept";

    preferences.set(Settings::toolbarStyle, ToolbarStyle::hidden);
    QTest::mouseClick(&control<QPushButton>("restoreDefaults", toolbar), Qt::LeftButton);
    EXPECT_EQ(preferences.value(Settings::toolbarItemIDs).join(u' '), u"new open save backup terminal trash"_s);
    EXPECT_EQ(preferences.value(Settings::toolbarStyle), ToolbarStyle::combined);
}

// Keys, readers, words.

TEST_F(SettingsTest, EveryPageHasLettersNamesAndRoomInBothLanguages)
{
    for (const AppLanguage language : {AppLanguage::english, AppLanguage::german}) {
        preferences.set(Settings::language, language);
        for (int page = 0; page < tabWidget().count(); ++page) {
            SCOPED_TRACE(tabWidget().tabText(page).toStdString());
            tabWidget().setCurrentIndex(page);
            QCoreApplication::processEvents();
            const QString letters = mnemonicsOf(tabWidget());
            EXPECT_FALSE(letters.contains(QChar())) << "a title without a letter";
            EXPECT_EQ(std::set<QChar>(letters.begin(), letters.end()).size(), size_t(letters.size())) << letters.toStdString();

            const QWidget *current = tabWidget().currentWidget();
            for (QWidget *widget : current->findChildren<QWidget *>()) {
                if (widget->isVisible() && widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus)) {
                    const QAccessibleInterface *reader = QAccessible::queryAccessibleInterface(widget);
                    EXPECT_FALSE(reader->text(QAccessible::Name).isEmpty()) << widget->objectName().toStdString();
                }
                EXPECT_FALSE(widget->isVisible() && isClipped(*widget)) << widget->objectName().toStdString();
            }
        }
    }
}

// The window among the others.

TEST_F(SettingsTest, CountsAsNoEditorWindow)
{
    ASSERT_EQ(settingsWindows().size(), 1);
    QTest::keyClick(&settings(), Qt::Key_Escape);
    EXPECT_FALSE(settings().isVisible());
    showSettings();
    EXPECT_EQ(settingsWindows().size(), 1);
    QSignalSpy finished(&application, &AppDelegate::finished);
    window().close();
    EXPECT_EQ(finished.count(), 1);
}

TEST_F(SettingsTest, ActsOnTheWindowThatWasInFront)
{
    MainWindowController &second = application.makeWindow();
    second.comeToFront();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&second));
    showSettings();
    EXPECT_EQ(application.frontmostWindow(), &second);
    QTest::keyClick(&control<QPushButton>("showKeyReference", editing), Qt::Key_Space);
    EXPECT_TRUE(QTest::qWaitForWindowActive(&second));
}
