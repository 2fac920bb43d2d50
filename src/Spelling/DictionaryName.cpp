// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Spelling/DictionaryName.h"

#include "Base/Localization.h"

#include <QLocale>

#include <unicode/locid.h>
#include <unicode/unistr.h>

QString languageOfDictionary(const QString &dictionary)
{
    if (QLocale(dictionary).language() == QLocale::C) {
        return dictionary;
    }
    icu::UnicodeString name;
    icu::Locale(dictionary.toLatin1().constData())
        .getDisplayName(icu::Locale(Localization::current().locale().name().toLatin1().constData()), name);
    return QString::fromUtf16(name.getBuffer(), name.length());
}

QString titleOfDictionary(const QString &dictionary)
{
    const QString language = languageOfDictionary(dictionary);
    return language == dictionary ? dictionary : QStringLiteral("%1 – %2").arg(language, dictionary);
}
