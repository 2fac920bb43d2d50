// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/RandomText.h"
#include "Vim/VimLines.h"
#include "VimFixture.h"

using namespace Qt::StringLiterals;

namespace {

/// Whole commands and pieces of them, so that both come up often.
const QStringList pieces = {
    u"h"_s,     u"j"_s,     u"k"_s,     u"l"_s,   u"w"_s,     u"b"_s,      u"e"_s,      u"$"_s,     u"G"_s,      u"gg"_s,    u"%"_s,
    u"fa"_s,    u"ta"_s,    u"Fa"_s,    u"Ta"_s,  u";"_s,     u"d"_s,      u"c"_s,      u"y"_s,     u">"_s,      u"<lt>"_s,  u"iw"_s,
    u"ap"_s,    u"i("_s,    u"aB"_s,    u"a\""_s, u"x"_s,     u"rZ"_s,     u"r😀"_s,     u"J"_s,     u"p"_s,      u"P"_s,     u"u"_s,
    u"<C-r>"_s, u"v"_s,     u"V"_s,     u"."_s,   u"n"_s,     u"*"_s,      u"#"_s,      u"ma"_s,    u"`a"_s,     u"o"_s,     u"2"_s,
    u"3"_s,     u"g~"_s,    u"gu"_s,    u"gU"_s,  u"x y\n"_s, u"é😀"_s,     u"<C-d>"_s,  u"<C-u>"_s, u"<Left>"_s, u"<End>"_s, u"<Del>"_s,
    u"gc"_s,    u"<A-j>"_s, u"<A-k>"_s, u" "_s,   u"[b"_s,    u"/a<CR>"_s, u"?.<CR>"_s, u"<Esc>"_s, u"<Esc>"_s,  u"<Esc>"_s};

/// Those of exact modal editing besides.
const QStringList exactPieces = {u"R"_s,
                                 u"qa"_s,
                                 u"q"_s,
                                 u"@a"_s,
                                 u"2@a"_s,
                                 u"<C-v>"_s,
                                 u"<C-v>j"_s,
                                 u"gv"_s,
                                 u"A"_s,
                                 u"I"_s,
                                 u"O"_s,
                                 u"gj"_s,
                                 u"gk"_s,
                                 u"g$"_s,
                                 u"H"_s,
                                 u"L"_s,
                                 u"<C-o>"_s,
                                 u"\t"_s,
                                 u":s/a/b/<CR>"_s,
                                 u":g/a/normal x<CR>"_s,
                                 u":s/a/b/gc<CR>"_s,
                                 u"y"_s,
                                 u"g&"_s,
                                 u"&"_s,
                                 u":m0<CR>"_s,
                                 u":t.<CR>"_s,
                                 u"gJ"_s,
                                 u"<C-a>"_s,
                                 u"gi"_s,
                                 u"g;"_s,
                                 u"]p"_s,
                                 u"gqj"_s};

void expectSound(const VimView &view)
{
    const Rope &text = view.text();
    const TextRange selected = view.selected;
    ASSERT_LE(selected.end(), text.length());
    ASSERT_EQ(TextBoundaries::snapped(text, selected.location), selected.location);
    ASSERT_EQ(TextBoundaries::snapped(text, selected.end()), selected.end());
    VimBuffer buffer(text);
    const bool isAtEnd = selected.location == text.length();
    switch (view.engine.mode()) {
    case VimEngine::Mode::normal:
        if (view.engine.options().isExact) {
            const VimLines lines(text, 4, VimLines::LastLine::mayBeEmpty); // as where the text did not end in a break
            ASSERT_TRUE(!selected.isEmpty() || selected.location < lines.end(selected.location) || lines.isEmpty(selected.location))
                << selected.location;
        } else {
            ASSERT_TRUE(!selected.isEmpty() ||
                        TextBoundaries::snapped(text, buffer.clampToNormalMode(selected.location)) == selected.location);
        }
        break;
    case VimEngine::Mode::insert:
        ASSERT_TRUE(selected.isEmpty());
        break;
    case VimEngine::Mode::visual:
        // A last line that is empty has nothing to select, whether it ends in a break or not.
        ASSERT_TRUE(selected.isEmpty()
                        ? isAtEnd || (view.engine.options().isExact && buffer.lineRange(selected.location).end() == text.length())
                        : selected.contains(view.caret) || view.caret == text.length() ||
                              (view.engine.options().isExact && view.caret == selected.end()))
            << view.caret;
        break;
    case VimEngine::Mode::visualLine:
        ASSERT_EQ(selected, buffer.lineRange(selected.location).united(buffer.lineRange(std::max(selected.end() - 1, selected.location))));
        break;
    case VimEngine::Mode::commandLine:
    case VimEngine::Mode::visualBlock:
        break;
    }
    TextRange before;
    for (const TextRange &range : view.several) {
        ASSERT_LE(before.end(), range.location);
        ASSERT_LE(range.end(), text.length());
        before = range;
    }
}

/// What a pointer selects, or another editor of the text.
void selectAnywhere(VimView &view, Random &random)
{
    const auto place = [&] { return TextBoundaries::snapped(view.text(), random.below(view.text().length() + 1)); };
    const TextSelection wanted{place(), random.oneIn(2) ? view.selected.location : place()};
    if (view.engine.takesText()) {
        return;
    }
    view.select(wanted.range(), wanted.caret);
    view.engine.takeSelection(wanted);
}

enum class Kind { common, exact };

void walk(quint32 seed, int steps, Kind kind)
{
    Random random(seed);
    QString start = QString::fromStdU16String(random.text(60 + random.below(200)));
    for (const QString &piece : {u"(a)"_s, u"{ \"b c\" }"_s, u"\n\n"_s, u"  x"_s, u"⚠️ cafe\u0301 "_s}) {
        const QChar *place = start.constData() + random.below(start.size());
        start.insert(place->isLowSurrogate() ? 0 : place - start.constData(), piece);
    }
    if (kind == Kind::exact) {
        start.replace(u'\r', u' '); // an LF that is added behind one makes a single break of both
    }
    VimOptions options(seed % 2 == 0 ? VimKeymapPreset::plain : VimKeymapPreset::lazyVim);
    options.isExact = kind == Kind::exact;
    VimView view(start, options);
    const QStringList known = kind == Kind::exact ? pieces + exactPieces : pieces;
    start = view.string();
    for (int step = 0; step < steps; ++step) {
        // What is typed into the text teaches little.
        const bool isLeft = view.engine.takesText() && random.oneIn(2);
        const QString key = isLeft            ? u"<Esc>"_s
                            : random.oneIn(4) ? QString(QChar(u' ' + char16_t(random.below(95))))
                                              : known[random.below(known.size())];
        if (key.contains(u'@') && view.engine.recording()) {
            continue; // a macro that runs itself goes on for long
        }
        SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step) + ", key " + key.toStdString());
        view.press(key == u"<" ? u"<lt>"_s : key);
        if (kind == Kind::exact && random.oneIn(20)) {
            selectAnywhere(view, random);
        }
        ASSERT_NO_FATAL_FAILURE(expectSound(view));
        if (step % 100 == 0) {
            ASSERT_TRUE(view.storage.checkInvariants());
        }
        if (view.text().length() > 20000) {
            view.press(u"<Esc>Gdgg"_s);
        }
    }
    view.press(u"<Esc><Esc>"_s);
    ASSERT_TRUE(view.storage.checkInvariants());
    while (view.undoManager.canUndo()) {
        view.press(u"u"_s);
        ASSERT_NO_FATAL_FAILURE(expectSound(view)) << "undone, seed " << seed;
    }
    EXPECT_EQ(view.string(), start) << "seed " << seed;
}

} // namespace

TEST(VimWalk, RandomKeysKeepTheCaretInPlaceAndAreUndone)
{
    // More of them by hand: VIM_WALKS=1000.
    const int walks = std::max(qEnvironmentVariableIntValue("VIM_WALKS"), 8);
    for (int seed = 1; seed <= walks && !testing::Test::HasFailure(); ++seed) {
        walk(quint32(seed), 1000, Kind::common);
        walk(quint32(seed), 1000, Kind::exact);
    }
}
