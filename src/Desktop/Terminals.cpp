// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/Terminals.h"
#include "Base/StandardFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <array>

using namespace Qt::StringLiterals;

namespace {

struct KnownTerminal {
    QLatin1StringView id;
    /// The desktop whose own it is; empty for those that people install because they want them.
    QLatin1StringView desktop = {};
};

constexpr auto wanted = std::to_array<KnownTerminal>({
    {"com.mitchellh.ghostty"_L1},
    {"dev.warp.Warp"_L1},
    {"kitty"_L1},
    {"Alacritty"_L1},
    {"org.alacritty.Alacritty"_L1},
    {"hyper"_L1},
});

constexpr auto desktopsOwn = std::to_array<KnownTerminal>({
    {"org.gnome.Ptyxis"_L1, "GNOME"_L1},
    {"org.gnome.Console"_L1, "GNOME"_L1},
    {"org.gnome.Terminal"_L1, "GNOME"_L1},
    {"org.kde.konsole"_L1, "KDE"_L1},
    {"xfce4-terminal"_L1, "XFCE"_L1},
    {"org.gnome.Terminal"_L1, "X-Cinnamon"_L1},
    {"mate-terminal"_L1, "MATE"_L1},
    {"qterminal"_L1, "LXQt"_L1},
    {"lxterminal"_L1, "LXDE"_L1},
    {"debian-xterm"_L1},
});

/// The value of `key` in the entry's main group; empty when it has none.
QString entryValue(const QList<QByteArray> &lines, const char *key)
{
    bool isInGroup = false;
    for (const QByteArray &line : lines) {
        if (line.startsWith('[')) {
            isInGroup = line.trimmed() == "[Desktop Entry]";
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (isInGroup && equals > 0 && line.left(equals).trimmed() == key) {
            return QString::fromUtf8(line.mid(equals + 1).trimmed());
        }
    }
    return {};
}

/// The program of a command line: its first word, quoted or not.
QString firstWord(const QString &command)
{
    if (!command.startsWith(u'"')) {
        return command.section(u' ', 0, 0);
    }
    QString word;
    for (qsizetype place = 1; place < command.size() && command[place] != u'"'; ++place) {
        if (command[place] == u'\\' && place + 1 < command.size()) {
            ++place;
        }
        word += command[place];
    }
    return word;
}

/// Absolute ones only: the others would depend on where the program was started.
QStringList absoluteFolders(const QString &list)
{
    QStringList folders = list.split(u':', Qt::SkipEmptyParts);
    folders.removeIf([](const QString &folder) { return !QDir::isAbsolutePath(folder); });
    return folders;
}

/// The entry's file below `folder`: every "-" of an id may stand for a folder.
QString entryFile(const QString &folder, const QString &id)
{
    QString flat = folder + u'/' + id + u".desktop"_s;
    if (QFileInfo::exists(flat)) {
        return flat;
    }
    const qsizetype dash = id.indexOf(u'-');
    if (dash <= 0) {
        return {};
    }
    const QString inner = folder + u'/' + id.left(dash);
    return QFileInfo(inner).isDir() ? entryFile(inner, id.mid(dash + 1)) : QString();
}

} // namespace

TerminalLookup TerminalLookup::fromEnvironment()
{
    QStringList dataFolders = absoluteFolders(qEnvironmentVariable("XDG_DATA_DIRS"));
    if (dataFolders.isEmpty()) {
        dataFolders = {u"/usr/local/share"_s, u"/usr/share"_s};
    }
    dataFolders.prepend(standardFolder("XDG_DATA_HOME", u".local/share"));
    TerminalLookup lookup{.applicationFolders = {},
                          .programFolders = absoluteFolders(qEnvironmentVariable("PATH")),
                          .terminalVariable = qEnvironmentVariable("TERMINAL"),
                          .desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts)};
    for (const QString &folder : dataFolders) {
        lookup.applicationFolders << QDir::cleanPath(folder + u"/applications"_s);
    }
    return lookup;
}

std::optional<QString> TerminalLookup::program(const QString &name) const
{
    const auto isProgram = [](const QFileInfo &file) { return file.isFile() && file.isExecutable(); };
    if (QDir::isAbsolutePath(name)) {
        return isProgram(QFileInfo(name)) ? std::optional(name) : std::nullopt;
    }
    if (name.isEmpty() || name.contains(u'/')) {
        return std::nullopt;
    }
    for (const QString &folder : programFolders) {
        QString path = folder + u'/' + name;
        if (isProgram(QFileInfo(path))) {
            return path;
        }
    }
    return std::nullopt;
}

std::optional<QString> TerminalLookup::applicationWithId(const QString &id) const
{
    const QString name = id.endsWith(u".desktop"_s) ? id.chopped(8) : id;
    if (name.isEmpty() || name.contains(u'/')) {
        return std::nullopt;
    }
    for (const QString &folder : applicationFolders) {
        const QString path = entryFile(folder, name);
        QFile file(path);
        if (path.isEmpty() || !file.open(QIODevice::ReadOnly)) {
            continue;
        }
        const QList<QByteArray> lines = file.read(qint64(256) * 1024).split('\n');
        const QString tryExec = entryValue(lines, "TryExec");
        const bool isThere = entryValue(lines, "Hidden") != "true"_L1 && (tryExec.isEmpty() || program(tryExec)) &&
                             program(firstWord(entryValue(lines, "Exec")));
        // An entry hides those of the same id in less important folders, also when it is of no use.
        return isThere ? std::optional(path) : std::nullopt;
    }
    return std::nullopt;
}

std::optional<QString> TerminalLookup::terminal(const QString &preferredId) const
{
    if (auto path = applicationWithId(preferredId)) {
        return path;
    }
    for (const KnownTerminal &known : wanted) {
        if (auto path = applicationWithId(QString(known.id))) {
            return path;
        }
    }
    for (const QString &name : {u"xdg-terminal-exec"_s, firstWord(terminalVariable)}) {
        if (auto path = program(name)) {
            return path;
        }
    }
    for (const KnownTerminal &known : desktopsOwn) {
        if (desktops.contains(known.desktop)) {
            if (auto path = applicationWithId(QString(known.id))) {
                return path;
            }
        }
    }
    if (auto path = program(u"x-terminal-emulator"_s)) {
        return path;
    }
    for (const KnownTerminal &known : desktopsOwn) {
        if (auto path = applicationWithId(QString(known.id))) {
            return path;
        }
    }
    return std::nullopt;
}
