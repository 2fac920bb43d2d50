// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Model/PaneLayout.h"

#include <QString>

#include <map>

/// What stands in tabs beside their titles, by document.
using TabDetails = std::map<const TextDocument *, QString>;

/// Of the tabs of a window: folders where files have the same name, and the first line of a text without a file that is not named after
/// it. Empty ones are left out.
[[nodiscard]] TabDetails tabDetailsOf(const PaneLayout::Documents &documents);
