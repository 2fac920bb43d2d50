// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/Theme.h"

#include "Base/ColorContrast.h"

#include <gtest/gtest.h>

TEST(Theme, IsFoundByItsExactNameElseByTheAppearance)
{
    EXPECT_EQ(Theme::named(u"Dark"), &Theme::dark());
    EXPECT_EQ(Theme::named(u"Solarized Light"), &Theme::solarizedLight());
    EXPECT_EQ(Theme::named(u"dark"), nullptr);
    EXPECT_EQ(Theme::resolved(u"Solarized Dark", Appearance::light), Theme::solarizedDark());
    for (const QStringView unknown : {u"System", u"", u"No Longer There"}) {
        EXPECT_EQ(Theme::resolved(unknown, Appearance::dark), Theme::dark());
        EXPECT_EQ(Theme::resolved(unknown, Appearance::light), Theme::light());
        EXPECT_EQ(Theme::resolved(unknown, std::nullopt), Theme::light());
    }
}

TEST(Theme, IsMovedNoFurtherThanItTakes)
{
    for (const Theme &own : Theme::all()) {
        EXPECT_EQ(&Theme::shown(own, Contrast::own), &own);
        for (const Contrast wanted : {Contrast::legible, Contrast::high}) {
            const Theme &shown = Theme::shown(own, wanted);
            SCOPED_TRACE(own.name.toUtf8().toStdString() + (wanted == Contrast::high ? ", high" : ", legible"));
            EXPECT_NE(shown, own) << "who shows the one has to change to the other";
            const auto [text, mark] = limitsOf(wanted);
            EXPECT_GE(contrast(shown.gutterForeground, shown.gutterBackground), mark);
            EXPECT_GE(contrast(shown.gutterActiveForeground, shown.gutterBackground), text);
            EXPECT_GE(contrast(shown.gutterSeparator, shown.gutterBackground), mark);
            for (const ScopeRow &row : scopes) {
                const quint32 color = shown.color(row.scope).value_or(shown.foreground);
                const quint32 before = own.color(row.scope).value_or(own.foreground);
                EXPECT_GE(contrast(color, shown.background), text) << int(row.scope);
                const bool sufficed =
                    contrast(before, own.background) >= text && (wanted == Contrast::legible || contrast(before, own.currentLine) >= text);
                EXPECT_EQ(color == before, sufficed) << int(row.scope);
                // A tenth more than it takes is more than a step.
                EXPECT_TRUE(sufficed || contrast(color, shown.background) < text * (wanted == Contrast::high ? 1.35 : 1.05));
                for (const ScopeRow &other : scopes) {
                    EXPECT_EQ(shown.attributes(row.scope) == shown.attributes(other.scope),
                              own.attributes(row.scope) == own.attributes(other.scope))
                        << "what looks different is told apart by its looks";
                }
            }
        }
        const Theme &stark = Theme::shown(own, Contrast::high);
        EXPECT_GE(contrast(stark.selection, stark.background), 7);
        EXPECT_GE(contrast(stark.selectedText, stark.selection), 7);
        EXPECT_GE(contrast(stark.currentLineBorder, stark.background), 7);
        EXPECT_GE(contrast(stark.foreground, stark.currentLine), 7);
        EXPECT_GE(contrast(stark.caret, stark.currentLine), 7);
    }
}

TEST(ColorContrast, IsThatOfTheWebsGuidelines)
{
    EXPECT_DOUBLE_EQ(contrast(0xFF000000, 0xFFFFFFFF), 21);
    EXPECT_NEAR(contrast(0xFF767676, 0xFFFFFFFF), 4.54, 0.005);
    EXPECT_NEAR(contrast(0xFFFFFFFF, 0xFF0000FF), 8.59, 0.005);
    EXPECT_EQ(legible(0xFF767676, 0xFF000000, 4.5, {0xFFFFFFFF}), 0xFF767676u);
    EXPECT_EQ(legible(0xFFFFFFFF, 0xFF767676, 4.5, {0xFFFFFFFF}), 0xFF767676u) << "the target is enough";
    EXPECT_EQ(legible(0xFF888888, 0xFF808080, 21, {0xFF000000}), 0xFFFFFFFFu) << "beyond the target";
}

TEST(Theme, BlendsEachChannel)
{
    EXPECT_EQ(blended(0xFF000000, 0xFFFFFFFF, 0), 0xFF000000u);
    EXPECT_EQ(blended(0xFF000000, 0xFFFFFFFF, 1), 0xFFFFFFFFu);
    EXPECT_EQ(blended(0xFF1E1F22, 0xFF000000, 0.35), 0xFF141416u);
    EXPECT_EQ(blended(0x80FF0010, 0x00000020, 0.5), 0x40800018u);
}
