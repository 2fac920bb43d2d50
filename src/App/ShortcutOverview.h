// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Widgets/AlertPresenter.h"

enum class VimKeymapPreset;

/// The keys of all commands that have some, as the menus group them, in the language of the interface.
[[nodiscard]] std::vector<Alert::Group> shortcutOverview();
/// The keys of modal editing with that key map, likewise.
[[nodiscard]] std::vector<Alert::Group> vimKeyOverview(VimKeymapPreset preset);
