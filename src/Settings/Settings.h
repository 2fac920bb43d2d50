// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Localization.h"
#include "Settings/Setting.h"

enum class VimKeymapPreset { plain, lazyVim };
enum class ToolbarStyle { combined, separate, hidden };

template<>
inline constexpr auto choicesOf<VimKeymapPreset> = std::to_array<SettingChoice>({
    {QLatin1StringView("plain"), u"Vim"},
    {QLatin1StringView("lazyvim"), u"Vim with LazyVim keys"},
});
template<>
inline constexpr auto choicesOf<ToolbarStyle> = std::to_array<SettingChoice>({
    {QLatin1StringView("combined"), u"Combined with title"},
    {QLatin1StringView("separate"), u"Below the title"},
    {QLatin1StringView("hidden"), u"Hidden"},
});
template<>
inline constexpr auto choicesOf<AppLanguage> = std::to_array<SettingChoice>({
    {QLatin1StringView("system"), u"Automatic"},
    {QLatin1StringView("en"), u"English"},
    {QLatin1StringView("de"), u"Deutsch"},
});

/// All that the user can set: a setting is an object and a row of its page, which is all that the store, the settings window, menus,
/// toolbar, `:set`, the reference of keys and the inspection tool need.
namespace Settings {

using namespace Qt::StringLiterals;
using Announcement = AnySetting::Announcement;
using enum SettingRow::Place;
inline constexpr auto exactSwitch = ExOption::Direction::both;
inline constexpr auto onlyExact = ExOption::Audience::exact;

// Appearance

/// A font that most desktops lack: they show their own monospaced one.
inline constexpr Setting<QString> fontName("editor.fontName"_L1, "SFMono-Regular"_L1, {.title = u"Font:"});
/// Points.
inline constexpr Setting<double> fontSize("editor.fontSize"_L1, 13.0, {.minimum = 6, .maximum = 96});
/// "System" follows the desktop.
inline constexpr Setting<QString> themeName("editor.themeName"_L1, "System"_L1, {.title = u"Theme:"});
inline constexpr Setting<bool> strengthenColors("editor.strengthenColors"_L1, true, {.title = u"Strengthen faint colors of the theme"});
inline constexpr Setting<AppLanguage> language("app.language"_L1, AppLanguage::system,
                                               {.title = u"Language:", .announcement = Announcement::language});
inline constexpr Setting<bool> showLineNumbers("editor.showLineNumbers"_L1, true,
                                               {.title = u"Show line numbers", .option = {{u"number", u"nu"}, u"line numbers"}});
inline constexpr Setting<bool> wrapLines("editor.wrapLines"_L1, false,
                                         {.title = u"Wrap long lines", .option = {{u"wrap"}, u"line wrapping"}});
inline constexpr Setting<bool> indentWrappedRows("editor.indentWrappedRows"_L1, true, {.title = u"Indent wrapped rows like their line"});
inline constexpr Setting<bool> showInvisibles("editor.showInvisibles"_L1, false,
                                              {.title = u"Show invisible characters", .option = {{u"list"}, u"invisible characters"}});
inline constexpr Setting<bool> highlightCurrentLine("editor.highlightCurrentLine"_L1, true, {.title = u"Highlight the current line"});

inline constexpr auto appearanceRows = std::to_array<SettingRow>({
    {.setting = fontName},
    {.setting = themeName, .control = "themePopUp"_L1},
    {.setting = language,
     .control = "languagePopUp"_L1,
     .note = u"Takes effect immediately. “Automatic” follows the language order in System Settings."},
    {.setting = showLineNumbers, .place = startsGroup},
    {.setting = wrapLines},
    {.setting = indentWrappedRows, .place = below},
    {.setting = showInvisibles},
    {.setting = highlightCurrentLine},
    {.setting = strengthenColors,
     .note = u"Texts, line numbers and borders stand out enough to be read. Off, the theme is shown exactly as it is."},
});

// Editing

/// Columns.
inline constexpr Setting<int> tabWidth(
    "editor.tabWidth"_L1, 4,
    {.title = u"Indent width:", .minimum = 1, .maximum = 16, .option = {{u"shiftwidth", u"sw", u"tabstop", u"ts"}, u"indent width"}});
inline constexpr auto usualTabWidths = std::to_array({2, 3, 4, 8});
inline constexpr Setting<bool> insertSpaces("editor.insertSpaces"_L1, true,
                                            {.title = u"Insert spaces instead of tabs",
                                             .option = {{u"expandtab", u"et"}, u"spaces or tabs"}});
inline constexpr Setting<bool> autoIndent("editor.autoIndent"_L1, true, {.title = u"Keep indentation on new lines"});
inline constexpr Setting<bool> detectIndentation("editor.detectIndentation"_L1, true, {.title = u"Detect how a text is indented"});
inline constexpr Setting<bool> copyLineWithoutSelection("editor.copyLineWithoutSelection"_L1, false,
                                                        {.title = u"Copy and cut the line where nothing is selected"});
inline constexpr Setting<bool> autoPairs("editor.autoPairs"_L1, false, {.title = u"Complete brackets and quotes while typing"});
inline constexpr Setting<bool> vimMode("editor.vimMode"_L1, false,
                                       {.title = u"Vim key bindings",
                                        .option = {{u"vim", u"vim!"}, u"turn the Vim bindings off", ExOption::Direction::onlyOff}});
inline constexpr Setting<VimKeymapPreset> vimKeymapPreset("editor.vimKeymapPreset"_L1, VimKeymapPreset::plain, {.title = u"Keymap:"});
inline constexpr Setting<bool> vimSharesClipboard("editor.vimSharesClipboard"_L1, true,
                                                  {.title = u"Share yanks with the system clipboard"});

inline constexpr Setting<bool> vimExact("editor.vimExact"_L1, false, {.title = u"Behave like Vim in every detail"});
/// The Control chords that are not whose they are by default, such as "w=quillet". Others may be among them.
inline constexpr Setting<QStringList> vimChords("editor.vimChords"_L1, ""_L1, {.title = u"Control Keys…"});
/// The user has seen whose they are.
inline constexpr Setting<bool> vimChordsShown("editor.vimChordsShown"_L1, false);

// What Vim's users set; with `vimExact` alone.
inline constexpr Setting<bool> vimIgnoreCase("vim.ignorecase"_L1, false,
                                             {.option = {{u"ignorecase", u"ic"}, u"ignore case when searching", exactSwitch, onlyExact}});
inline constexpr Setting<bool> vimSmartCase("vim.smartcase"_L1, false,
                                            {.option = {{u"smartcase", u"scs"}, u"but not for capitals", exactSwitch, onlyExact}});
inline constexpr Setting<bool> vimIncSearch("vim.incsearch"_L1, true,
                                            {.option = {{u"incsearch", u"is"}, u"search while typing", exactSwitch, onlyExact}});
inline constexpr Setting<bool> vimHlSearch("vim.hlsearch"_L1, false,
                                           {.option = {{u"hlsearch", u"hls"}, u"mark all hits of a search", exactSwitch, onlyExact}});
inline constexpr Setting<bool> vimWrapScan("vim.wrapscan"_L1, true,
                                           {.option = {{u"wrapscan", u"ws"}, u"search on at the other end", exactSwitch, onlyExact}});
inline constexpr Setting<bool> vimGDefault("vim.gdefault"_L1, false,
                                           {.option = {{u"gdefault", u"gd"}, u"substitute all hits of a line", exactSwitch, onlyExact}});
inline constexpr Setting<bool>
    vimStartOfLine("vim.startofline"_L1, true,
                   {.option = {{u"startofline", u"sol"}, u"jumps go to the first non-blank", exactSwitch, onlyExact}});
inline constexpr Setting<bool>
    vimRelativeNumber("vim.relativenumber"_L1, false,
                      {.option = {{u"relativenumber", u"rnu"}, u"line numbers from the caret", exactSwitch, onlyExact}});
/// Columns; 0 for no width.
inline constexpr Setting<int>
    vimTextWidth("vim.textwidth"_L1, 0,
                 {.minimum = 0, .maximum = 1000, .option = {{u"textwidth", u"tw"}, u"width of formatted lines", exactSwitch, onlyExact}});
/// Rows.
inline constexpr Setting<int>
    vimScrollOff("vim.scrolloff"_L1, 0,
                 {.minimum = 0, .maximum = 1000, .option = {{u"scrolloff", u"so"}, u"rows kept around the caret", exactSwitch, onlyExact}});
/// Milliseconds.
inline constexpr Setting<int> vimTimeoutLen(
    "vim.timeoutlen"_L1, 1000,
    {.minimum = 0, .maximum = 60000, .option = {{u"timeoutlen", u"tm"}, u"time for the keys of a mapping", exactSwitch, onlyExact}});

inline constexpr Setting<bool> checkSpelling("editor.checkSpelling"_L1, false, {.title = u"Check spelling while typing"});

inline constexpr Setting<bool> markChanges("editor.markChanges"_L1, true, {.title = u"Mark changed lines"});
inline constexpr Setting<bool> compareWithCommit("editor.compareWithCommit"_L1, true,
                                                 {.title = u"Compare with the last commit in git repositories"});

inline constexpr Setting<bool> keepCurrentTab("tabs.keepCurrent"_L1, false, {.title = u"Keep the current tab when another one closes"});
inline constexpr Setting<bool> nameByFirstLine("tabs.nameByFirstLine"_L1, false,
                                               {.title = u"Name texts without a file after their first line"});

inline constexpr Setting<bool> markOccurrences("editor.markOccurrences"_L1, true,
                                               {.title = u"Mark where else the word at the caret stands"});

inline constexpr auto editingRows = std::to_array<SettingRow>({
    {.setting = tabWidth, .control = "tabWidthPopUp"_L1, .offered = usualTabWidths},
    {.setting = insertSpaces},
    {.setting = autoIndent,
     .note = u"Languages with a settled convention - Go and Makefiles use tabs, YAML and JSON use two spaces - override these per file.",
     .noteIsAbout = &tabWidth},
    {.setting = detectIndentation, .note = u"Where its first lines agree on tabs, or on a number of spaces."},
    {.setting = markOccurrences},
    {.setting = copyLineWithoutSelection},
    {.setting = autoPairs},
    {.setting = vimMode,
     .place = startsGroup,
     .note = u"Modal editing: normal, insert and visual modes, operators with motions and text objects, registers, marks, search, and the "
             u":w / :q family. The current mode is shown at the bottom left."},
    {.setting = vimKeymapPreset,
     .control = "vimPresetPopUp"_L1,
     .note = u"The LazyVim preset adds its leader-key mappings for the things this editor has - tabs, splits, saving, comments, moving "
             u"lines. Its language-server, fuzzy-finder, file-tree and git mappings are left unbound rather than pointing at features that "
             u"are not here. See the README for the full list."},
    {.setting = vimSharesClipboard,
     .note = u"Vim's clipboard=unnamedplus: y and d also copy to the macOS clipboard, and p pastes what was copied in another app."},
    {.setting = vimExact,
     .note = u"Where Vim and this program's own modal editing differ, Vim decides: macros, visual blocks, registers, ranges, patterns and "
             u"your own mappings included."},
    {.setting = vimChords, .note = u"Which of them are Vim’s, and which do what the menus say."},
    {.setting = checkSpelling,
     .place = startsGroup,
     .note = u"In texts that are opened from now on. The Edit menu turns it on and off for the one that is shown."},
    {.setting = markChanges},
    {.setting = compareWithCommit, .place = below},
    {.setting = keepCurrentTab},
    {.setting = nameByFirstLine},
});

// Saving

inline constexpr Setting<bool> trimTrailingWhitespaceOnSave("editor.trimTrailingWhitespaceOnSave"_L1, false,
                                                            {.title = u"Trim trailing whitespace on save"});
inline constexpr Setting<bool> ensureTrailingNewlineOnSave("editor.ensureTrailingNewlineOnSave"_L1, false,
                                                           {.title = u"Ensure the file ends with a newline"});
inline constexpr Setting<bool> keepFileForm("files.keepForm"_L1, false, {.title = u"Keep as in the file"});
inline constexpr Setting<bool> autosaveDrafts("session.autosaveDrafts"_L1, true, {.title = u"Keep local drafts of unsaved buffers"});
inline constexpr Setting<bool> autosaveToDisk("session.autosaveToDisk"_L1, false, {.title = u"Also write changes straight to the file"});
inline constexpr Setting<double> autosaveInterval("session.autosaveInterval"_L1, 3.0, {.title = u"Every:", .minimum = 0.5});
inline constexpr Setting<bool> restoreSession("session.restore"_L1, true, {.title = u"Reopen tabs and splits on launch"});
inline constexpr Setting<bool> restoreSessionWhenOpeningFiles("session.restoreWhenOpeningFiles"_L1, true,
                                                              {.title = u"Even when launched by opening a file"});
inline constexpr Setting<bool> reloadCleanFilesAutomatically("watch.reloadClean"_L1, true,
                                                             {.title = u"Reload unmodified files when they change on disk"});

inline constexpr auto savingRows = std::to_array<SettingRow>({
    {.setting = trimTrailingWhitespaceOnSave},
    {.setting = ensureTrailingNewlineOnSave},
    {.setting = keepFileForm,
     .note = u"Byte order marks, and line endings that differ from line to line, are written as they were found. Off, files are written "
             u"without a mark and with the same ending in every line."},
    {.setting = autosaveDrafts,
     .place = startsGroup,
     .note = u"Drafts live in ~/Library/Application Support/Quillet and are never uploaded anywhere."},
    {.setting = autosaveToDisk},
    {.setting = autosaveInterval, .control = "intervalField"_L1, .unit = u"seconds"},
    {.setting = restoreSession, .place = startsGroup, .control = "restoreSession"_L1},
    {.setting = restoreSessionWhenOpeningFiles,
     .place = below,
     .control = "restoreSessionWhenOpeningFiles"_L1,
     .note = u"Off, that file replaces the tabs from last time and the list of them is lost."},
    {.setting = reloadCleanFilesAutomatically, .place = startsGroup, .control = "reloadCleanFilesAutomatically"_L1},
});

// Toolbar

inline constexpr Setting<ToolbarStyle> toolbarStyle("toolbar.style"_L1, ToolbarStyle::combined,
                                                    {.title = u"Toolbar:", .announcement = Announcement::toolbar});
inline constexpr Setting<bool> windowShowsTitle("window.showsTitle"_L1, false,
                                                {.title = u"Show the file name in the title bar", .announcement = Announcement::toolbar});
inline constexpr Setting<bool> toolbarShowsLabels("toolbar.showsLabels"_L1, true,
                                                  {.title = u"Show labels next to icons", .announcement = Announcement::toolbar});
inline constexpr Setting<bool> toolbarWarnsInRed("toolbar.warnsInRed"_L1, true,
                                                 {.title = u"Show “Move to Trash” in red", .announcement = Announcement::toolbar});
/// Unknown ones may be among them.
inline constexpr Setting<QStringList> toolbarItemIDs("toolbar.items"_L1, "new,open,save,backup,terminal,trash"_L1,
                                                     {.title = u"Toolbar actions", .announcement = Announcement::toolbar});

inline constexpr auto toolbarRows = std::to_array<SettingRow>({
    {.setting = toolbarStyle, .control = "toolbarStyle"_L1},
    {.setting = windowShowsTitle, .control = "windowShowsTitle"_L1},
    {.setting = toolbarShowsLabels, .control = "toolbarShowsLabels"_L1},
    {.setting = toolbarWarnsInRed, .control = "toolbarWarnsInRed"_L1},
    {.setting = toolbarItemIDs,
     .place = startsGroup,
     .control = "toolbarItems"_L1,
     .note = u"Checked actions appear in the toolbar, in this order, aligned to the right."},
});

// Paper

/// A name of QPageSize::key(); empty for the usual paper of the country.
inline constexpr Setting<QString> printPaper("print.paper"_L1, ""_L1, {.title = u"Paper:"});
inline constexpr Setting<bool> printLandscape("print.landscape"_L1, false, {.title = u"Landscape"});
/// Points.
inline constexpr Setting<double> printFontSize("print.fontSize"_L1, 10.0, {.title = u"Text size:", .minimum = 4, .maximum = 72});
inline constexpr Setting<bool> printLineNumbers("print.lineNumbers"_L1, false, {.title = u"Line numbers"});
inline constexpr Setting<bool> printHeader("print.header"_L1, true, {.title = u"Page headers"});
inline constexpr Setting<bool> printColors("print.colors"_L1, true, {.title = u"Syntax colors"});

/// Asked for when something is printed or exported.
inline constexpr auto paperRows = std::to_array<SettingRow>({
    {.setting = printPaper, .control = "paperPopUp"_L1},
    {.setting = printLandscape},
    {.setting = printFontSize, .control = "printFontSize"_L1, .unit = u"points"},
    {.setting = printLineNumbers, .place = startsGroup, .control = "printLineNumbers"_L1},
    {.setting = printHeader, .control = "printHeader"_L1},
    {.setting = printColors, .control = "printColors"_L1},
});

/// A desktop-entry id; empty for the first terminal that is found.
inline constexpr Setting<QString> terminalIdentifier("terminal.bundleIdentifier"_L1, ""_L1);

inline constexpr auto pages = std::to_array<SettingsPageTable>({
    {u"Appearance", appearanceRows},
    {u"Editing", editingRows},
    {u"Saving", savingRows},
    {u"Toolbar", toolbarRows},
});
/// Those that another row shows too, those of which only the settings file knows, and those of paper.
inline constexpr auto withoutRow = std::to_array<const AnySetting *>(
    {&fontSize,    &vimChordsShown, &vimIgnoreCase,     &vimSmartCase,     &vimIncSearch, &vimHlSearch,   &vimWrapScan,
     &vimGDefault, &vimStartOfLine, &vimRelativeNumber, &vimTextWidth,     &vimScrollOff, &vimTimeoutLen, &terminalIdentifier,
     &printPaper,  &printLandscape, &printFontSize,     &printLineNumbers, &printHeader,  &printColors});

/// Every setting there is.
[[nodiscard]] std::span<const AnySetting *const> all();
/// Null when there is no such key.
[[nodiscard]] const AnySetting *withKey(QStringView key);

} // namespace Settings
