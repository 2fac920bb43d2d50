// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/PaneLayout.h"

#include "DocumentSurroundings.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Layouts as text: a letter is a document, a capital one the selected tab, and the active pane stands in brackets: "aB [C]".
class PaneLayoutTest : public testing::Test, protected DocumentSurroundings {
protected:
    [[nodiscard]] PaneLayout::Document document(QChar letter)
    {
        PaneLayout::Document &known = m_documents[letter.toLower()];
        return known ? known : known = TextDocument::generated(services, QString(letter.toLower()), {}, Language::plainText());
    }
    [[nodiscard]] PaneLayout::Documents documents(const QString &letters)
    {
        PaneLayout::Documents all;
        std::ranges::transform(letters, std::back_inserter(all), [this](QChar letter) { return document(letter); });
        return all;
    }
    [[nodiscard]] PaneLayout layout(const QString &text)
    {
        PaneLayout made;
        int active = 0;
        for (QString pane : text.split(u' ', Qt::SkipEmptyParts)) {
            active = pane.startsWith(u'[') ? made.paneCount() : active;
            pane.remove(u'[').remove(u']');
            const auto selected = std::ranges::find_if(pane, [](QChar letter) { return letter.isUpper(); }) - pane.begin();
            made = made.addingPane(documents(pane), int(selected));
        }
        return made.activating(active);
    }
    [[nodiscard]] static QString text(const PaneLayout &layout)
    {
        EXPECT_TRUE(layout.checkInvariants());
        QStringList panes;
        for (const PaneLayout::Pane &pane : layout.panes()) {
            QString tabs;
            for (int tab = 0; tab < pane.count(); ++tab) {
                const QString name = pane.tabs[size_t(tab)]->displayName();
                tabs += tab == pane.selected ? name.toUpper() : name;
            }
            panes << (&pane == layout.active() ? u'[' + tabs + u']' : tabs);
        }
        return panes.join(u' ');
    }

private:
    std::map<QChar, PaneLayout::Document> m_documents;
};

} // namespace

