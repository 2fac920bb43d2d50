// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/Localization.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <atomic>

using namespace Qt::StringLiterals;

// Without the call the linker would leave the tables out of programs, as nothing else refers to them.
static void registerTables()
{
    Q_INIT_RESOURCE(strings);
}

namespace {

/// Of the whole program, as the interface speaks one language at a time; null stands for English.
std::atomic<const StringBundle *> currentBundle = nullptr;

/// Never destroyed: a worker may still look something up while the program ends.
const StringBundle &englishBundle()
{
    static const auto *const bundle = new StringBundle(StringBundle::load(QLocale::English));
    return *bundle;
}

const StringBundle &germanBundle()
{
    static const auto *const bundle = new StringBundle(StringBundle::load(QLocale::German));
    return *bundle;
}

/// "de" of "de_AT.UTF-8", "de-AT" and "DE".
QString languageCode(const QString &name)
{
    const auto end = std::ranges::find_if_not(name, [](QChar character) { return character.isLetter(); });
    return name.first(end - name.begin()).toLower();
}

/// Whether a session has no language, but that of programs themselves.
bool isProgrammersLocale(const QString &name)
{
    return name == "C"_L1 || name.startsWith("C."_L1) || name == "POSIX"_L1;
}

} // namespace

StringBundle StringBundle::load(QLocale::Language language)
{
    registerTables();
    QFile file(u":/strings/%1.json"_s.arg(QLocale(language).name().first(2)));
    QHash<QString, QString> texts;
    if (file.open(QIODevice::ReadOnly)) {
        texts = parse(file.readAll());
    }
    if (texts.isEmpty()) {
        qWarning("The texts in %s are damaged or missing.", qPrintable(file.fileName()));
    }
    return {QLocale(language), std::move(texts)};
}

QHash<QString, QString> StringBundle::parse(const QByteArray &json)
{
    QHash<QString, QString> texts;
    const QJsonObject groups = QJsonDocument::fromJson(json).object();
    for (const auto &group : groups) {
        const QJsonObject entries = group.toObject();
        for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
            if (entry.value().isString()) {
                texts.insert(entry.key(), entry.value().toString());
            }
        }
    }
    return texts;
}

QString StringBundle::text(QStringView english) const
{
    // Compared where it stands; only a text that has no other is copied.
    const auto found = m_texts.constFind(QString::fromRawData(english.data(), english.size()));
    return found == m_texts.constEnd() ? english.toString() : *found;
}

const StringBundle &Localization::current()
{
    const StringBundle *bundle = currentBundle.load(std::memory_order_acquire);
    return bundle ? *bundle : englishBundle();
}

void Localization::use(AppLanguage language)
{
    currentBundle.store(&resolveBundle(language), std::memory_order_release);
}

const StringBundle &Localization::resolveBundle(AppLanguage language)
{
    if (language == AppLanguage::system) {
        language = languageFor(systemLanguages([](const char *name) { return qEnvironmentVariable(name); }));
    }
    return language == AppLanguage::german ? germanBundle() : englishBundle();
}

AppLanguage Localization::languageFor(const QStringList &languages)
{
    for (const QString &name : languages) {
        const QString code = languageCode(name);
        if (code == "en"_L1) {
            return AppLanguage::english;
        }
        if (code == "de"_L1) {
            return AppLanguage::german;
        }
    }
    return AppLanguage::english;
}

QStringList Localization::systemLanguages(const std::function<QString(const char *name)> &variable)
{
    QString locale;
    for (const char *name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (locale = variable(name); !locale.isEmpty()) {
            break;
        }
    }
    // Who asks for no language gets none, whatever else was set before.
    if (isProgrammersLocale(locale)) {
        return {};
    }
    QStringList languages = variable("LANGUAGE").split(u':', Qt::SkipEmptyParts);
    if (!locale.isEmpty()) {
        languages << locale;
    }
    return languages;
}
