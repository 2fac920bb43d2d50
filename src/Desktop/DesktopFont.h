// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>
#include <optional>

/// A font as it is chosen for a whole desktop; its weight and slant are left to the text.
struct DesktopFont {
    QString family;
    double pointSize = 0;

    friend bool operator==(const DesktopFont &, const DesktopFont &) = default;
};

/// Says whether there is a family of that name.
using FamilyQuery = std::function<bool(const QString &family)>;

/// As GNOME writes fonts: family, perhaps words for the style, size in points, as in "Fira Code Semi-Bold 11". None when there is no such
/// family or no size.
[[nodiscard]] std::optional<DesktopFont> fontOfDescription(const QString &description, const FamilyQuery &isFamily);

/// As KDE writes fonts: family, size in points and more with commas between, as in "Hack,10,-1,5,50,0,0,0,0,0".
[[nodiscard]] std::optional<DesktopFont> fontOfList(const QString &list, const FamilyQuery &isFamily);

/// The toolkit's, where the desktop has none of its own.
[[nodiscard]] DesktopFont plainFixedFont();
