// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Localization.h"
#include "Base/NotificationCenter.h"

#include <QLatin1StringView>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <array>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <variant>

class DefaultsStore;
struct TerminalLookup;

/// The preferences, in the order of their table.
enum class Preference {
    fontName,
    fontSize,
    themeName,
    showLineNumbers,
    wrapLines,
    showInvisibles,
    highlightCurrentLine,
    tabWidth,
    insertSpaces,
    autoIndent,
    vimMode,
    vimSharesClipboard,
    vimKeymapPreset,
    language,
    trimTrailingWhitespaceOnSave,
    ensureTrailingNewlineOnSave,
    autosaveDrafts,
    autosaveToDisk,
    autosaveInterval,
    restoreSession,
    restoreSessionWhenOpeningFiles,
    reloadCleanFilesAutomatically,
    toolbarStyle,
    toolbarItemIDs,
    toolbarShowsLabels,
    windowShowsTitle,
    terminalIdentifier,
};

enum class VimKeymapPreset { plain, lazyVim };
enum class ToolbarStyle { combined, separate, hidden };

// As the settings file names them, in the order of the cases; an unknown name stands for the first.
constexpr std::array vimKeymapPresetNames = {QLatin1StringView("plain"), QLatin1StringView("lazyvim")};
constexpr std::array toolbarStyleNames = {QLatin1StringView("combined"), QLatin1StringView("separate"), QLatin1StringView("hidden")};
static_assert(vimKeymapPresetNames.size() == size_t(VimKeymapPreset::lazyVim) + 1);
static_assert(toolbarStyleNames.size() == size_t(ToolbarStyle::hidden) + 1);

/// In the language of the interface.
[[nodiscard]] QString displayName(ToolbarStyle style);
[[nodiscard]] QString displayName(VimKeymapPreset preset);

enum class PreferenceType { text, list, real, integer, boolean };

/// One preference: its key in the settings file and what may stand there.
struct PreferenceRow {
    /// What a change is announced by.
    enum class Announcement { preferences, toolbar, language };
    /// The default of a list is its items with commas between.
    using Default = std::variant<bool, int, double, QLatin1StringView>;

    Preference preference;
    QLatin1StringView key;
    PreferenceType type;
    Default defaultValue;
    Announcement announcement = Announcement::preferences;
    /// Of a number; a value beyond is moved to the end that it passed.
    double minimum = std::numeric_limits<double>::lowest();
    double maximum = std::numeric_limits<double>::max();
    /// Of a text that is one of a few.
    std::span<const QLatin1StringView> choices = {};
};

/// The user's settings with types, limits and announcements. Main thread only.
///
/// Every setter moves its value within its limits, stores it and posts one of the notifications below, also when nothing changed.
class Preferences final {
public:
    /// After every setter but those of the toolbar; about the preferences.
    static constexpr NotificationName didChange = "QLT.PreferencesDidChange";
    /// After a setter of the toolbar's style, items, labels or title; about the preferences.
    static constexpr NotificationName toolbarConfigurationDidChange = "QLT.ToolbarConfigurationDidChange";
    /// After setLanguage, before `didChange`; about nothing.
    static constexpr NotificationName languageDidChange = Localization::didChangeNotification;

    /// Registers the defaults. `defaults` and `notifications` must outlive the preferences.
    Preferences(DefaultsStore &defaults, NotificationCenter &notifications);

    [[nodiscard]] static std::span<const PreferenceRow> table();
    [[nodiscard]] static const PreferenceRow &row(Preference preference);
    /// Null when there is no such key.
    [[nodiscard]] static const PreferenceRow *rowForKey(QStringView key);

    /// What makes the texts of the interface be looked up anew; runs when the language is set, before anybody hears of it.
    void setLanguageResolver(std::function<void(AppLanguage language)> resolver) { m_resolveLanguage = std::move(resolver); }

    /// A QString, QStringList, double, int or bool by the row's type.
    [[nodiscard]] QVariant value(Preference preference) const;
    /// Sets it as its setter does, from what somebody wrote on a command line: a list is its items with commas between. False, and
    /// nothing set, when `text` is no value of the row's type or none of its choices.
    bool setFromText(const PreferenceRow &row, const QString &text);

