// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "Base/Localization.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <array>
#include <set>

using namespace Qt::StringLiterals;

namespace {

/// Collected from the sources when the tool was built: text → where it stands.
QStringList textsInCode()
{
    QFile file(u":/texts-in-code.json"_s);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object().keys() : QStringList();
}

QJsonObject runStrings(const Arguments &)
{
    const QStringList inCode = textsInCode();
    if (inCode.isEmpty()) {
        return {{u"error"_s, u"the texts in the code are missing from the tool"_s}};
    }
    const QHash<QString, QString> german = Localization::resolveBundle(AppLanguage::german).texts();
    const QStringList inEnglish = Localization::resolveBundle(AppLanguage::english).texts().keys();
    std::set<QString> texts(inCode.begin(), inCode.end());
    texts.insert(inEnglish.begin(), inEnglish.end());
    texts.insert(german.keyBegin(), german.keyEnd());

    QJsonArray keys;
    QJsonArray missing;
    QJsonObject translations;
    for (const QString &text : texts) {
        keys.append(text);
        if (const auto found = german.find(text); found != german.end()) {
            translations[text] = *found;
        } else {
            missing.append(text);
        }
    }
    return {{u"keys"_s, keys}, {u"de"_s, translations}, {u"missing"_s, missing}};
}

constexpr auto rows = std::to_array<CommandRow>({
    {u"strings", u"", {}, u"every English text that the program can show, its German one, and those without one", runStrings},
});

} // namespace

std::span<const CommandRow> stringsCommands()
{
    return rows;
}
