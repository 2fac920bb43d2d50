// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Settings/Preferences.h"

#include "Base/Translation.h"
#include "Desktop/Terminals.h"
#include "Settings/DefaultsStore.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

using enum PreferenceType;
using Announcement = PreferenceRow::Announcement;

constexpr auto rows = std::to_array<PreferenceRow>({
    // A font that most desktops lack: they show their own monospaced one.
    {Preference::fontName, "editor.fontName"_L1, text, "SFMono-Regular"_L1},
    {.preference = Preference::fontSize, .key = "editor.fontSize"_L1, .type = real, .defaultValue = 13.0, .minimum = 6, .maximum = 96},
    {Preference::themeName, "editor.themeName"_L1, text, "System"_L1},
    {Preference::showLineNumbers, "editor.showLineNumbers"_L1, boolean, true},
    {Preference::wrapLines, "editor.wrapLines"_L1, boolean, false},
    {Preference::showInvisibles, "editor.showInvisibles"_L1, boolean, false},
    {Preference::highlightCurrentLine, "editor.highlightCurrentLine"_L1, boolean, true},
    {.preference = Preference::tabWidth, .key = "editor.tabWidth"_L1, .type = integer, .defaultValue = 4, .minimum = 1, .maximum = 16},
    {Preference::insertSpaces, "editor.insertSpaces"_L1, boolean, true},
    {Preference::autoIndent, "editor.autoIndent"_L1, boolean, true},
    {Preference::vimMode, "editor.vimMode"_L1, boolean, false},
    {Preference::vimSharesClipboard, "editor.vimSharesClipboard"_L1, boolean, true},
    {.preference = Preference::vimKeymapPreset,
     .key = "editor.vimKeymapPreset"_L1,
     .type = text,
     .defaultValue = "plain"_L1,
     .choices = vimKeymapPresetNames},
    {.preference = Preference::language,
     .key = "app.language"_L1,
     .type = text,
     .defaultValue = "system"_L1,
     .announcement = Announcement::language,
     .choices = appLanguageNames},
    {Preference::trimTrailingWhitespaceOnSave, "editor.trimTrailingWhitespaceOnSave"_L1, boolean, false},
    {Preference::ensureTrailingNewlineOnSave, "editor.ensureTrailingNewlineOnSave"_L1, boolean, false},
    {Preference::autosaveDrafts, "session.autosaveDrafts"_L1, boolean, true},
    {Preference::autosaveToDisk, "session.autosaveToDisk"_L1, boolean, false},
    {.preference = Preference::autosaveInterval, .key = "session.autosaveInterval"_L1, .type = real, .defaultValue = 3.0, .minimum = 0.5},
    {Preference::restoreSession, "session.restore"_L1, boolean, true},
    {Preference::restoreSessionWhenOpeningFiles, "session.restoreWhenOpeningFiles"_L1, boolean, true},
    {Preference::reloadCleanFilesAutomatically, "watch.reloadClean"_L1, boolean, true},
    {.preference = Preference::toolbarStyle,
     .key = "toolbar.style"_L1,
     .type = text,
     .defaultValue = "combined"_L1,
     .announcement = Announcement::toolbar,
     .choices = toolbarStyleNames},
    {Preference::toolbarItemIDs, "toolbar.items"_L1, list, "new,open,save,backup,terminal,trash"_L1, Announcement::toolbar},
    {Preference::toolbarShowsLabels, "toolbar.showsLabels"_L1, boolean, true, Announcement::toolbar},
    {Preference::windowShowsTitle, "window.showsTitle"_L1, boolean, false, Announcement::toolbar},
    {Preference::terminalIdentifier, "terminal.bundleIdentifier"_L1, text, ""_L1},
});

static_assert([] {
    for (size_t place = 0; place < rows.size(); ++place) {
        if (size_t(rows[place].preference) != place) {
            return false;
        }
    }
    return rows.size() == size_t(Preference::terminalIdentifier) + 1;
}());

QStringList itemsOf(const QString &text)
{
    return text.split(u',', Qt::SkipEmptyParts);
}

QVariant defaultOf(const PreferenceRow &row)
{
    return std::visit(
        [&](auto value) -> QVariant {
            if constexpr (std::is_same_v<decltype(value), QLatin1StringView>) {
                return row.type == list ? QVariant(itemsOf(QString(value))) : QVariant(QString(value));
            } else {
                return value;
            }
        },
        row.defaultValue);
}