TEST_F(PaneLayoutTest, OperationsChangeWhatIsShownByTheRules)
{
    struct Case {
        const char *rule;
        QStringView before;
        std::function<PaneLayout(const PaneLayout &)> operation;
        QStringView after;
    };
    const auto showing = [this](const QString &letters) {
        return [this, letters](const PaneLayout &before) { return before.showing(documents(letters)); };
    };
    const auto closing = [this](char16_t letter) {
        return [this, letter](const PaneLayout &before) { return before.closing(*document(letter)); };
    };
    const Case cases[] = {
        {"the first tab makes the first pane", u"", showing(u"ab"_s), u"[aB]"},
        {"new ones come to the end of the active pane", u"aB [C]", showing(u"de"_s), u"aB [cdE]"},
        {"what has a tab is shown there", u"aB [C]", showing(u"a"_s), u"[Ab] C"},
        {"in the first pane that has it", u"A [B] aC", showing(u"a"_s), u"[A] B aC"},
        {"the last one is seen, with the others in their panes", u"aB [C]", showing(u"adc"_s), u"abD [C]"},
        {"what is added stays in the active pane", u"A [B]", [this](auto &now) { return now.adding(document(u'a')); }, u"A [bA]"},
        {"or is selected there", u"A [bC]", [this](auto &now) { return now.adding(document(u'b')); }, u"A [Bc]"},
        {"what is appended is not selected", u"A [Bc]", [this](auto &now) { return now.appending(documents(u"cad"_s)); }, u"A [Bcad]"},
        {"a pane comes to the end, and is not active", u"A [B]", [this](auto &now) { return now.addingPane(documents(u"cd"_s), 7); },
         u"A [B] cD"},
        {"a split shows the current one again", u"[aB] C", [](auto &now) { return now.split(Qt::Vertical); }, u"aB C [B]"},
        {"nothing cannot be split", u"", [](auto &now) { return now.split(Qt::Vertical); }, u""},
        {"panes go round", u"A B [C]", [](auto &now) { return now.activatingNext(1); }, u"[A] B C"},
        {"and back", u"[A] B C", [](auto &now) { return now.activatingNext(-1); }, u"A B [C]"},
        {"tabs go round", u"[abC] D", [](auto &now) { return now.selectingNext(1); }, u"[Abc] D"},
        {"and back, in the active pane", u"aB [Dcb]", [](auto &now) { return now.selectingNext(-1); }, u"aB [dcB]"},
        {"a tab is selected in any pane", u"[A] Bc", [](auto &now) { return now.selecting(1, 1); }, u"[A] bC"},
        {"there is no such tab", u"[A] Bc", [](auto &now) { return now.selecting(1, 2); }, u"[A] Bc"},
        {"what was closed is in its place again", u"A [bC]", [this](auto &now) { return now.inserting(document(u'd'), 1, 0); }, u"A [Dbc]"},
        {"in another pane too", u"A [bC]", [this](auto &now) { return now.inserting(document(u'd'), 0, 7); }, u"[aD] bC"},
        {"or at the end when its pane is gone", u"A [bC]", [this](auto &now) { return now.inserting(document(u'd'), 2, 0); }, u"A [bcD]"},
        {"and where it has a tab it stays", u"A [bC]", [this](auto &now) { return now.inserting(document(u'b'), 1, 1); }, u"A [Bc]"},
        {"nor such a pane", u"[A] Bc", [](auto &now) { return now.activating(2).selecting(-1, 0).closing(2, 0).moving(2, 0, 0); },
         u"[A] Bc"},
        {"a tab moves, what is selected stays so", u"[aBc]", [](auto &now) { return now.moving(0, 0, 2); }, u"[Bca]"},
        {"also when it is what moves", u"[abC]", [](auto &now) { return now.moving(0, 2, 0); }, u"[Cab]"},
        {"not beyond the end", u"[aBc]", [](auto &now) { return now.moving(0, 0, 3); }, u"[aBc]"},
        {"the next tab comes into the place of a closed one", u"[Abc]", [](auto &now) { return now.closing(0, 0); }, u"[Bc]"},
        {"the last one has only its neighbour", u"[abC]", [](auto &now) { return now.closing(0, 2); }, u"[aB]"},
        {"the place stays selected", u"[aBcd]", [](auto &now) { return now.closing(0, 0); }, u"[bCd]"},
        {"or the tab", u"[aBcd]", [](auto &now) { return now.closing(0, 0, PaneLayout::Selected::tab); }, u"[Bcd]"},
        {"a pane goes with its last tab, to the left", u"A B [C]", [](auto &now) { return now.closing(1, 0); }, u"[A] C"},
        {"or to the right", u"[A] B", [](auto &now) { return now.closing(0, 0); }, u"[B]"},
        {"it closes everywhere", u"A [abC] A D", closing(u'a'), u"[bC] D"},
        {"it was all there was", u"A [A]", closing(u'a'), u""},
        {"it is not here", u"[A]", closing(u'x'), u"[A]"},
        {"what is shown nowhere else goes to the left neighbour", u"A [bCad] D", [](auto &now) { return now.removing(1); }, u"[Abc] D"},
        {"the first pane has its neighbour at the right", u"[abC] cD E", [](auto &now) { return now.removing(0); }, u"[cDab] E"},
        {"the only pane stays", u"[A]", [](auto &now) { return now.removing(0); }, u"[A]"},
        {"others give all they have to the active one", u"Ab [C] aD", [](auto &now) { return now.removingOthers(); }, u"[Cbad]"},
        {"one after the other", u"A bC [D]", [](auto &now) { return now.removingOthers(); }, u"[Dbca]"},
    };
    for (const Case &one : cases) {
        const PaneLayout before = layout(one.before.toString());
        EXPECT_EQ(text(one.operation(before)).toStdString(), one.after.toString().toStdString())
            << one.rule << ": " << one.before.toString().toStdString();
        EXPECT_EQ(text(before), one.before.toString());
    }
    EXPECT_EQ(layout(u"[A]"_s).split(Qt::Vertical).orientation(), Qt::Vertical);
}
