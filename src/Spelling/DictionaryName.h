// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLocale>
#include <QString>

/// What a dictionary is for as those call it who speak it: "American English", "Deutsch"; its own name when that is no language.
[[nodiscard]] inline QString languageOfDictionary(const QString &dictionary)
{
    const QLocale locale(dictionary);
    return locale.language() == QLocale::C ? dictionary : locale.nativeLanguageName();
}

/// The same with its own name behind it, where that is another: "Deutsch (de_DE)".
[[nodiscard]] inline QString titleOfDictionary(const QString &dictionary)
{
    const QString language = languageOfDictionary(dictionary);
    return language == dictionary ? dictionary : QStringLiteral("%1 (%2)").arg(language, dictionary);
}
