// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimKeyTable.h"

#include "Commands/Actions.h"
#include "Settings/Preferences.h"

#include <limits>

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;
using enum VimKeyHelp::Section;
using VimMotion::FindKind;
using VimMotion::Words;

namespace {

/// More characters than any line has.
constexpr qsizetype wholeLine = std::numeric_limits<qsizetype>::max() / 2;

} // namespace

const std::array<VimEngine::NavigationRow, 9> VimEngine::NavigationRow::all = {{
    {VimKey::left, u'h'},
    {VimKey::down, u'j'},
    {VimKey::up, u'k'},
    {VimKey::right, u'l'},
    {VimKey::home, u'0'},
    {VimKey::end, u'$'},
    {VimKey::pageUp, u'b', KeyPlace::withControl},
    {VimKey::pageDown, u'f', KeyPlace::withControl},
    {VimKey::forwardDelete, u'x'},
}};

/// In the order in which the reference shows them. Of rows with one key in one place the first that makes sense counts.
std::span<const VimEngine::KeyRow> VimEngine::keys()
{
    using enum KeyPlace;
    using Motion = KeyRow::Motion;
    using Command = KeyRow::Command;
    using enum VimTextObject::Extent;
    constexpr auto succeeds = Unmoved::succeeds;
    static constexpr auto rows =
        std::to_array<KeyRow>({
            {u'i', Awaited{.what = Awaiting::textObject, .extent = inner}},
            {u'a', Awaited{.what = Awaiting::textObject, .extent = around}},
            {u'i',
             Command{[](VimEngine &engine, qsizetype) { engine.m_editing->enterInsert(engine.caret()); }},
             {modes, u"insert before / after the cursor"}},
            {u'a', Command{[](VimEngine &engine, qsizetype) {
                 const qsizetype place = engine.caret();
                 engine.m_editing->enterInsert(
                     std::min(engine.m_editing->charactersFrom(place, 1).end(), engine.buffer().lineContentEnd(place)));
             }},
             besideAbove},
            {u'I',
             Command{[](VimEngine &engine, qsizetype) { engine.m_editing->enterInsert(engine.buffer().firstNonBlank(engine.caret())); }},
             {modes, u"insert at the first non-blank / end of line"}},
            {u'A',
             Command{[](VimEngine &engine, qsizetype) { engine.m_editing->enterInsert(engine.buffer().lineContentEnd(engine.caret())); }},
             besideAbove},
            {u'o',
             Command{[](VimEngine &engine, qsizetype) { engine.m_editing->openLine(Side::after); }},
             {modes, u"open a line below / above"}},
            {u'O', Command{[](VimEngine &engine, qsizetype) { engine.m_editing->openLine(Side::before); }}, besideAbove},
            {u'v', Command{[](VimEngine &engine, qsizetype) { engine.toggleVisual(Mode::visual); }}, {modes, u"visual, visual line"}},
            {u'V', Command{[](VimEngine &engine, qsizetype) { engine.toggleVisual(Mode::visualLine); }}, besideAbove},
            {u':', Command{[](VimEngine &engine, qsizetype) { engine.beginCommandLine(u':'); }}, {modes, u"command line"}},
            {u'/',
             Command{[](VimEngine &engine, qsizetype) { engine.beginCommandLine(u'/'); }},
             {.section = modes, .text = u"search forward / backward", .alsoIn = search}},
            {u'?', Command{[](VimEngine &engine, qsizetype) { engine.beginCommandLine(u'?'); }}, besideAbove},
            {VimKey::escape,
             Command{[](VimEngine &engine, qsizetype) { engine.leaveToNormal(); }},
             {modes, u"back to normal mode", {u"Esc"sv}},
             anyMode},

            {u'h', Motion{VimMotion::left}, {motions, u"left, down, up, right - arrows work too"}},
            {u'j', Command{[](VimEngine &engine, qsizetype count) { engine.m_moving->applyVertical(count); }}, besideAbove},
            {u'k', Command{[](VimEngine &engine, qsizetype count) { engine.m_moving->applyVertical(-count); }}, besideAbove},
            {u'l', Motion{VimMotion::right}, besideAbove},
            {u'w', Motion{VimMotion::wordStart<Words::small>}, {motions, u"word / WORD forward and back"}},
            {u'W', Motion{VimMotion::wordStart<Words::big>}, besideAbove},
            {u'b', Motion{VimMotion::wordStartBefore<Words::small>}, besideAbove},
            {u'B', Motion{VimMotion::wordStartBefore<Words::big>}, besideAbove},
            {u'e', Motion{VimMotion::wordEnd<Words::small>}, {motions, u"end of word"}},
            {u'E', Motion{VimMotion::wordEnd<Words::big>}, besideAbove},
            {u'0', Motion{VimMotion::lineStart, succeeds}, {motions, u"start of line, first non-blank, end of line"}},
            {u'^', Motion{VimMotion::firstNonBlank, succeeds}, besideAbove},
            {u'$', Motion{VimMotion::lineEnd}, besideAbove},
            {u'g', Awaited{.what = Awaiting::gPrefix}},
            {u'g',
             Command{[](VimEngine &engine, qsizetype count) { engine.m_moving->goToLine(static_cast<LineNumber>(count), 0); }},
             {motions, u"first line, last line, line n"},
             afterG},
            {u'G',
             Command{
                 [](VimEngine &engine, qsizetype count) {
                     engine.m_moving->goToLine(engine.hasCount() ? std::optional(static_cast<LineNumber>(count)) : std::nullopt,
                                               engine.buffer().lastLineStart());
                 }},
             {.forms = {u"G", u"{n}G"}, .isBesideAbove = true}},
            {u'f',
             Awaited{.what = Awaiting::findCharacter, .find = FindKind::forwardTo},
             {motions, u"find a character on the line; ; and , repeat"}},
            {u'F', Awaited{.what = Awaiting::findCharacter, .find = FindKind::backwardTo}, besideAbove},
            {u't', Awaited{.what = Awaiting::findCharacter, .find = FindKind::forwardBefore}, besideAbove},
            {u'T', Awaited{.what = Awaiting::findCharacter, .find = FindKind::backwardBefore}, besideAbove},
            {u';', Command{[](VimEngine &engine, qsizetype) { engine.m_moving->repeatFind(false); }}},
            {u',', Command{[](VimEngine &engine, qsizetype) { engine.m_moving->repeatFind(true); }}},
            {u'{', Motion{VimMotion::paragraphBefore}, {motions, u"previous / next blank line"}},
            {u'}', Motion{VimMotion::paragraphBehind}, besideAbove},
            {u'%', Motion{VimMotion::bracketPartner, succeeds}, {motions, u"matching bracket"}},
            {u'H',
             Command{[](VimEngine &engine, qsizetype) { engine.m_moving->goToVisibleLine(VisibleLine::first); }},
             {motions, u"top, middle, bottom of the screen"}},
            {u'M', Command{[](VimEngine &engine, qsizetype) { engine.m_moving->goToVisibleLine(VisibleLine::middle); }}, besideAbove},
            {u'L', Command{[](VimEngine &engine, qsizetype) { engine.m_moving->goToVisibleLine(VisibleLine::last); }}, besideAbove},
            {u'd',
             Command{[](VimEngine &engine, qsizetype) { engine.m_moving->scrollLines(engine.m_view.visibleLineCount() / 2); }},
             {motions, u"half page / page down and up"},
             withControl},
            {u'u', Command{[](VimEngine &engine, qsizetype) { engine.m_moving->scrollLines(-(engine.m_view.visibleLineCount() / 2)); }},
             besideAbove, withControl},
            {u'f', Command{[](VimEngine &engine, qsizetype) { engine.m_moving->scrollLines(engine.m_view.visibleLineCount()); }},
             besideAbove, withControl},
            {u'b', Command{[](VimEngine &engine, qsizetype) { engine.m_moving->scrollLines(-engine.m_view.visibleLineCount()); }},
             besideAbove, withControl},
            {u'`', Awaited{.what = Awaiting::gotoMark, .isExact = true}, {motions, u"jump to a mark, exactly / to its line"}},
            {u'\'', Awaited{.what = Awaiting::gotoMark}, besideAbove},
            {u'z', Awaited{.what = Awaiting::zPrefix}},
            {u'z', Command{[](VimEngine &engine, qsizetype) { engine.m_moving->showSelection(Moving::Shown::centered); }}, {}, afterZ},
            {u't', Command{[](VimEngine &engine, qsizetype) { engine.m_moving->showSelection(Moving::Shown::anywhere); }}, {}, afterZ},
            {u'b', Command{[](VimEngine &engine, qsizetype) { engine.m_moving->showSelection(Moving::Shown::anywhere); }}, {}, afterZ},

            {u'd', OperatorKind::remove, {operators, u"delete", {u"d", u"dd"}}},
            {u'c', OperatorKind::change, {operators, u"change", {u"c", u"cc"}}},
            {u'y', OperatorKind::yank, {operators, u"yank", {u"y", u"yy"}}},
            {u'>', OperatorKind::indent, {operators, u"indent, outdent"}},
            {u'<', OperatorKind::outdent, besideAbove},
            {u'u', OperatorKind::lowercase, {operators, u"lower case, upper case, toggle case"}, afterG},
            {u'U', OperatorKind::uppercase, besideAbove, afterG},
            {u'~', OperatorKind::toggleCase, besideAbove, afterG},
            {.key = u'c', .function = OperatorKind::toggleComment, .place = afterG, .preset = VimKeymapPreset::lazyVim},

            {u'x',
             Command{
                 [](VimEngine &engine, qsizetype count) {
                     engine.m_editing->apply(OperatorKind::remove, engine.m_editing->charactersFrom(engine.caret(), count),
                                             Span::characters);
                 }},
             {editing, u"delete character forward / back"}},
            {u'X', Command{[](VimEngine &engine, qsizetype count) {
                 const qsizetype place = engine.caret();
                 const qsizetype start = std::max(place - count, engine.buffer().lineStart(place));
                 engine.m_editing->apply(OperatorKind::remove, TextRange::between(start, place), Span::characters);
             }},
             besideAbove},
            {u's',
             Command{
                 [](VimEngine &engine, qsizetype count) {
                     engine.m_editing->apply(OperatorKind::change, engine.m_editing->charactersFrom(engine.caret(), count),
                                             Span::characters);
                 }},
             {editing, u"substitute character / line"}},
            {u'S',
             Command{[](VimEngine &engine, qsizetype count) { engine.m_editing->applyLinewiseOperator(OperatorKind::change, count); }},
             besideAbove},
            {u'D',
             Command{
                 [](VimEngine &engine, qsizetype) {
                     engine.m_editing->apply(OperatorKind::remove, engine.m_editing->charactersFrom(engine.caret(), wholeLine),
                                             Span::characters);
                 }},
             {editing, u"to end of line: delete, change, yank"}},
            {u'C', Command{[](VimEngine &engine, qsizetype) {
                 engine.m_editing->apply(OperatorKind::change, engine.m_editing->charactersFrom(engine.caret(), wholeLine),
                                         Span::characters);
             }},
             besideAbove},
            {u'Y', Command{[](VimEngine &engine, qsizetype count) { engine.m_editing->applyLinewiseOperator(OperatorKind::yank, count); }},
             besideAbove},
            {u'r', Awaited{.what = Awaiting::replaceCharacter}, {editing, u"replace one character"}},
            {u'~',
             Command{[](VimEngine &engine, qsizetype count) { engine.m_editing->toggleCaseUnderCaret(count); }},
             {editing, u"toggle case"}},
            {u'J', Command{[](VimEngine &engine, qsizetype count) { engine.m_editing->joinLines(count); }, 2}, {editing, u"join lines"}},
            {u'p',
             Command{[](VimEngine &engine, qsizetype count) { engine.m_editing->paste(Side::after, count); }},
             {editing, u"paste after / before"}},
            {u'P', Command{[](VimEngine &engine, qsizetype count) { engine.m_editing->paste(Side::before, count); }}, besideAbove},
            {u'u',
             Command{
                 [](VimEngine &engine, qsizetype) {
                     engine.m_view.undo();
                     engine.settleCaret();
                     engine.resetPending();
                 }},
             {editing, u"undo, redo"}},
            {u'r', Command{[](VimEngine &engine, qsizetype) {
                 engine.m_view.redo();
                 engine.settleCaret();
             }},
             besideAbove, withControl},
            {u'.',
             Command{[](VimEngine &engine, qsizetype) { engine.m_editing->repeatLastChange(); }},
             {editing, u"repeat the last change"}},
            {u'm', Awaited{.what = Awaiting::setMark}, {editing, u"set a mark", {u"m{a-z}"}}},
            {u'"', Awaited{.what = Awaiting::registerName}, {editing, u"choose a register; \"+ is the system clipboard", {u"\"{a-z}"}}},

            {u'c', Command{[](VimEngine &engine, qsizetype) { engine.m_editing->copySelection(); }}, {}, withControl},

            {u'c', Command{[](VimEngine &engine, qsizetype) { engine.leaveToNormal(); }}, {}, whileInserting},
            {u'h',
             Command{[](VimEngine &engine, qsizetype) { engine.m_editing->deleteInserted(VimDeletion::letter); }},
             {},
             whileInserting},
            {u'w', Command{[](VimEngine &engine, qsizetype) { engine.m_editing->deleteInserted(VimDeletion::word); }}, {}, whileInserting},
            {u'u',
             Command{[](VimEngine &engine, qsizetype) { engine.m_editing->deleteInserted(VimDeletion::toLineStart); }},
             {},
             whileInserting},
            {u'r', Awaited{.what = Awaiting::insertedRegister}, {}, whileInserting},

            // Panes are a flat list: left and up is the one before, right and down the next.
            {u'w', Command{[](VimEngine &engine, qsizetype) { engine.awaitWindowKey(); }}, {}, withControl},
            {u'v', &Actions::splitEditorRight, {windows, u"split right / down"}, afterWindow},
            {u's', &Actions::splitEditorDown, besideAbove, afterWindow},
            {u'S', &Actions::splitEditorDown, {}, afterWindow},
            {u'c', &Actions::closeSplit, {windows, u"close this split / close the others"}, afterWindow},
            {u'q', &Actions::closeSplit, {}, afterWindow},
            {u'o', &Actions::closeOtherSplits, besideAbove, afterWindow},
            {u'w', &Actions::focusNextPane, {windows, u"cycle forward / back"}, afterWindow},
            {u'W', &Actions::focusPreviousPane, besideAbove, afterWindow},
            {u'p', &Actions::focusPreviousPane, {}, afterWindow},
            {u'h', &Actions::focusPreviousPane, {windows, u"move between panes"}, afterWindow},
            {u'j', &Actions::focusNextPane, besideAbove, afterWindow},
            {u'k', &Actions::focusPreviousPane, besideAbove, afterWindow},
            {u'l', &Actions::focusNextPane, besideAbove, afterWindow},

            {u'n', Command{[](VimEngine &engine, qsizetype) { engine.m_moving->repeatSearch(false); }}, {search, u"next / previous match"}},
            {u'N', Command{[](VimEngine &engine, qsizetype) { engine.m_moving->repeatSearch(true); }}, besideAbove},
            {u'*',
             Command{[](VimEngine &engine, qsizetype) { engine.m_moving->searchWordUnderCaret(SearchDirection::forward); }},
             {search, u"search the word under the cursor"}},
            {u'#', Command{[](VimEngine &engine, qsizetype) { engine.m_moving->searchWordUnderCaret(SearchDirection::backward); }},
             besideAbove},
        });
    return rows;
}

