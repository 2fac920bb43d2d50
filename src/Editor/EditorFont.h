// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>

class Preferences;

/// The font that the preferences name, in their size; the desktop's monospaced one when there is no such font.
[[nodiscard]] QFont editorFont(const Preferences &preferences);
