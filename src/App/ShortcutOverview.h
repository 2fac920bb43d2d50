// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Widgets/AlertPresenter.h"

class VimChords;
struct VimOptions;

/// The keys of all commands that have some, as the menus group them, in the language of the interface.
[[nodiscard]] std::vector<Alert::Group> shortcutOverview();
/// The keys of modal editing with these options, likewise; `chords` tells which of them are Vim's.
[[nodiscard]] std::vector<Alert::Group> vimKeyOverview(const VimOptions &options, const VimChords &chords);