    [[nodiscard]] QString fontName() const { return text(Preference::fontName); }
    void setFontName(const QString &name) { set(Preference::fontName, name); }
    /// Points, 6 … 96.
    [[nodiscard]] double fontSize() const { return real(Preference::fontSize); }
    void setFontSize(double size) { set(Preference::fontSize, size); }
    [[nodiscard]] QString themeName() const { return text(Preference::themeName); }
    void setThemeName(const QString &name) { set(Preference::themeName, name); }
    [[nodiscard]] bool showLineNumbers() const { return boolean(Preference::showLineNumbers); }
    void setShowLineNumbers(bool value) { set(Preference::showLineNumbers, value); }
    [[nodiscard]] bool wrapLines() const { return boolean(Preference::wrapLines); }
    void setWrapLines(bool value) { set(Preference::wrapLines, value); }
    [[nodiscard]] bool showInvisibles() const { return boolean(Preference::showInvisibles); }
    void setShowInvisibles(bool value) { set(Preference::showInvisibles, value); }
    [[nodiscard]] bool highlightCurrentLine() const { return boolean(Preference::highlightCurrentLine); }
    void setHighlightCurrentLine(bool value) { set(Preference::highlightCurrentLine, value); }
    /// Columns, 1 … 16.
    [[nodiscard]] int tabWidth() const { return integer(Preference::tabWidth); }
    void setTabWidth(int width) { set(Preference::tabWidth, width); }
    [[nodiscard]] bool insertSpaces() const { return boolean(Preference::insertSpaces); }
    void setInsertSpaces(bool value) { set(Preference::insertSpaces, value); }
    [[nodiscard]] bool autoIndent() const { return boolean(Preference::autoIndent); }
    void setAutoIndent(bool value) { set(Preference::autoIndent, value); }
    [[nodiscard]] bool vimMode() const { return boolean(Preference::vimMode); }
    void setVimMode(bool value) { set(Preference::vimMode, value); }
    [[nodiscard]] bool vimSharesClipboard() const { return boolean(Preference::vimSharesClipboard); }
    void setVimSharesClipboard(bool value) { set(Preference::vimSharesClipboard, value); }
    [[nodiscard]] VimKeymapPreset vimKeymapPreset() const { return VimKeymapPreset(choice(Preference::vimKeymapPreset)); }
    void setVimKeymapPreset(VimKeymapPreset preset) { setChoice(Preference::vimKeymapPreset, int(preset)); }
    [[nodiscard]] AppLanguage language() const { return AppLanguage(choice(Preference::language)); }
    void setLanguage(AppLanguage language) { setChoice(Preference::language, int(language)); }
    [[nodiscard]] bool trimTrailingWhitespaceOnSave() const { return boolean(Preference::trimTrailingWhitespaceOnSave); }
    void setTrimTrailingWhitespaceOnSave(bool value) { set(Preference::trimTrailingWhitespaceOnSave, value); }
    [[nodiscard]] bool ensureTrailingNewlineOnSave() const { return boolean(Preference::ensureTrailingNewlineOnSave); }
    void setEnsureTrailingNewlineOnSave(bool value) { set(Preference::ensureTrailingNewlineOnSave, value); }
    [[nodiscard]] bool autosaveDrafts() const { return boolean(Preference::autosaveDrafts); }
    void setAutosaveDrafts(bool value) { set(Preference::autosaveDrafts, value); }
    [[nodiscard]] bool autosaveToDisk() const { return boolean(Preference::autosaveToDisk); }
    void setAutosaveToDisk(bool value) { set(Preference::autosaveToDisk, value); }
    /// Seconds, at least 0.5.
    [[nodiscard]] double autosaveInterval() const { return real(Preference::autosaveInterval); }
    void setAutosaveInterval(double seconds) { set(Preference::autosaveInterval, seconds); }
    [[nodiscard]] bool restoreSession() const { return boolean(Preference::restoreSession); }
    void setRestoreSession(bool value) { set(Preference::restoreSession, value); }
    [[nodiscard]] bool restoreSessionWhenOpeningFiles() const { return boolean(Preference::restoreSessionWhenOpeningFiles); }
    void setRestoreSessionWhenOpeningFiles(bool value) { set(Preference::restoreSessionWhenOpeningFiles, value); }
    [[nodiscard]] bool reloadCleanFilesAutomatically() const { return boolean(Preference::reloadCleanFilesAutomatically); }
    void setReloadCleanFilesAutomatically(bool value) { set(Preference::reloadCleanFilesAutomatically, value); }
    [[nodiscard]] ToolbarStyle toolbarStyle() const { return ToolbarStyle(choice(Preference::toolbarStyle)); }
    void setToolbarStyle(ToolbarStyle style) { setChoice(Preference::toolbarStyle, int(style)); }
    /// Unknown ones may be among them.
    [[nodiscard]] QStringList toolbarItemIDs() const { return list(Preference::toolbarItemIDs); }
    void setToolbarItemIDs(const QStringList &ids) { set(Preference::toolbarItemIDs, ids); }
    [[nodiscard]] bool toolbarShowsLabels() const { return boolean(Preference::toolbarShowsLabels); }
    void setToolbarShowsLabels(bool value) { set(Preference::toolbarShowsLabels, value); }
    [[nodiscard]] bool windowShowsTitle() const { return boolean(Preference::windowShowsTitle); }
    void setWindowShowsTitle(bool value) { set(Preference::windowShowsTitle, value); }
    /// A desktop-entry id; empty for the first that is found.
    [[nodiscard]] QString terminalIdentifier() const { return text(Preference::terminalIdentifier); }
    void setTerminalIdentifier(const QString &id) { set(Preference::terminalIdentifier, id); }

    /// The desktop entry or the program of the terminal to open: the preferred one if it is installed, else the first that is.
    [[nodiscard]] std::optional<QString> terminalApplicationPath(const TerminalLookup &lookup) const;

private:
    [[nodiscard]] QString text(Preference preference) const;
    [[nodiscard]] QStringList list(Preference preference) const;
    [[nodiscard]] double real(Preference preference) const;
    [[nodiscard]] int integer(Preference preference) const;
    [[nodiscard]] bool boolean(Preference preference) const;
    /// Place among the row's choices.
    [[nodiscard]] int choice(Preference preference) const;
    void setChoice(Preference preference, int place);
    void set(Preference preference, const QVariant &value);
    void announce(PreferenceRow::Announcement announcement);

    DefaultsStore &m_defaults;
    NotificationCenter &m_notifications;
    std::function<void(AppLanguage)> m_resolveLanguage;
};
