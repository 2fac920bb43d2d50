// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UI/ToolbarAction.h"

#include <QStringView>

#include <span>
#include <vector>

class Preferences;

/// The commands that toolbars can offer, and those that the user chose.
class ToolbarCatalogue final {
public:
    /// In the order in which they are offered.
    [[nodiscard]] static std::span<const ToolbarAction> all();
    /// Null when there is none of that id.
    [[nodiscard]] static const ToolbarAction *action(QStringView id);
    /// The user's choice in its order, without what is not in the catalogue.
    [[nodiscard]] static std::vector<const ToolbarAction *> configuredActions(const Preferences &preferences);
};
