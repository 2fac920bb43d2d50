// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/UserGuide.h"

#include "Base/Localization.h"
#include "Commands/KeyboardChords.h"

#include <QFile>
#include <QRegularExpression>

#include <array>

using namespace Qt::StringLiterals;

// Without the call the linker would leave the guide out of programs, as nothing else refers to it.
static void registerGuide()
{
    Q_INIT_RESOURCE(guide);
}

namespace {

/// As QKeySequence reads it, in whatever language the guide has it.
QKeySequence sequenceOf(QString keys)
{
    static const std::array<std::pair<QLatin1StringView, QLatin1StringView>, 2> names = {
        {{"Strg"_L1, "Ctrl"_L1}, {"Umschalt"_L1, "Shift"_L1}}};
    for (const auto &[german, english] : names) {
        keys.replace(german, english);
    }
    return QKeySequence::fromString(keys, QKeySequence::PortableText);
}

/// Of the keys of a command, "(Ctrl+] or Ctrl+Ä)", those that the keyboard in use has, if it has some of them.
QString withKeysOfKeyboard(const QString &markdown, const QString &between)
{
    static const QRegularExpression list(u"\\((?:Ctrl|Strg)\\+[^()]*\\)"_s);
    QString result;
    qsizetype place = 0;
    for (auto match = list.globalMatch(markdown); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        const QString inside = found.captured().sliced(1, found.capturedLength() - 2).simplified();
        QStringList keys = inside.split(between);
        keys.removeIf([](const QString &each) { return !KeyboardChords::has(sequenceOf(each)); });
        result += markdown.sliced(place, found.capturedStart() - place);
        const bool isAsBefore = keys.isEmpty() || keys.size() == inside.split(between).size();
        result += isAsBefore ? found.captured() : u'(' + keys.join(between) + u')';
        place = found.capturedEnd();
    }
    return result + markdown.sliced(place);
}

} // namespace

QString UserGuide::markdown()
{
    registerGuide();
    const bool isGerman = Localization::current().locale().language() == QLocale::German;
    QFile file(isGerman ? u":/guide/guide.de.md"_s : u":/guide/guide.md"_s);
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning("%s is missing.", qPrintable(file.fileName()));
    }
    return withKeysOfKeyboard(QString::fromUtf8(file.readAll()), isGerman ? u" oder "_s : u" or "_s);
}