/// What `text` says, if it is of the row's type.
std::optional<QVariant> parsed(const PreferenceRow &row, const QString &text)
{
    bool isValid = true;
    QVariant value;
    switch (row.type) {
    case PreferenceType::text:
        isValid = row.choices.empty() || std::ranges::find(row.choices, text) != row.choices.end();
        value = text;
        break;
    case list:
        value = itemsOf(text);
        break;
    case real: {
        const double number = text.toDouble(&isValid);
        isValid = isValid && std::isfinite(number);
        value = number;
        break;
    }
    case integer:
        value = text.toInt(&isValid);
        break;
    case boolean:
        isValid = text == "true"_L1 || text == "false"_L1;
        value = text == "true"_L1;
        break;
    }
    return isValid ? std::optional(value) : std::nullopt;
}

} // namespace

QString displayName(ToolbarStyle style)
{
    switch (style) {
    case ToolbarStyle::combined:
        return localized(u"Combined with title");
    case ToolbarStyle::separate:
        return localized(u"Below the title");
    case ToolbarStyle::hidden:
        return localized(u"Hidden");
    }
    return {};
}

QString displayName(VimKeymapPreset preset)
{
    switch (preset) {
    case VimKeymapPreset::plain:
        return localized(u"Vim");
    case VimKeymapPreset::lazyVim:
        return localized(u"Vim with LazyVim keys");
    }
    return {};
}

Preferences::Preferences(DefaultsStore &defaults, NotificationCenter &notifications) : m_defaults(defaults), m_notifications(notifications)
{
    for (const PreferenceRow &row : rows) {
        m_defaults.registerDefault(row.key, defaultOf(row));
    }
}

std::span<const PreferenceRow> Preferences::table()
{
    return rows;
}

const PreferenceRow &Preferences::row(Preference preference)
{
    return rows[size_t(preference)];
}

const PreferenceRow *Preferences::rowForKey(QStringView key)
{
    const auto found = std::ranges::find_if(rows, [key](const PreferenceRow &row) { return row.key == key; });
    return found == rows.end() ? nullptr : &*found;
}

QVariant Preferences::value(Preference preference) const
{
    switch (row(preference).type) {
    case PreferenceType::text:
        return row(preference).choices.empty() ? text(preference) : QString(row(preference).choices[size_t(choice(preference))]);
    case PreferenceType::list:
        return list(preference);
    case PreferenceType::real:
        return real(preference);
    case PreferenceType::integer:
        return integer(preference);
    case PreferenceType::boolean:
        return boolean(preference);
    }
    return {};
}

bool Preferences::setFromText(const PreferenceRow &row, const QString &text)
{
    const auto value = parsed(row, text);
    if (value) {
        set(row.preference, *value);
    }
    return value.has_value();
}

std::optional<QString> Preferences::terminalApplicationPath(const TerminalLookup &lookup) const
{
    return lookup.terminal(terminalIdentifier());
}

QString Preferences::text(Preference preference) const
{
    return m_defaults.string(row(preference).key);
}

QStringList Preferences::list(Preference preference) const
{
    return m_defaults.stringList(row(preference).key);
}

double Preferences::real(Preference preference) const
{
    // The limits hold for what was written into the file by hand too.
    return std::clamp(m_defaults.real(row(preference).key), row(preference).minimum, row(preference).maximum);
}

int Preferences::integer(Preference preference) const
{
    return int(std::clamp<double>(m_defaults.integer(row(preference).key), row(preference).minimum, row(preference).maximum));
}

bool Preferences::boolean(Preference preference) const
{
    return m_defaults.boolean(row(preference).key);
}

int Preferences::choice(Preference preference) const
{
    const auto choices = row(preference).choices;
    const auto found = std::ranges::find(choices, text(preference));
    return found == choices.end() ? 0 : int(found - choices.begin());
}

void Preferences::setChoice(Preference preference, int place)
{
    set(preference, QString(row(preference).choices[size_t(place)]));
}

void Preferences::set(Preference preference, const QVariant &value)
{
    const PreferenceRow &changed = row(preference);
    QVariant stored = value;
    if (changed.type == PreferenceType::real) {
        // A value that is no number at all ends at the minimum.
        stored = std::fmin(std::fmax(value.toDouble(), changed.minimum), changed.maximum);
    } else if (changed.type == PreferenceType::integer) {
        stored = int(std::clamp<double>(value.toInt(), changed.minimum, changed.maximum));
    }
    m_defaults.set(changed.key, stored);
    announce(changed.announcement);
}

void Preferences::announce(PreferenceRow::Announcement announcement)
{
    if (announcement == Announcement::toolbar) {
        m_notifications.post(toolbarConfigurationDidChange, this);
        return;
    }
    if (announcement == Announcement::language) {
        if (m_resolveLanguage) {
            m_resolveLanguage(language());
        }
        m_notifications.post(languageDidChange, nullptr);
    }
    m_notifications.post(didChange, this);
}
