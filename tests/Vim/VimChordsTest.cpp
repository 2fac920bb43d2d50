// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimChords.h"
#include "Settings/Settings.h"
#include "Vim/VimOptions.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using enum VimChords::Owner;

TEST(VimChords, KeepsWhatItDoesNotUnderstand)
{
    const QStringList others{u"later"_s, u"ü=emacs"_s, u"=quillet"_s, u"ww=quillet"_s};
    VimChords chords(QStringList{u"w=quillet"_s} + others);
    EXPECT_EQ(chords.owner(u'w'), quillet);
    EXPECT_EQ(chords.owner(u'ü'), vim);
    chords.setOwner(u'w', vim);
    chords.setOwner(u'd', quillet);
    EXPECT_EQ(chords.entries(), others + QStringList{u"d=quillet"_s});
    chords.restore();
    EXPECT_EQ(chords.entries(), others);
}

TEST(VimChords, SaysWhatEachIsFor)
{
    const auto rows = [](VimKeymapPreset preset) {
        QStringList texts;
        for (const VimChords::Chord &chord : VimChords::all(VimOptions(preset))) {
            texts << QStringList{chord.name, chord.commanding, chord.inserting, chord.quillet}.join(u'|');
        }
        return texts.join(u'\n').toStdString();
    };
    const std::string first = "Ctrl+B|a page up||\n"
                              "Ctrl+C|copy the selection|back to normal mode|Copy\n"
                              "Ctrl+D|half a page down||Select Next Occurrence\n"
                              "Ctrl+F|a page down||Find\n";
    EXPECT_EQ(rows(VimKeymapPreset::plain).substr(0, first.size()), first);
    const std::string lazy = rows(VimKeymapPreset::lazyVim);
    EXPECT_NE(lazy.find("Ctrl+H|previous pane|delete a letter|Find and Replace…\nCtrl+J|next pane||Jump to Selection\n"),
              std::string::npos);
    EXPECT_NE(lazy.find("\nCtrl+[|back to normal mode||Shift Left"), std::string::npos);
    VimOptions exact(VimKeymapPreset::plain);
    exact.isExact = true;
    for (const VimChords::Chord &chord : VimChords::all(exact)) {
        EXPECT_NE(chord.commanding, u"what it does in Vim"_s) << chord.name.toStdString();
        EXPECT_NE(chord.inserting, u"what it does in Vim"_s) << chord.name.toStdString();
    }
}
