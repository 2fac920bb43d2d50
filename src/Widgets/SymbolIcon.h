// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QAnyStringView>
#include <QColor>
#include <QIcon>

/// The program's own symbol of that name, such as "chevron.down", drawn sharp at every scale. It is a mask filled with the application
/// palette's button text colour, when it is selected with the highlighted text colour, when it is disabled with the disabled button text
/// colour; it follows the palette, and so needs no making anew. `normal`, if valid, stands for the colour of what is neither selected nor
/// disabled, `disabled` for that of what is disabled. Square: an oblong place leaves room at two sides. Null when there is no such symbol.
/// Main thread only.
[[nodiscard]] QIcon symbolIcon(QAnyStringView name, const QColor &normal = {}, const QColor &disabled = {});

/// What window managers show that do not look for the entry of the menus.
[[nodiscard]] QIcon applicationIcon();
