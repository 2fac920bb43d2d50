// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Appearance.h"
#include "Base/ColorBlend.h"
#include "Highlighting/Scope.h"
#include "Text/StyleTable.h"

#include <array>
#include <initializer_list>
#include <optional>
#include <span>

/// A set of scopes.
class ScopeSet final {
public:
    constexpr ScopeSet(std::initializer_list<Scope> members)
    {
        for (const Scope scope : members) {
            m_bits |= quint32(1) << int(scope);
        }
    }
    [[nodiscard]] constexpr bool contains(Scope scope) const { return (m_bits >> int(scope) & 1) != 0; }

private:
    quint32 m_bits = 0;
};

/// How well what a theme shows can be told from its grounds.
enum class Contrast {
    /// As the theme has it.
    own,
    /// Texts can be read by everybody whose eyes are not weak; line numbers and borders can be seen.
    legible,
    /// All of it stands out.
    high,
};

/// At least so much; what is less is moved.
struct ContrastLimits {
    double text;
    /// Of line numbers and borders.
    double mark;
};
[[nodiscard]] constexpr ContrastLimits limitsOf(Contrast contrast)
{
    switch (contrast) {
    case Contrast::own:
        break;
    case Contrast::legible:
        return {.text = 4.5, .mark = 3};
    case Contrast::high:
        return {.text = 7, .mark = 7};
    }
    return {.text = 1, .mark = 1};
}

/// The colours of the text area and of each scope. Colours are opaque sRGB, 0xFFRRGGBB.
struct Theme {
    /// Shown to the user and kept in the preferences.
    QStringView name;
    bool isDark;

    quint32 background;
    quint32 foreground;
    quint32 caret;
    quint32 selection;
    /// Behind the line that holds the caret.
    quint32 currentLine;
    quint32 gutterBackground;
    quint32 gutterForeground;
    /// The number of the line that holds the caret.
    quint32 gutterActiveForeground;
    quint32 gutterSeparator;
    /// Drawn tabs, blanks and line ends.
    quint32 invisibles;

    /// By scope; 0 is none. Ask `color()`.
    std::array<quint32, scopes.size()> colors;
    ScopeSet bold;
    ScopeSet italic;

    /// What its colours have been moved to.
    Contrast contrast = Contrast::own;
    /// Of all text that is selected; 0: it keeps its colours.
    quint32 selectedText = 0;
    /// Above and below the line that holds the caret; 0: none.
    quint32 currentLineBorder = 0;

    /// None for plain text, which has the foreground.
    [[nodiscard]] constexpr std::optional<quint32> color(Scope scope) const
    {
        const quint32 color = colors[size_t(scope)];
        return color == 0 ? std::nullopt : std::optional(color);
    }
    /// How text of the scope looks on this theme's background.
    [[nodiscard]] TextAttributes attributes(Scope scope) const;

    /// The built-in themes in the order of menus. They live as long as the program.
    [[nodiscard]] static std::span<const Theme> all();
    [[nodiscard]] static const Theme &dark() { return all()[0]; }
    [[nodiscard]] static const Theme &light() { return all()[1]; }
    [[nodiscard]] static const Theme &solarizedDark() { return all()[2]; }
    [[nodiscard]] static const Theme &solarizedLight() { return all()[3]; }

    /// The theme of exactly this name, null when there is none.
    [[nodiscard]] static const Theme *named(QStringView name);
    /// The theme to use for a preference: the one of that name, else (for "System" and for names that are no longer known) dark or light
    /// as the desktop is; light when that is not known.
    [[nodiscard]] static const Theme &resolved(QStringView name, std::optional<Appearance> appearance);
    /// A built-in theme with its colours moved as far as it takes; lives as long as the program.
    [[nodiscard]] static const Theme &shown(const Theme &builtIn, Contrast contrast);

    /// Built-in themes are the same when their names and contrasts are.
    friend bool operator==(const Theme &left, const Theme &right) { return left.name == right.name && left.contrast == right.contrast; }
};

/// A colour of a theme by its name, for those who list them.
struct ThemeColorRow {
    QStringView name;
    quint32 Theme::*color;
};
inline constexpr auto themeColors = std::to_array<ThemeColorRow>({
    {u"background", &Theme::background},
    {u"foreground", &Theme::foreground},
    {u"caret", &Theme::caret},
    {u"selection", &Theme::selection},
    {u"currentLine", &Theme::currentLine},
    {u"gutterBackground", &Theme::gutterBackground},
    {u"gutterForeground", &Theme::gutterForeground},
    {u"gutterActiveForeground", &Theme::gutterActiveForeground},
    {u"gutterSeparator", &Theme::gutterSeparator},
    {u"invisibles", &Theme::invisibles},
});
