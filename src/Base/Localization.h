// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"

#include <QHash>
#include <QLatin1StringView>
#include <QLocale>
#include <QString>
#include <QStringList>

#include <array>
#include <functional>

/// The language of the interface as the user chose it; `system` leaves it to the desktop.
enum class AppLanguage { system, english, german };

/// What the interface shows in one language for each English text. Never changes, so any thread may read it.
///
/// The file of a table is a JSON object of groups, each an object of English text → shown text. The groups are for whoever edits the
/// file; a text may stand in one of them only.
class StringBundle {
public:
    /// The table of one of the two languages, from the program's resources. A damaged or missing table is reported on standard error and
    /// has no texts, so that the English ones show.
    [[nodiscard]] static StringBundle load(QLocale::Language language);
    /// The texts of a table; none when `json` is no table. What is no text in a table is left out.
    [[nodiscard]] static QHash<QString, QString> parse(const QByteArray &json);

    StringBundle(const QLocale &locale, QHash<QString, QString> texts) : m_locale(locale), m_texts(std::move(texts)) {}

    /// The text shown for `english`: that text itself when the table has none.
    [[nodiscard]] QString text(QStringView english) const;
    [[nodiscard]] const QHash<QString, QString> &texts() const { return m_texts; }
    /// How numbers are written within these texts.
    [[nodiscard]] const QLocale &locale() const { return m_locale; }

private:
    QLocale m_locale;
    QHash<QString, QString> m_texts;
};

/// The language that the whole interface speaks now.
class Localization final {
public:
    /// After another language was chosen; about nothing. Texts that were kept are to be looked up anew.
    static constexpr NotificationName didChangeNotification = "QLT.LanguageDidChange";

    /// Where texts are looked up. English until one was chosen by use(). Any thread; the bundle lives as long as the program.
    [[nodiscard]] static const StringBundle &current();
    /// The table of `language` is the current one from now on, on every thread. Announces nothing.
    static void use(AppLanguage language);

    /// The table for `language`, loaded when it is needed first. Any thread; the bundle lives as long as the program.
    [[nodiscard]] static const StringBundle &resolveBundle(AppLanguage language);
    /// The first of the user's languages that the interface has, else English. `languages` are names like "de_AT.UTF-8" or "en".
    [[nodiscard]] static AppLanguage languageFor(const QStringList &languages);
    /// The languages that the user's session wants programs to speak, the most wanted first, from the variables of the environment;
    /// `variable` gives the value of one, empty when it is not set.
    [[nodiscard]] static QStringList systemLanguages(const std::function<QString(const char *name)> &variable);
};
