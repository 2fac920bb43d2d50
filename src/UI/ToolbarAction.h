// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Responder.h"

#include <QLatin1StringView>

class Preferences;

/// One command that a toolbar can offer.
struct ToolbarAction {
    /// As the settings file names it.
    QLatin1StringView id;
    /// English, the key of the language tables.
    const char16_t *label;
    QLatin1StringView symbol;
    Selector action;
    /// For what is shown as on or off, its state; null for any other.
    bool (Preferences::*isOn)() const = nullptr;
    /// Red while it is enabled.
    bool isDestructive = false;
    /// Opens a menu instead of acting.
    bool hasMenu = false;

    [[nodiscard]] constexpr bool isToggle() const { return isOn != nullptr; }
};
