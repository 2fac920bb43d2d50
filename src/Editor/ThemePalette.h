// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QPalette>

struct Theme;

/// The colours of controls that stand beside text in `theme`, such as scroll bars: made from the theme's, but for the desktop's
/// accent. Where theme and desktop are both light or both dark it sets nothing, so that a widget has those of the desktop.
[[nodiscard]] QPalette paletteBeside(const Theme &theme, const QPalette &desktop);
