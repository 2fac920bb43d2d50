// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/EditorFont.h"

#include "Settings/Preferences.h"

#include <QFontDatabase>

QFont editorFont(const Preferences &preferences)
{
    const QString name = preferences.value(Settings::fontName);
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (!name.isEmpty() && QFontDatabase::hasFamily(name)) {
        font = QFont(name);
        font.setStyleHint(QFont::Monospace);
    }
    font.setWeight(QFont::Normal);
    font.setPointSizeF(preferences.value(Settings::fontSize));
    return font;
}
