// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Commands/Actions.h"
#include "Editor/ExternalChangeBanner.h"
#include "UI/StatusBarView.h"
#include "WindowFixture.h"

#include <QAccessible>
#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// What a screen reader would say by itself: notices as they are, tabs with + or − when the selection comes or goes.
QStringList *heard = nullptr;

void listen(QAccessibleEvent *event)
{
    const QAccessibleInterface *source = event->accessibleInterface();
    if (event->type() == QAccessible::ObjectShow && source->role() == QAccessible::Notification) {
        *heard << source->text(QAccessible::Name);
    } else if (event->type() == QAccessible::Selection) {
        *heard << u'+' + source->text(QAccessible::Name);
    } else if (event->type() == QAccessible::SelectionRemove) {
        *heard << u'-' + source->text(QAccessible::Name);
    }
}

/// Made before what is listened to, as the reader is there before the program.
class Reader {
protected:
    Reader()
    {
        accessibility().setActive(true);
        heard = &m_heard;
        QAccessible::installUpdateHandler(listen);
    }
    ~Reader()
    {
        QAccessible::installUpdateHandler(nullptr);
        accessibility().setActive(false);
    }
    static QPlatformAccessibility &accessibility() { return *QGuiApplicationPrivate::platformIntegration()->accessibility(); }
    /// One after the other, each preceded by a semicolon.
    std::string takeHeard() { return std::exchange(m_heard, {u""_s}).join(u';').toStdString(); }

private:
    QStringList m_heard{u""_s};
};

class WindowAccessibility : private Reader, public WindowTest {
protected:
    using Reader::takeHeard;

    /// Notes the roles below `node`, and complains of controls without a name and of those that their parent does not know.
    void visit(QAccessibleInterface &node, QSet<QAccessible::Role> &roles)
    {
        for (int index = 0; index < node.childCount(); ++index) {
            QAccessibleInterface *child = node.child(index);
            ASSERT_NE(child, nullptr) << qPrintable(node.text(QAccessible::Name));
            const QString name = child->text(QAccessible::Name);
            roles << child->role();
            // Closed menus are looked through as well.
            const bool isSeen = !child->state().invisible || child->role() == QAccessible::MenuItem;
            const bool needsName = isSeen && controls.contains(child->role());
            EXPECT_FALSE(needsName && (name.isEmpty() || name.contains(u'\t')))
                << "role " << child->role() << " “" << qPrintable(name) << "” in " << qPrintable(node.text(QAccessible::Name));
            EXPECT_EQ(child->parent(), &node) << qPrintable(name);
            EXPECT_EQ(node.indexOfChild(child), index) << qPrintable(name);
            EXPECT_FALSE(child->state().focused && !child->state().focusable) << "role " << child->role();
            visit(*child, roles);
        }
    }

    const QSet<QAccessible::Role> controls{QAccessible::PushButton,  QAccessible::CheckBox, QAccessible::EditableText, QAccessible::PageTab,
                                           QAccessible::PageTabList, QAccessible::MenuItem, QAccessible::ToolBar};
};

} // namespace

TEST_F(WindowAccessibility, EveryControlIsReachedAndHasAName)
{
    type(u"find"_s);
    send(Actions::splitEditorRight);
    QTest::keySequence(&textView(), QKeySequence(u"Ctrl+F"_s));
    QTest::keyClicks(QApplication::focusWidget(), u"f"_s);
    for (const ToolbarStyle style : {ToolbarStyle::combined, ToolbarStyle::separate}) {
        preferences.set(Settings::toolbarStyle, style);
        QSet<QAccessible::Role> roles;
        visit(*QAccessible::queryAccessibleInterface(&window()), roles);
        EXPECT_TRUE(roles.contains(controls)) << "toolbar, tabs, menus and text are all there";
        EXPECT_TRUE(roles.contains(QAccessible::StatusBar));
    }
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&textView())->childCount(), 0);
}

TEST_F(WindowAccessibility, TabsAndNoticesAreSaidOnceEach)
{
    application.open({put(u"a"_s, "tea")});
    send(Actions::newDocument);
    takeHeard();
    send(Actions::selectTab1);
    EXPECT_EQ(takeHeard(), ";+a;-Untitled");
    StatusBarView &bar = workspace().statusBar();
    bar.flash(u"Saved"_s, 2s);
    bar.flash(u"Saved"_s, 2s);
    EXPECT_EQ(takeHeard(), ";Saved;Saved") << "the second while the first is there";
    scheduler.advance(2s);
    EXPECT_EQ(takeHeard(), "");

    QTest::keySequence(&textView(), QKeySequence(u"Ctrl+F"_s));
    takeHeard();
    for (const auto &[key, said] : {std::pair(u"e"_s, ";1 of 1"), {u"x"_s, ";Not found"}}) {
        QTest::keyClicks(QApplication::focusWidget(), key);
        scheduler.advance(1s);
        EXPECT_EQ(takeHeard(), said);
    }

    ExternalChangeBanner banner(&window());
    banner.configure(TextDocument::ExternalState::conflicted, u"a"_s);
    EXPECT_EQ(takeHeard(), "");
    banner.show();
    EXPECT_EQ(takeHeard(), ";“a” changed on disk and has unsaved edits here.");
    banner.configure(TextDocument::ExternalState::deleted, u"a"_s);
    EXPECT_EQ(takeHeard(), ";“a” was deleted or moved.");
}

TEST_F(WindowAccessibility, ReportsTheModeOfModalEditing)
{
    std::ignore = takeHeard();
    preferences.set(Settings::vimMode, true);
    for (const auto &[keys, said] :
         {std::pair(u""_s, ";NORMAL"), {u"i"_s, ";INSERT"}, {u"\x1b"_s, ";NORMAL"}, {u"2"_s, ""}, {u"v"_s, ";VISUAL"}}) {
        type(keys);
        EXPECT_EQ(takeHeard(), said) << keys.toStdString();
    }
}
