// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Action.h"

#include <QLatin1StringView>

/// One command that a toolbar can offer.
struct ToolbarAction {
    /// As the settings file names it.
    QLatin1StringView id;
    /// English, the key of the language tables.
    const char16_t *label;
    const Action &action;
    /// Red while it is enabled, unless the user wants none.
    bool isDestructive = false;
    /// Opens a menu instead of acting.
    bool hasMenu = false;

    [[nodiscard]] constexpr QLatin1StringView symbol() const { return QLatin1StringView(action.symbol); }
};
