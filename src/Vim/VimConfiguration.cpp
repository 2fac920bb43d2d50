// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimConfiguration.h"

#include "Base/FilePath.h"
#include "Base/StandardFolder.h"
#include "Base/Translation.h"
#include "Settings/Preferences.h"
#include "Vim/VimExLine.h"

#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

QStringView withoutBlanksBefore(QStringView line)
{
    while (line.startsWith(u' ') || line.startsWith(u'\t')) {
        line = line.sliced(1);
    }
    return line;
}

} // namespace

QString VimConfiguration::standardPath()
{
    return standardFolder("XDG_CONFIG_HOME", u".config") + u"/Quillet/vimrc"_s;
}

Result<QString> VimConfiguration::textOf(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return failure(formatted(localized(u"The file “%@” cannot be read"), shownPath(path)));
    }
    const QByteArray bytes = file.read(largestFile + 1);
    if (bytes.size() > largestFile) {
        return failure(formatted(localized(u"“%@” is too large to be a file of commands"), shownPath(path)));
    }
    return QString::fromUtf8(bytes);
}

QStringList VimConfiguration::read(QStringView text, const QString &name)
{
    struct Line {
        QString text;
        qsizetype number;
    };
    std::vector<Line> lines;
    qsizetype number = 0;
    for (QStringView line : text.split(u'\n')) {
        ++number;
        if (line.endsWith(u'\r')) {
            line.chop(1);
        }
        const QStringView content = withoutBlanksBefore(line);
        if (content.startsWith(u'\\') && !lines.empty()) {
            lines.back().text += content.sliced(1);
        } else if (!content.startsWith(u"\"\\ ")) {
            lines.push_back({line.toString(), number});
        }
    }
    QStringList errors;
    for (const Line &line : lines) {
        if (const auto done = VimExLine::configure(line.text, *this); !done) {
            errors << formatted(localized(u"%@, line %d: %@"), name, line.number, done.error().message);
        }
    }
    return errors;
}

QStringList VimConfiguration::follow(const QString &path)
{
    constexpr qsizetype mostProblems = 5;
    const bool isExact = m_preferences.value(Settings::vimMode) && m_preferences.value(Settings::vimExact);
    if (isExact == m_isRead) {
        return {};
    }
    m_isRead = isExact;
    if (!isExact) {
        *m_mappings = {};
        m_leader = u"\\"_s;
        m_preferences.endRunValues();
        return {};
    }
    if (!QFileInfo::exists(path)) {
        return {};
    }
    const auto text = textOf(path);
    if (!text) {
        return {text.error().message};
    }
    QStringList problems = read(*text, QFileInfo(path).fileName());
    if (problems.size() > mostProblems) {
        problems = problems.first(mostProblems) << u"…"_s;
    }
    return problems;
}

VimOptions VimConfiguration::options() const
{
    VimOptions options = VimOptions::of(m_preferences);
    options.mappings = m_mappings;
    return options;
}
