// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/SystemDesktop.h"

#include "Base/FilePath.h"
#include "Base/Translation.h"
#include "Desktop/Terminals.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

void openFolder(const QString &path, const Desktop::Failure &failed)
{
    if (!QDesktopServices::openUrl(QUrl(addressOf(QFileInfo(path).path())))) {
        failed(localized(u"No file manager was found."));
    }
}

/// The value of `key` in the main group of a desktop entry.
QString entryValue(const QString &path, QLatin1StringView key)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return {};
    }
    bool isMainGroup = false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith(u'[')) {
            isMainGroup = line == "[Desktop Entry]"_L1;
        } else if (isMainGroup && line.section(u'=', 0, 0).trimmed() == key) {
            return line.section(u'=', 1).trimmed();
        }
    }
    return {};
}

} // namespace

void SystemDesktop::reveal(const QString &path, Failure failed)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolder(path, failed);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                                       u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    call << QStringList{addressOf(path)} << QString();
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [path, failed = std::move(failed)](QDBusPendingCallWatcher *finished) {
                         if (finished->isError()) {
                             openFolder(path, failed);
                         }
                         finished->deleteLater();
                     });
}

Result<void> SystemDesktop::moveToTrash(const QString &path)
{
    QFile file(path);
    if (file.moveToTrash()) {
        return {};
    }
    return failure(
        formatted(localized(u"“%@” could not be moved to the Trash: %@"), shownPath(QFileInfo(path).fileName()), file.errorString()));
}

Result<void> SystemDesktop::openTerminal(const QString &folder, const QString &preferredTerminal)
{
    const auto terminal = TerminalLookup::fromEnvironment().terminal(preferredTerminal);
    if (!terminal) {
        return failure(localized(u"No terminal program was found."));
    }
    QStringList command = terminal->endsWith(".desktop"_L1) ? commandOf(entryValue(*terminal, "Exec"_L1)) : QStringList{*terminal};
    const QString program = command.isEmpty() ? QString() : command.takeFirst();
    if (program.isEmpty() || !QProcess::startDetached(program, command, folder)) {
        return failure(formatted(localized(u"The terminal “%@” could not be started."), QFileInfo(*terminal).completeBaseName()));
    }
    return {};
}

QStringList SystemDesktop::commandOf(const QString &exec)
{
    QStringList words;
    QString word;
    bool isQuoted = false;
    bool hasWord = false;
    const auto finish = [&] {
        const bool isFieldCode = word.size() == 2 && word.startsWith(u'%') && word != "%%"_L1;
        if (hasWord && !isFieldCode) {
            words << word.replace("%%"_L1, "%"_L1);
        }
        word.clear();
        hasWord = false;
    };
    for (qsizetype at = 0; at < exec.size(); ++at) {
        const QChar unit = exec[at];
        if (unit == u'"') {
            isQuoted = !isQuoted;
            hasWord = true;
        } else if (unit == u'\\' && isQuoted && at + 1 < exec.size()) {
            word += exec[++at];
        } else if (unit.isSpace() && !isQuoted) {
            finish();
        } else {
            word += unit;
            hasWord = true;
        }
    }
    finish();
    return isQuoted ? QStringList() : words;
}