/// As the reference writes it.
QString VimEngine::KeyRow::written() const
{
    struct Written {
        KeyPlace place;
        QStringView keys;
    };
    static constexpr Written prefixes[] = {
        {KeyPlace::withControl, u"⌃"},      {KeyPlace::whileInserting, u"⌃"},    {KeyPlace::afterWindow, u"⌃w "},
        {KeyPlace::afterG, u"g"},           {KeyPlace::withGAndControl, u"g⌃"},  {KeyPlace::afterZ, u"z"},
        {KeyPlace::afterOpenBracket, u"["}, {KeyPlace::afterCloseBracket, u"]"}, {KeyPlace::afterCapitalZ, u"Z"},
    };
    const auto *prefix = std::ranges::find(prefixes, place, &Written::place);
    const QStringView before = prefix == std::end(prefixes) ? QStringView() : prefix->keys;
    return before.toString() + (before.endsWith(u'⌃') ? QChar(key).toUpper() : QChar(key));
}

VimKeyHelpEntries VimEngine::keyHelp(const VimOptions &options)
{
    VimKeyHelpEntries entries;
    // What Vim has otherwise, and says so.
    const auto isExactly = [&](const KeyRow &row) {
        return options.isExact && std::ranges::any_of(exactKeys(), [&](const KeyRow &exact) {
                   return exact.place == row.place && exact.key == row.key && exact.help.exists();
               });
    };
    for (const KeyRow &row : options.isExact ? exactKeys() : std::span<const KeyRow>()) {
        if (row.help.exists()) {
            entries.emplace_back(row.written(), row.help);
        }
    }
    const KeyRow *first = nullptr;
    bool isFirstShown = false;
    for (const KeyRow &row : keys()) {
        if (!row.help.exists()) {
            continue;
        }
        if (!row.help.isBesideAbove) {
            first = &row;
            isFirstShown = false;
        }
        if (isExactly(row)) {
            continue;
        }
        VimKeyHelp help = row.help;
        if (!std::exchange(isFirstShown, true)) {
            help.text = first->help.text;
            help.section = first->help.section;
            help.alsoIn = first->help.alsoIn;
            help.isBesideAbove = false;
        }
        entries.emplace_back(row.written(), help);
    }
    return entries;
}

std::vector<VimChordUse> VimEngine::controlChords(const VimOptions &options)
{
    using enum VimChordUse::When;
    std::vector<VimChordUse> chords;
    const char16_t *text = nullptr;
    const auto isKnown = [&](const KeyRow &row) {
        const auto when = row.place == KeyPlace::whileInserting ? inserting : commanding;
        return std::ranges::any_of(chords, [&](const VimChordUse &chord) { return chord.key == row.key && chord.when == when; });
    };
    const auto take = [&](const KeyRow &row) {
        if (!row.help.isBesideAbove) {
            text = row.help.text;
        }
        if (!row.isThereWith(options) || (options.isExact && isKnown(row))) {
            return;
        }
        if (row.place == KeyPlace::withControl || row.place == KeyPlace::whileInserting) {
            chords.push_back({row.key, row.place == KeyPlace::whileInserting ? inserting : commanding, text});
        } else if (row.place == KeyPlace::anyMode && row.key == VimKey::escape) {
            chords.push_back({u'[', commanding, text});
        }
    };
    if (options.isExact) {
        std::ranges::for_each(exactKeys(), take);
    }
    std::ranges::for_each(keys(), take);
    return chords;
}
