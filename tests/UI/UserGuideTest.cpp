// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/UserGuide.h"

#include "App/MainMenu.h"
#include "Base/Localization.h"
#include "Commands/ActionKeys.h"
#include "Commands/Actions.h"
#include "Commands/KeyboardChords.h"
#include "WindowFixture.h"

#include <QDir>
#include <QRegularExpression>
#include <QSet>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

struct Mention {
    QString path;
    /// As the guide has them.
    QStringList keys;
};

/// Every **Menu › Command**, whether lines break in it or not, with the keys in the parentheses behind it.
std::vector<Mention> mentions()
{
    static const QRegularExpression form(u"\\*\\*([^*]+?\\s›\\s[^*]+)\\*\\*(?:\\s+\\(([^)]*)\\))?"_s);
    static const QRegularExpression between(u" or | oder "_s);
    std::vector<Mention> found;
    for (auto all = form.globalMatch(UserGuide::markdown()); all.hasNext();) {
        const auto match = all.next();
        const QString keys = match.captured(2).simplified();
        found.push_back({match.captured(1).simplified(), keys.isEmpty() ? QStringList() : keys.split(between)});
    }
    return found;
}

/// A key in the German guide or the English one, as the menu table has it.
QString portable(QString key)
{
    key.replace(u"Strg"_s, u"Ctrl"_s).replace(u"Umschalt"_s, u"Shift"_s);
    return key.replace(u"Einfg"_s, u"Ins"_s)
        .replace(u"Bild aufwärts"_s, u"PgUp"_s)
        .replace(u"Bild abwärts"_s, u"PgDown"_s)
        .replace(u"Hoch"_s, u"Up"_s)
        .replace(u"Herunter"_s, u"Down"_s);
}

using Paths = QHash<QString, MenuNode>;

/// Adds all menus, submenus and items, in the language of the interface.
void addPaths(const std::vector<MenuNode> &nodes, const QString &above, Paths &paths)
{
    for (const MenuNode &node : nodes) {
        const QString path = above.isEmpty() ? node.title : above + u" › "_s + node.title;
        paths.insert(path, node);
        addPaths(node.children, path, paths);
    }
}

std::string described(const QString &text)
{
    return Localization::current().locale().name().toStdString() + ": " + text.toStdString();
}

class UserGuideTest : public testing::TestWithParam<AppLanguage> {
protected:
    void SetUp() override { Localization::use(GetParam()); }
    void TearDown() override { Localization::use(AppLanguage::english); }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Languages, UserGuideTest, testing::Values(AppLanguage::english, AppLanguage::german),
                         [](const auto &test) { return test.param == AppLanguage::german ? "german" : "english"; });

TEST_P(UserGuideTest, NamesEveryCommandAsTheMenusDo)
{
    Paths paths;
    addPaths(MainMenu::build(), {}, paths);
    QSet<QString> named;
    for (const Mention &mention : mentions()) {
        const auto node = paths.find(mention.path);
        if (node == paths.end()) {
            ADD_FAILURE() << "no menu has “" << described(mention.path) << "”";
            continue;
        }
        named.insert(mention.path);
        QStringList keys;
        for (const QKeySequence &sequence : node->kind == MenuNode::Kind::item ? keySequences(*node->action) : QList<QKeySequence>()) {
            keys << sequence.toString(QKeySequence::PortableText);
        }
        QStringList given = mention.keys;
        std::ranges::transform(given, given.begin(), portable);
        EXPECT_TRUE(given.isEmpty() || given == keys) << described(mention.path) << " has " << keys.join(u", "_s).toStdString();
    }
    for (auto node = paths.begin(); node != paths.end(); ++node) {
        // A menu is described by its items, and what is chosen from a list by that list.
        const bool isCommand = node->kind == MenuNode::Kind::item && node->action && node->represented.isNull() &&
                               !node->action->isNamedLike(Actions::selectTab1);
        EXPECT_TRUE(!isCommand || named.contains(node.key())) << "the guide does not name “" << described(node.key()) << "”";
    }
}

using UserGuideWindow = WindowTest;

TEST_F(UserGuideWindow, IsATextOfTheLanguageThatNobodyEdits)
{
    workspace().open({put(u"a.txt"_s, "one\n")});
    ASSERT_TRUE(send(Actions::showUserGuide));
    EXPECT_EQ(tabs(), (QStringList{u"a.txt"_s, u"Quillet Guide.md"_s}));
    EXPECT_EQ(workspace().currentDocument()->language().id(), u"markdown"_s);
    const QString english = text();
    type(u"x"_s);
    send(Actions::deleteLine);
    keeper.performAutosave();
    EXPECT_EQ(text(), english);
    EXPECT_TRUE(session.waitUntilWritten(1min) && QDir(session.draftsDirectory()).isEmpty());

    // Asked for again it is the same tab, where the reader was.
    textView().setSelection(TextSelection::at(english.size() / 2));
    send(Actions::selectPreviousTab);
    send(Actions::showUserGuide);
    EXPECT_EQ(tabs().size(), 2);
    EXPECT_EQ(textView().selection().caret, english.size() / 2);
    preferences.set(Settings::language, AppLanguage::german);
    send(Actions::showUserGuide);
    EXPECT_EQ(tabs().size(), 2);
    EXPECT_TRUE(text().contains(u"Datei › Öffnen"_s));

    // The keys are those of the keyboard in use, and change with it.
    const auto shiftRight = [this] { return menuItem(u"Bearbeiten"_s, u"Nach rechts einrücken"_s)->shortcut().toString(); };
    EXPECT_EQ(shiftRight(), u"Ctrl+]"_s);
    KeyboardChords::use({QKeySequence(u"Ctrl+Ä"_s)[0].toCombined(), QKeySequence(u"Ctrl+#"_s)[0].toCombined()});
    notifications.post(KeyboardChords::didChangeNotification, nullptr);
    send(Actions::showUserGuide);
    EXPECT_EQ(shiftRight(), u"Ctrl+Ä"_s);
    EXPECT_TRUE(text().contains(u"(Strg+Ä)"_s) && text().contains(u"(Strg+#)"_s) && !text().contains(u"Strg+]"_s));
    KeyboardChords::use({});
    notifications.post(KeyboardChords::didChangeNotification, nullptr);

    // A window that has no tabs, such as a comparison, has it shown in one that does.
    send(Actions::closeTab);
    ASSERT_TRUE(application.perform(Actions::showUserGuide));
    EXPECT_EQ(tabs().last(), u"Quillet-Handbuch.md"_s);
}
