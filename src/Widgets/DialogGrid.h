// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

class QDialogButtonBox;
class QLayout;

/// Distances in dialogs and settings, the same in all of them, in logical pixels.
namespace DialogGrid {

inline constexpr int margin = 16;
inline constexpr int rowSpacing = 8;
inline constexpr int columnSpacing = 10;
/// Besides that of the rows, before what belongs together.
inline constexpr int groupSpacing = 10;
/// Between a title and what stands below it.
inline constexpr int titleSpacing = 4;

/// For the outermost layout of a dialog.
void apply(QLayout &layout);
/// Takes the toolkit's own pictures, which look dated, from the buttons where the desktop has none.
void apply(QDialogButtonBox &buttons);

} // namespace DialogGrid
