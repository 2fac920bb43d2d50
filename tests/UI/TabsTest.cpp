// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TabPlace.h"
#include "WindowFixture.h"

#include <QContextMenuEvent>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr auto save = AlertReply::firstButton;
constexpr auto cancel = AlertReply::secondButton;
constexpr auto dontSave = AlertReply::thirdButton;

class TabsTest : public WindowTest {
protected:
    /// What a tab's menu items stand for.
    [[nodiscard]] QVariant place(int tab, size_t inPane = 0) const
    {
        return QVariant::fromValue(TabPlace{pane(inPane).id(), pane(inPane).documents()[size_t(tab)]->id()});
    }
    /// The texts of one pane, with what is typed into some.
    void openTexts(const QStringList &edited)
    {
        workspace().open({put(u"a"_s, "1"), put(u"b"_s, "2"), put(u"c"_s, "3"), put(u"d"_s, "4")});
        for (int tab = 0; tab < 4; ++tab) {
            send(*std::to_array({&Actions::selectTab1, &Actions::selectTab2, &Actions::selectTab3, &Actions::selectTab4})[size_t(tab)]);
            if (edited.contains(tabs()[tab])) {
                type(u"x"_s);
            }
        }
    }
    [[nodiscard]] QString shown() const { return workspace().currentDocument()->displayName(); }
    [[nodiscard]] QStringList asked() const
    {
        QStringList names;
        for (const Alert &alert : presenter.alerts()) {
            names << alert.messageText.section(u'“', 1).section(u'”', 0, 0);
        }
        return names;
    }
    /// What stands in the tabs of a pane, as it is read out.
    [[nodiscard]] QStringList titles(size_t inPane = 0) const
    {
        QStringList names;
        for (const TabItemView *item : pane(inPane).tabBar().findChildren<TabItemView *>()) {
            names << (item->isHidden() ? QString() : item->accessibleName());
        }
        names.removeAll(QString());
        return names;
    }
};

} // namespace

