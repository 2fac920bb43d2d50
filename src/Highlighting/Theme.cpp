// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/Theme.h"

#include "Base/ColorContrast.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

namespace {

struct ScopeColor {
    Scope scope;
    quint32 rgb;
};

constexpr quint32 opaque = 0xFF000000;

constexpr std::array<quint32, scopes.size()> colorsOf(const std::array<ScopeColor, scopes.size() - 1> &rows)
{
    std::array<quint32, scopes.size()> colors{};
    for (const ScopeColor &row : rows) {
        colors[size_t(row.scope)] = opaque | row.rgb;
    }
    return colors;
}

constexpr ScopeSet boldScopes = {Scope::keyword, Scope::heading};
constexpr ScopeSet italicScopes = {Scope::comment, Scope::emphasis};

// The gutter's ground is the text's, and emphasis has the text's own colour: its style shows it well enough.
constexpr auto themes = std::to_array<Theme>({
    {.name = u"Dark",
     .isDark = true,
     .background = opaque | 0x1E1F22,
     .foreground = opaque | 0xDCDCDC,
     .caret = opaque | 0xE8E8E8,
     .selection = opaque | 0x2F5C8F,
     .currentLine = opaque | 0x26282C,
     .gutterBackground = opaque | 0x1E1F22,
     .gutterForeground = opaque | 0x5A5D63,
     .gutterActiveForeground = opaque | 0xB8BCC4,
     .gutterSeparator = opaque | 0x2E3034,
     .invisibles = opaque | 0x44474D,
     .colors = colorsOf({{
         {Scope::comment, 0x6E7681},
         {Scope::string, 0x9ECE6A},
         {Scope::escape, 0xC3E88D},
         {Scope::number, 0xE5A96B},
         {Scope::keyword, 0xC792EA},
         {Scope::builtin, 0xF78C6C},
         {Scope::type, 0x82AAFF},
         {Scope::function, 0x7DCFFF},
         {Scope::variable, 0xE06C9F},
         {Scope::attribute, 0xFFCB6B},
         {Scope::preprocessor, 0xC792EA},
         {Scope::punctuation, 0x9BA1AB},
         {Scope::operatorToken, 0x89DDFF},
         {Scope::heading, 0x82AAFF},
         {Scope::emphasis, 0xDCDCDC},
         {Scope::link, 0x7DCFFF},
         {Scope::invalid, 0xFF5370},
     }}),
     .bold = boldScopes,
     .italic = italicScopes},
    {.name = u"Light",
     .isDark = false,
     .background = opaque | 0xFFFFFF,
     .foreground = opaque | 0x1F2328,
     .caret = opaque | 0x1F2328,
     .selection = opaque | 0xB4D8FE,
     .currentLine = opaque | 0xF3F4F6,
     .gutterBackground = opaque | 0xFFFFFF,
     .gutterForeground = opaque | 0xA0A6AE,
     .gutterActiveForeground = opaque | 0x40464E,
     .gutterSeparator = opaque | 0xE6E8EB,
     .invisibles = opaque | 0xD0D4DA,
     .colors = colorsOf({{
         {Scope::comment, 0x6E7781},
         {Scope::string, 0x0A7D33},
         {Scope::escape, 0x0F6B2C},
         {Scope::number, 0x8A5000},
         {Scope::keyword, 0xA626A4},
         {Scope::builtin, 0xC2410C},
         {Scope::type, 0x1750B5},
         {Scope::function, 0x0550AE},
         {Scope::variable, 0xA8305B},
         {Scope::attribute, 0x8A5000},
         {Scope::preprocessor, 0xA626A4},
         {Scope::punctuation, 0x57606A},
         {Scope::operatorToken, 0x0F6FC5},
         {Scope::heading, 0x1750B5},
         {Scope::emphasis, 0x1F2328},
         {Scope::link, 0x0550AE},
         {Scope::invalid, 0xCF222E},
     }}),
     .bold = boldScopes,
     .italic = italicScopes},
    {.name = u"Solarized Dark",
     .isDark = true,
     .background = opaque | 0x002B36,
     .foreground = opaque | 0x93A1A1,
     .caret = opaque | 0xEEE8D5,
     .selection = opaque | 0x0E4E5E,
     .currentLine = opaque | 0x073642,
     .gutterBackground = opaque | 0x002B36,
     .gutterForeground = opaque | 0x4E6B72,
     .gutterActiveForeground = opaque | 0x93A1A1,
     .gutterSeparator = opaque | 0x073642,
     .invisibles = opaque | 0x2A4C56,
     .colors = colorsOf({{
         {Scope::comment, 0x586E75},
         {Scope::string, 0x2AA198},
         {Scope::escape, 0x35C0B5},
         {Scope::number, 0xD33682},
         {Scope::keyword, 0x859900},
         {Scope::builtin, 0xCB4B16},
         {Scope::type, 0xB58900},
         {Scope::function, 0x268BD2},
         {Scope::variable, 0xD33682},
         {Scope::attribute, 0xB58900},
         {Scope::preprocessor, 0xCB4B16},
         {Scope::punctuation, 0x839496},
         {Scope::operatorToken, 0x859900},
         {Scope::heading, 0x268BD2},
         {Scope::emphasis, 0x93A1A1},
         {Scope::link, 0x268BD2},
         {Scope::invalid, 0xDC322F},
     }}),
     .bold = boldScopes,
     .italic = italicScopes},
    {.name = u"Solarized Light",
     .isDark = false,
     .background = opaque | 0xFDF6E3,
     .foreground = opaque | 0x586E75,
     .caret = opaque | 0x073642,
     .selection = opaque | 0xD8D0BC,
     .currentLine = opaque | 0xEEE8D5,
     .gutterBackground = opaque | 0xFDF6E3,
     .gutterForeground = opaque | 0x9BA5A0,
     .gutterActiveForeground = opaque | 0x586E75,
     .gutterSeparator = opaque | 0xEEE8D5,
     .invisibles = opaque | 0xD5CDB8,
     .colors = colorsOf({{
         {Scope::comment, 0x93A1A1},
         {Scope::string, 0x2AA198},
         {Scope::escape, 0x1F8A82},
         {Scope::number, 0xD33682},
         {Scope::keyword, 0x859900},
         {Scope::builtin, 0xCB4B16},
         {Scope::type, 0xB58900},
         {Scope::function, 0x268BD2},
         {Scope::variable, 0xD33682},
         {Scope::attribute, 0xB58900},
         {Scope::preprocessor, 0xCB4B16},
         {Scope::punctuation, 0x657B83},
         {Scope::operatorToken, 0x859900},
         {Scope::heading, 0x268BD2},
         {Scope::emphasis, 0x586E75},
         {Scope::link, 0x268BD2},
         {Scope::invalid, 0xDC322F},
     }}),
     .bold = boldScopes,
     .italic = italicScopes},
});

/// What is drawn of blanks and line ends is faint, unless all shall stand out.
constexpr double highContrastOfInvisibles = 4.5;

/// What stands around the text moves towards the text's colour, the text itself towards black or white, so that it keeps its hues.
Theme withContrast(Theme theme, Contrast contrast)
{
    theme.contrast = contrast;
    const auto [text, mark] = limitsOf(contrast);
    const quint32 opposite = oppositeOf(theme.background);
    const bool isHigh = contrast == Contrast::high;
    const auto move = [&theme, opposite, isHigh](quint32 &color, double least) {
        color = legible(color, opposite, least, {theme.background, isHigh ? theme.currentLine : theme.background});
    };
    move(theme.foreground, text);
    for (quint32 &color : theme.colors) {
        if (color != 0) {
            move(color, text);
        }
    }
    const auto moveBeside = [&theme](quint32 &color, double least) {
        color = legible(color, theme.foreground, least, {theme.gutterBackground});
    };
    moveBeside(theme.gutterForeground, mark);
    moveBeside(theme.gutterActiveForeground, text);
    moveBeside(theme.gutterSeparator, mark);
    if (isHigh) {
        move(theme.caret, text);
        move(theme.invisibles, highContrastOfInvisibles);
        theme.selection = theme.foreground;
        theme.selectedText = theme.background;
        theme.currentLineBorder = theme.gutterSeparator;
    }
    return theme;
}

static_assert(std::ranges::all_of(themes, [](const Theme &theme) {
    return std::ranges::all_of(scopes,
                               [&](const ScopeRow &row) { return theme.color(row.scope).has_value() == (row.scope != Scope::plain); });
}));

} // namespace

std::span<const Theme> Theme::all()
{
    return themes;
}

const Theme *Theme::named(QStringView name)
{
    const auto found = std::ranges::find(themes, name, &Theme::name);
    return found == themes.end() ? nullptr : &*found;
}

const Theme &Theme::resolved(QStringView name, std::optional<Appearance> appearance)
{
    if (const Theme *theme = named(name)) {
        return *theme;
    }
    return appearance == Appearance::dark ? dark() : light();
}

const Theme &Theme::shown(const Theme &builtIn, Contrast contrast)
{
    if (contrast == Contrast::own) {
        return builtIn;
    }
    // Few of them are ever shown in a run.
    static std::mutex isMaking;
    static std::map<std::pair<QStringView, Contrast>, Theme> moved;
    const std::lock_guard lock(isMaking);
    const auto known = moved.find({builtIn.name, contrast});
    return known != moved.end() ? known->second
                                : moved.emplace(std::pair(builtIn.name, contrast), withContrast(builtIn, contrast)).first->second;
}

TextAttributes Theme::attributes(Scope scope) const
{
    return {.foreground = color(scope).value_or(foreground),
            .isBold = bold.contains(scope),
            .isItalic = italic.contains(scope),
            .isUnderlined = scope == Scope::link};
}
