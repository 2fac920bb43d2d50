// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLatin1StringView>
#include <QString>
#include <QStringList>

#include <array>
#include <limits>
#include <span>
#include <type_traits>
#include <variant>

enum class SettingType { text, list, real, integer, boolean, choice };

/// One value of an enum that is a setting: as the settings file names it, and as it is shown, in English.
struct SettingChoice {
    QLatin1StringView name;
    const char16_t *title;
};

/// The values of such an enum in the order of its cases; an unknown name stands for the first.
template<typename T>
inline constexpr std::array<SettingChoice, 0> choicesOf{};

/// How `:set` of modal editing knows a setting: a switch by its name and, to turn it off, with "no" before it; a number by whatever
/// begins with its name and ends with "=N". The first name is the one to show.
struct ExOption {
    enum class Direction { both, onlyOff };
    /// Who has it: everyone, or only those whose modal editing is exactly Vim's.
    enum class Audience { everyone, exact };

    std::array<QStringView, 4> names = {};
    /// English.
    const char16_t *purpose = nullptr;
    Direction direction = Direction::both;
    Audience audience = Audience::everyone;

    [[nodiscard]] constexpr bool exists() const { return purpose != nullptr; }
};

template<typename T>
struct Setting;

/// What there is to know about a setting but its C++ type. Settings are told apart by their addresses.
struct AnySetting {
    /// What a change is announced by.
    enum class Announcement { preferences, toolbar, language };
    /// The default of a list is its items with commas between, that of a choice its name.
    using Default = std::variant<bool, int, double, QLatin1StringView>;

    struct Details {
        /// Of its control, in English.
        const char16_t *title = nullptr;
        /// Of a number; a value beyond is moved to the end that it passed.
        double minimum = std::numeric_limits<double>::lowest();
        double maximum = std::numeric_limits<double>::max();
        ExOption option = {};
        Announcement announcement = Announcement::preferences;
    };

    constexpr AnySetting(QLatin1StringView name, SettingType kind, Default initial, std::span<const SettingChoice> values, Details more)
        : key(name), type(kind), byDefault(initial), choices(values), details(more)
    {}
    AnySetting(const AnySetting &) = delete;
    AnySetting &operator=(const AnySetting &) = delete;

    /// Null when it is of another type.
    template<typename T>
    [[nodiscard]] constexpr const Setting<T> *as() const;

    QLatin1StringView key;
    SettingType type;
    Default byDefault;
    std::span<const SettingChoice> choices;
    Details details;
};

/// One setting: its key in the settings file, what it is while the user has chosen nothing, and what else there is to know about it.
template<typename T>
struct Setting : AnySetting {
    static constexpr SettingType typeOfValue = std::is_same_v<T, bool>          ? SettingType::boolean
                                               : std::is_same_v<T, int>         ? SettingType::integer
                                               : std::is_same_v<T, double>      ? SettingType::real
                                               : std::is_same_v<T, QString>     ? SettingType::text
                                               : std::is_same_v<T, QStringList> ? SettingType::list
                                                                                : SettingType::choice;
    static_assert(typeOfValue != SettingType::choice || !choicesOf<T>.empty(), "an enum that is a setting needs its choicesOf");
    /// Texts and lists begin as a literal.
    using Initial = std::conditional_t<typeOfValue == SettingType::text || typeOfValue == SettingType::list, QLatin1StringView, T>;

    constexpr Setting(QLatin1StringView name, Initial initial, Details more = {})
        : AnySetting(name, typeOfValue, stored(initial), choicesOf<T>, more)
    {}

private:
    static constexpr Default stored(Initial value)
    {
        if constexpr (std::is_enum_v<T>) {
            const std::span<const SettingChoice> choices = choicesOf<T>;
            return choices[size_t(value)].name;
        } else {
            return value;
        }
    }
};

template<typename T>
constexpr const Setting<T> *AnySetting::as() const
{
    static_assert(!std::is_enum_v<T>, "all enums are one type here");
    return type == Setting<T>::typeOfValue ? static_cast<const Setting<T> *>(this) : nullptr;
}

/// The row of a setting on its page of the settings window, where there is more to it than the setting says.
struct SettingRow {
    enum class Place {
        inGroup,
        startsGroup,
        /// Belongs to the check box above.
        below,
    };

    const AnySetting &setting;
    Place place = Place::inGroup;
    /// What the control is called by those that look for it; empty: as the key's last part.
    QLatin1StringView control = {};
    /// Below the control; English.
    const char16_t *note = nullptr;
    /// Another setting that the note is about.
    const AnySetting *noteIsAbout = nullptr;
    /// Behind a number; English.
    const char16_t *unit = nullptr;
    /// Whole numbers to choose from; what is stored is offered too.
    std::span<const int> offered = {};

    [[nodiscard]] constexpr QLatin1StringView controlName() const
    {
        return control.isEmpty() ? setting.key.sliced(setting.key.lastIndexOf(QLatin1Char('.')) + 1) : control;
    }
};

struct SettingsPageTable {
    /// English.
    const char16_t *title;
    std::span<const SettingRow> rows;
};
