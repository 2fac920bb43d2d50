// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Action.h"

#include <array>
#include <vector>

/// All commands of the program. A new one is an object and its place in a menu, below, or among those that are in none.
///
/// Where a chord needs AltGr on a German keyboard, another one follows that does not; the same for those that modal editing may take, and
/// for those that desktops take for locking the screen, opening a terminal or showing the desktop.
namespace Actions {

// Quillet

inline constexpr Action showAbout{"orderFrontStandardAboutPanel:", u"About Quillet"};
inline constexpr Action showSettings{"showSettings:", u"Settings…", "Ctrl+,"};
inline constexpr Action hide{"hide:", u"Hide Quillet"};
inline constexpr Action hideOthers{"hideOtherApplications:", u"Hide Others"};
inline constexpr Action showAll{"unhideAllApplications:", u"Show All"};
inline constexpr Action terminate{"terminate:", u"Quit Quillet", "Ctrl+Q"};

// File

inline constexpr Action newDocument{"newDocument:", u"New Tab", "Ctrl+N; Ctrl+T", "doc.badge.plus"};
inline constexpr Action newWindow{"newWindow:", u"New Window", "Ctrl+Shift+N"};
inline constexpr Action openDocument{"openDocument:", u"Open…", "Ctrl+O", "folder"};
inline constexpr Action openRecentDocument{"openRecentDocument:", u"Open Recent"};
inline constexpr Action clearRecentDocuments{"clearRecentDocuments:", u"Clear Menu"};
inline constexpr Action closeTab{"closeTab:", u"Close Tab", "Ctrl+W; Ctrl+F4"};
inline constexpr Action closeOtherTabs{"closeOtherTabs:", u"Close Others"};
inline constexpr Action closeTabsToTheRight{"closeTabsToTheRight:", u"Close to the Right"};
inline constexpr Action closeSavedTabs{"closeSavedTabs:", u"Close Saved"};
inline constexpr Action reopenClosedTab{"reopenClosedTab:", u"Reopen Closed Tab", "Ctrl+Shift+T"};
inline constexpr Action performClose{"performClose:", u"Close Window", "Ctrl+Shift+W"};
inline constexpr Action saveDocument{"saveDocument:", u"Save", "Ctrl+S", "square.and.arrow.down"};
/// The text goes into the file whose name it represents, whatever that has. By saveDocument, which can have a name as well, it goes into
/// a file that does not exist yet.
inline constexpr Action writeOver{.id = saveDocument.id, .tag = 1};
inline constexpr Action saveDocumentAs{"saveDocumentAs:", u"Save As…", "Ctrl+Shift+S", "square.and.arrow.down.on.square"};
inline constexpr Action saveAllDocuments{"saveAllDocuments:", u"Save All", "Ctrl+Alt+S"};
inline constexpr Action revertDocumentToSaved{.id = "revertDocumentToSaved:",
                                              .title = u"Revert to Saved",
                                              .keys = "",
                                              .symbol = "arrow.uturn.backward",
                                              .help = u"Gives up what was not saved"};
inline constexpr Action openWithEncoding{
    .id = "openWithEncoding:", .title = u"Open with Encoding…", .help = u"Opens a file in a text encoding that you choose"};
inline constexpr Action reopenWithEncoding{
    .id = "reopenWithEncoding:", .title = u"Reopen with Encoding…", .help = u"Reads the file again in a text encoding that you choose"};
inline constexpr Action listMissingCharacters{.id = "listMissingCharacters:",
                                              .title = u"Characters That Cannot Be Saved…",
                                              .help = u"Lists the characters that the text encoding does not have"};
inline constexpr Action compareWithFileOnDisk{"compareWithFileOnDisk:", u"With File on Disk", "Ctrl+Alt+D; Ctrl+Alt+Shift+D"};
inline constexpr Action compareWithFile{"compareWithFile:", u"With File…", "", "arrow.left.arrow.right"};
inline constexpr Action compareWithOpenDocument{"compareWithOpenDocument:", u"Other Open Files"};
inline constexpr Action makeBackup{
    .id = "makeBackup:", .title = u"Backup", .keys = "Ctrl+Alt+B", .symbol = "doc.on.doc", .help = u"Writes a copy beside the file"};
inline constexpr Action moveDocumentToTrash{"moveDocumentToTrash:", u"Move to Trash…", "", "trash"};
inline constexpr Action revealInFinder{"revealInFinder:", u"Reveal in Finder", "Ctrl+Alt+R", "arrow.up.forward.square"};
inline constexpr Action copyFilePath{"copyFilePath:", u"Copy Path", "Ctrl+Alt+Shift+C", "doc.on.clipboard"};
inline constexpr Action openInTerminal{.id = "openInTerminal:",
                                       .title = u"Open in Terminal",
                                       .keys = "Ctrl+Alt+T; Ctrl+Alt+Shift+T",
                                       .symbol = "terminal",
                                       .help = u"Opens a terminal in the folder of the file"};
inline constexpr Action printDocument{"printDocument:", u"Print…", "Ctrl+P"};
inline constexpr Action printPreview{"printPreview:", u"Print Preview", "Ctrl+Shift+P"};
inline constexpr Action exportAsPdf{"exportAsPDF:", u"Export as PDF…"};
inline constexpr Action exportAsHtml{"exportAsHTML:", u"Export as HTML…"};

// Edit

inline constexpr Action undo{"undo:", u"Undo", "Ctrl+Z"};
inline constexpr Action redo{"redo:", u"Redo", "Ctrl+Shift+Z; Ctrl+Y"};
inline constexpr Action cut{"cut:", u"Cut", "Ctrl+X"};
inline constexpr Action copy{"copy:", u"Copy", "Ctrl+C"};
inline constexpr Action paste{"paste:", u"Paste", "Ctrl+V"};
inline constexpr Action deleteSelection{"delete:", u"Delete"};
inline constexpr Action selectAll{"selectAll:", u"Select All", "Ctrl+A"};
inline constexpr Action selectNextOccurrence{.id = "selectNextOccurrence:",
                                             .title = u"Select Next Occurrence",
                                             .keys = "Ctrl+D; Ctrl+Alt+N",
                                             .help = u"Selects the word at the caret, then the same in the next place as well"};
inline constexpr Action skipOccurrence{.id = "skipOccurrence:",
                                       .title = u"Skip Occurrence",
                                       .keys = "Ctrl+K; Ctrl+Alt+K",
                                       .help = u"Selects the next place instead of the one selected last"};
inline constexpr Action selectAllOccurrences{.id = "selectAllOccurrences:",
                                             .title = u"Select All Occurrences",
                                             .keys = "Ctrl+Alt+A; Alt+F3",
                                             .help = u"Selects the word at the caret, or what is selected, in all places"};
inline constexpr Action addCaretAbove{"addCaretAbove:", u"Add Caret Above", "Ctrl+Alt+Up; Alt+Shift+Up"};
inline constexpr Action addCaretBelow{"addCaretBelow:", u"Add Caret Below", "Ctrl+Alt+Down; Alt+Shift+Down"};
inline constexpr Action splitSelectionIntoLines{.id = "splitSelectionIntoLines:",
                                                .title = u"Split Selection into Lines",
                                                .keys = "Alt+Shift+I",
                                                .help = u"Gives every selected line a caret of its own"};
inline constexpr Action find{"performTextFinderAction:", u"Find", "Ctrl+F; Ctrl+Shift+F", "magnifyingglass", 1};
inline constexpr Action findAndReplace{"performTextFinderAction:", u"Find and Replace…", "Ctrl+Alt+F; Ctrl+H", "", 12};
inline constexpr Action findNext{"performTextFinderAction:", u"Find Next", "Ctrl+G; F3", "", 2};
inline constexpr Action findPrevious{"performTextFinderAction:", u"Find Previous", "Ctrl+Shift+G; Shift+F3", "", 3};
inline constexpr Action clearFindHistory{"clearFindHistory:", u"Clear Search History"};
inline constexpr Action useSelectionForFind{"performTextFinderAction:", u"Use Selection for Find", "Ctrl+E", "", 7};
inline constexpr Action centerSelection{"centerSelectionInVisibleArea:", u"Jump to Selection", "Ctrl+J"};
inline constexpr Action toggleComment{.id = "toggleComment:",
                                      .title = u"Toggle Comment",
                                      .keys = "Ctrl+/; Ctrl+#",
                                      .symbol = "text.bubble",
                                      .help = u"Makes the selected lines comments, or text again"};
inline constexpr Action insertTab{"insertTab:", u"Shift Right", "Ctrl+]; Ctrl+Ä"};
inline constexpr Action insertBacktab{"insertBacktab:", u"Shift Left", "Ctrl+[; Ctrl+Ö"};
inline constexpr Action duplicateLine{"duplicateLine:", u"Duplicate Line", "Ctrl+Shift+D"};
inline constexpr Action deleteLine{"deleteLine:", u"Delete Line", "Ctrl+Shift+K"};
inline constexpr Action toggleOverwriteMode{.id = "toggleOverwriteMode:",
                                            .title = u"Overwrite",
                                            .keys = "Ins",
                                            .isCheckable = true,
                                            .help = u"What is typed takes the place of what is there"};
inline constexpr Action moveLinesUp{"moveLinesUp:", u"Move Lines Up", "Alt+Up"};
inline constexpr Action moveLinesDown{"moveLinesDown:", u"Move Lines Down", "Alt+Down"};
inline constexpr Action insertLineAbove{"insertLineAbove:", u"Insert Line Above", "Ctrl+Shift+Return"};
inline constexpr Action insertLineBelow{"insertLineBelow:", u"Insert Line Below", "Ctrl+Return"};
inline constexpr Action joinLines{"joinLines:", u"Join Lines", "Ctrl+Shift+J"};
inline constexpr Action sortLines{
    .id = "sortLines:", .title = u"Sort Lines", .help = u"Sorts the selected lines, or all; once more to sort them backwards"};
inline constexpr Action uniqueLines{
    .id = "uniqueLines:", .title = u"Remove Repeated Lines", .help = u"Removes lines that the selection, or the text, has already"};
inline constexpr Action reverseLines{
    .id = "reverseLines:", .title = u"Reverse Lines", .help = u"Puts the last of the selected lines, or of all, first"};
inline constexpr Action trimTrailingWhitespace{.id = "trimTrailingWhitespace:",
                                               .title = u"Remove Trailing Blanks",
                                               .help = u"Removes blanks at the ends of the selected lines, or of all"};
inline constexpr Action upperCase{"upperCase:", u"Upper Case", "Ctrl+U; Ctrl+Alt+Shift+U"};
inline constexpr Action lowerCase{"lowerCase:", u"Lower Case", "Ctrl+Alt+U"};
inline constexpr Action titleCase{"titleCase:", u"Title Case"};
inline constexpr Action transposeCharacters{"transposeCharacters:", u"Transpose Characters", "Ctrl+Shift+X"};
inline constexpr Action tabsToSpaces{
    .id = "tabsToSpaces:", .title = u"Indentation to Spaces", .help = u"Indents the selected lines, or all, with spaces and not with tabs"};
inline constexpr Action spacesToTabs{
    .id = "spacesToTabs:", .title = u"Indentation to Tabs", .help = u"Indents the selected lines, or all, with tabs as far as they go"};
inline constexpr Action showGuessPanel{"showGuessPanel:", u"Show Spelling and Grammar", "Ctrl+:"};
inline constexpr Action checkSpelling{"checkSpelling:", u"Check Document Now", "Ctrl+;"};
inline constexpr Action toggleContinuousSpellChecking{
    .id = "toggleContinuousSpellChecking:", .title = u"Check Spelling While Typing", .isCheckable = true};

// View

inline constexpr Action toggleLineNumbers{.id = "toggleLineNumbers:",
                                          .title = u"Show Line Numbers",
                                          .keys = "Ctrl+Alt+L; Ctrl+Alt+Shift+L",
                                          .symbol = "list.number",
                                          .isCheckable = true};
inline constexpr Action toggleLineWrap{
    .id = "toggleLineWrap:", .title = u"Wrap Lines", .keys = "Ctrl+Alt+W", .symbol = "arrow.turn.down.left", .isCheckable = true};
inline constexpr Action toggleInvisibles{
    .id = "toggleInvisibles:", .title = u"Show Invisibles", .keys = "Ctrl+Alt+I", .symbol = "paragraphsign", .isCheckable = true};
inline constexpr Action toggleCurrentLineHighlight{
    .id = "toggleCurrentLineHighlight:", .title = u"Highlight Current Line", .isCheckable = true};
inline constexpr Action selectLanguage{.id = "selectLanguageFromMenu:", .title = u"Syntax", .isCheckable = true};
inline constexpr Action selectTheme{.id = "selectTheme:", .title = u"Theme", .isCheckable = true};
inline constexpr Action increaseFontSize{"increaseFontSize:", u"Bigger", "Ctrl++; Ctrl+="};
inline constexpr Action decreaseFontSize{"decreaseFontSize:", u"Smaller", "Ctrl+-"};
inline constexpr Action resetFontSize{"resetFontSize:", u"Actual Size", "Ctrl+0"};
inline constexpr Action toggleFullScreen{"toggleFullScreen:", u"Enter Full Screen", "F11"};

// Navigate

inline constexpr Action goToLine{"goToLine:", u"Go to Line…", "Ctrl+L; Ctrl+Shift+L", "number"};
inline constexpr Action goToMatchingBracket{"goToMatchingBracket:", u"Go to Matching Bracket", "Ctrl+Shift+M"};
inline constexpr Action selectEnclosingBrackets{"selectEnclosingBrackets:", u"Select Enclosing Brackets", "Ctrl+Alt+M"};
inline constexpr Action goToNextOccurrence{"goToNextOccurrence:", u"Next Occurrence of Word", "Ctrl+F3"};
inline constexpr Action goToNextChange{"goToNextChange:", u"Next Change", "F7"};
inline constexpr Action goToPreviousChange{"goToPreviousChange:", u"Previous Change", "F8"};
inline constexpr Action showChange{
    .id = "showChange:", .title = u"Show Change", .keys = "Shift+F7", .help = u"Shows what the changed lines were before"};
inline constexpr Action goToNextConflict{.id = "goToNextConflict:",
                                         .title = u"Next Conflict",
                                         .keys = "Ctrl+Shift+F7",
                                         .help = u"Goes to lines that a merge left to be decided on"};
inline constexpr Action goToPreviousConflict{"goToPreviousConflict:", u"Previous Conflict", "Ctrl+Shift+F8"};
inline constexpr Action selectNextTab{"selectNextTab:", u"Next Tab", "Ctrl+Tab; Ctrl+PgDown"};
inline constexpr Action selectPreviousTab{"selectPreviousTab:", u"Previous Tab", "Ctrl+Shift+Tab; Ctrl+PgUp"};
inline constexpr Action selectTab1{"selectTabByNumber:", u"Tab %d", "Ctrl+1", "", 1};
inline constexpr Action selectTab2{"selectTabByNumber:", u"Tab %d", "Ctrl+2", "", 2};
inline constexpr Action selectTab3{"selectTabByNumber:", u"Tab %d", "Ctrl+3", "", 3};
inline constexpr Action selectTab4{"selectTabByNumber:", u"Tab %d", "Ctrl+4", "", 4};
inline constexpr Action selectTab5{"selectTabByNumber:", u"Tab %d", "Ctrl+5", "", 5};
inline constexpr Action selectTab6{"selectTabByNumber:", u"Tab %d", "Ctrl+6", "", 6};
inline constexpr Action selectTab7{"selectTabByNumber:", u"Tab %d", "Ctrl+7", "", 7};
inline constexpr Action selectTab8{"selectTabByNumber:", u"Tab %d", "Ctrl+8", "", 8};
inline constexpr Action selectLastTab{"selectTabByNumber:", u"Last Tab", "Ctrl+9", "", 9};

// Editor

inline constexpr Action splitEditorRight{"splitEditorRight:", u"Split Right", "Ctrl+\\; Ctrl+<", "rectangle.split.2x1"};
inline constexpr Action splitEditorDown{"splitEditorDown:", u"Split Down", "Ctrl+Shift+\\; Ctrl+>", "rectangle.split.1x2"};
inline constexpr Action closeSplit{"closeSplit:", u"Close Split", "Ctrl+Alt+\\; Ctrl+Alt+<", "xmark.rectangle"};
inline constexpr Action focusNextPane{"focusNextPane:", u"Focus Next Pane", "Ctrl+Alt+]; Ctrl+Alt+Ä"};
inline constexpr Action toggleSplitOrientation{"toggleSplitOrientation:", u"Toggle Split Orientation"};

// Window

inline constexpr Action moveTabToNewWindow{"moveTabToNewWindow:", u"Move Tab to New Window"};
inline constexpr Action performMiniaturize{"performMiniaturize:", u"Minimize", "Ctrl+M"};
inline constexpr Action performZoom{"performZoom:", u"Zoom"};
inline constexpr Action arrangeInFront{"arrangeInFront:", u"Bring All to Front"};

// Help

inline constexpr Action showUserGuide{"showUserGuide:", u"User’s Guide", "F1"};
inline constexpr Action showShortcuts{"showShortcuts:", u"Keyboard Shortcuts"};
inline constexpr Action showVimKeyReference{"showVimKeyReference:", u"Vim Key Reference"};
inline constexpr Action showVimKeyOverview{"showVimKeyOverview:", u"Vim Keys at a Glance"};
inline constexpr Action revealSupportFolder{"revealSupportFolder:", u"Reveal Local Data Folder"};

// Where the menu bar has them

namespace Menus {

using enum MenuRow::Kind;

inline constexpr MenuRow line(separator);

inline constexpr auto quillet = std::to_array<MenuRow>({
    showAbout,
    line,
    showSettings,
    line,
    {hide, unavailable},
    {hideOthers, unavailable},
    {showAll, unavailable},
    line,
    terminate,
});

inline constexpr auto recentRows = std::to_array<MenuRow>({{openRecentDocument, recentDocuments}, line, clearRecentDocuments});
inline constexpr MenuLayout recent{u"Open Recent", recentRows};
inline constexpr auto compareRows =
    std::to_array<MenuRow>({compareWithFileOnDisk, compareWithFile, line, {compareWithOpenDocument, openDocuments}});
inline constexpr MenuLayout compare{u"Compare", compareRows};

inline constexpr auto file = std::to_array<MenuRow>({
    newDocument,
    newWindow,
    openDocument,
    openWithEncoding,
    recent,
    line,
    closeTab,
    reopenClosedTab,
    performClose,
    line,
    saveDocument,
    saveDocumentAs,
    saveAllDocuments,
    revertDocumentToSaved,
    reopenWithEncoding,
    listMissingCharacters,
    compare,
    makeBackup,
    moveDocumentToTrash,
    line,
    revealInFinder,
    copyFilePath,
    openInTerminal,
    line,
    printDocument,
    printPreview,
    exportAsPdf,
    exportAsHtml,
});

inline constexpr auto findRows = std::to_array<MenuRow>(
    {find, findAndReplace, findNext, findPrevious, useSelectionForFind, line, centerSelection, line, clearFindHistory});
inline constexpr MenuLayout finding{u"Find", findRows};
inline constexpr auto caretRows = std::to_array<MenuRow>(
    {selectNextOccurrence, skipOccurrence, selectAllOccurrences, line, addCaretAbove, addCaretBelow, splitSelectionIntoLines});
inline constexpr MenuLayout severalCaretsMenu{u"Several Carets", caretRows};
inline constexpr auto spellingRows = std::to_array<MenuRow>({showGuessPanel, checkSpelling, line, toggleContinuousSpellChecking});
inline constexpr MenuLayout spelling{u"Spelling and Grammar", spellingRows};

inline constexpr auto lineRows = std::to_array<MenuRow>({
    moveLinesUp,
    moveLinesDown,
    insertLineAbove,
    insertLineBelow,
    joinLines,
    line,
    sortLines,
    reverseLines,
    uniqueLines,
    trimTrailingWhitespace,
});
inline constexpr MenuLayout lines{u"Lines", lineRows};
inline constexpr auto conversionRows =
    std::to_array<MenuRow>({upperCase, lowerCase, titleCase, transposeCharacters, line, tabsToSpaces, spacesToTabs});
inline constexpr MenuLayout conversions{u"Convert", conversionRows};

inline constexpr auto edit = std::to_array<MenuRow>({
    undo,
    redo,
    line,
    cut,
    copy,
    paste,
    deleteSelection,
    selectAll,
    line,
    finding,
    severalCaretsMenu,
    line,
    toggleComment,
    insertTab,
    insertBacktab,
    duplicateLine,
    deleteLine,
    lines,
    conversions,
    toggleOverwriteMode,
    line,
    spelling,
});

inline constexpr auto syntaxRows = std::to_array<MenuRow>({{selectLanguage, languages}});
inline constexpr MenuLayout syntax{u"Syntax", syntaxRows};
inline constexpr auto themeRows = std::to_array<MenuRow>({{selectTheme, themes}});
inline constexpr MenuLayout theme{u"Theme", themeRows};

inline constexpr auto view = std::to_array<MenuRow>({
    toggleLineNumbers,
    toggleLineWrap,
    toggleInvisibles,
    toggleCurrentLineHighlight,
    line,
    syntax,
    theme,
    line,
    increaseFontSize,
    decreaseFontSize,
    resetFontSize,
    line,
    toggleFullScreen,
});

inline constexpr auto navigate = std::to_array<MenuRow>({
    goToLine,
    goToMatchingBracket,
    selectEnclosingBrackets,
    goToNextOccurrence,
    line,
    goToNextChange,
    goToPreviousChange,
    showChange,
    goToNextConflict,
    goToPreviousConflict,
    line,
    selectNextTab,
    selectPreviousTab,
    line,
    selectTab1,
    selectTab2,
    selectTab3,
    selectTab4,
    selectTab5,
    selectTab6,
    selectTab7,
    selectTab8,
    selectLastTab,
});

inline constexpr auto editor =
    std::to_array<MenuRow>({splitEditorRight, splitEditorDown, closeSplit, line, focusNextPane, toggleSplitOrientation});

inline constexpr auto window = std::to_array<MenuRow>({
    newWindow,
    moveTabToNewWindow,
    line,
    performMiniaturize,
    performZoom,
    line,
    {arrangeInFront, unavailable},
});

inline constexpr auto help =
    std::to_array<MenuRow>({showUserGuide, line, showShortcuts, showVimKeyReference, showVimKeyOverview, revealSupportFolder});

inline constexpr auto bar = std::to_array<MenuLayout>({
    {u"Quillet", quillet},
    {u"File", file},
    {u"Edit", edit},
    {u"View", view},
    {u"Navigate", navigate},
    {u"Editor", editor},
    {u"Window", window},
    {u"Help", help},
});

/// Of a tab.
inline constexpr auto tab = std::to_array<MenuRow>({
    closeTab,
    closeOtherTabs,
    closeTabsToTheRight,
    closeSavedTabs,
    reopenClosedTab,
    line,
    splitEditorRight,
    splitEditorDown,
    moveTabToNewWindow,
    line,
    copyFilePath,
    revealInFinder,
});

} // namespace Menus

// Not in the menu bar: for modal editing, toolbars, banners and the menus of tabs

inline constexpr Action showFindInterface{.id = "showFindInterface:", .keys = find.keys, .symbol = find.symbol};
inline constexpr Action closeWindowFromVim{"closeWindowFromVim:"};
inline constexpr Action closeOtherSplits{"closeOtherSplits:"};
inline constexpr Action focusPreviousPane{"focusPreviousPane:"};
inline constexpr Action focusPaneLeft{"focusPaneLeft:"};
inline constexpr Action focusPaneRight{"focusPaneRight:"};
inline constexpr Action focusPaneAbove{"focusPaneAbove:"};
inline constexpr Action focusPaneBelow{"focusPaneBelow:"};
/// The one that was active before.
inline constexpr Action focusLastPane{"focusLastPane:"};
/// What is typed behind ":" in modal editing asks for these as well.
inline constexpr Action saveAndClose{"saveAndClose:"};
inline constexpr Action forceCloseTab{"forceCloseTab:"};
/// What it represents is the name of the file; none means to read the document's own again.
inline constexpr Action editFile{"editFile:"};
/// It represents the number of a tab, from 1, or a part of its name.
inline constexpr Action showTab{"showTab:"};
inline constexpr Action listTabs{"listTabs:"};
/// It represents a line, from 1, a column of UTF-16 units, from 1 or 0 for the first that is no blank, and the path of a file or the
/// identifier of an open text, with a space between.
inline constexpr Action goToPlace{"goToPlace:"};
/// It represents the number of the line to put it behind, a space, and the name of the file.
inline constexpr Action insertFile{"insertFile:"};
/// It represents the name of a file of commands of modal editing; "%" is the text's own.
inline constexpr Action sourceFile{"sourceFile:"};
inline constexpr Action revertWithoutAsking{"revertWithoutAsking:"};
inline constexpr Action finishWaiting{"finishWaiting:"};
inline constexpr Action abortWaiting{"abortWaiting:"};
inline constexpr Action compareWithOrigin{"compareWithOrigin:"};

inline constexpr auto inNoMenu = std::to_array<const Action *>(
    {&showFindInterface, &closeWindowFromVim, &closeOtherSplits, &focusPreviousPane,   &focusPaneLeft,  &focusPaneRight,
     &focusPaneAbove,    &focusPaneBelow,     &focusLastPane,    &saveAndClose,        &forceCloseTab,  &editFile,
     &showTab,           &listTabs,           &goToPlace,        &insertFile,          &sourceFile,     &revertWithoutAsking,
     &finishWaiting,     &abortWaiting,       &closeOtherTabs,   &closeTabsToTheRight, &closeSavedTabs, &compareWithOrigin});

/// Those of the menu bar in its order, each once.
[[nodiscard]] std::vector<const Action *> inMenus();
/// Those, then the others.
[[nodiscard]] std::vector<const Action *> all();
/// The first of that name; null when there is none. For tools and tests.
[[nodiscard]] const Action *named(std::string_view id);

} // namespace Actions
