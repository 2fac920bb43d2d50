// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Widgets/AlertPresenter.h"

/// The keys of all commands that have some, as the menus group them, in the language of the interface.
[[nodiscard]] std::vector<Alert::Group> shortcutOverview();
