// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/CommandLine.h"

#include "Base/FilePath.h"
#include "Base/Translation.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

using OptionRow = CommandLine::OptionRow;
using Option = OptionRow::Option;

constexpr auto optionRows = std::to_array<OptionRow>({
    {Option::wait, "--wait"_L1, "-w"_L1, {}, 0, u"end when the files are closed; 1 when edits were not saved"},
    {Option::newWindow, "--new-window"_L1, "-n"_L1, {}, 0, u"open the files in a window of their own"},
    {Option::newTab, "--new-tab"_L1, "-t"_L1, {}, 0, u"open an empty tab"},
    {Option::compare, "--diff"_L1, "-d"_L1, "OLD NEW"_L1, 2, u"compare two files side by side"},
    {Option::language, "--language"_L1, {}, "en|de"_L1, 1, u"the language of the interface, this time"},
    {Option::help, "--help"_L1, "-h"_L1, {}, 0, u"show this help and end"},
    {Option::version, "--version"_L1, "-v"_L1, {}, 0, u"show the version and end"},
});

/// What is no option.
constexpr auto others = std::to_array<std::pair<QLatin1StringView, const char16_t *>>({
    {"FILE:LINE[:COLUMN]"_L1, u"open a file at a place"},
    {"+LINE[:COLUMN] FILE"_L1, u"the same; + alone is the last line"},
    {"-"_L1, u"open what comes from the standard input"},
    {"--"_L1, u"all that follows are names of files"},
});

/// Numbers that nobody counts to mean the last line or column.
qsizetype number(const QString &digits)
{
    bool fits = false;
    const qint64 value = digits.toLongLong(&fits);
    return fits ? qsizetype(value) : std::numeric_limits<qsizetype>::max();
}

class Parser {
public:
    explicit Parser(const QString &folder) : m_folder(folder) {}

    [[nodiscard]] CommandLine parse(const QStringList &arguments)
    {
        bool mayBeOption = true;
        for (qsizetype at = 0; at < arguments.size(); ++at) {
            const QString &argument = arguments[at];
            if (!mayBeOption || (!argument.startsWith(u'-') && !takePlace(argument))) {
                addFile(argument);
            } else if (argument == "--"_L1) {
                mayBeOption = false;
            } else if (argument == "-"_L1) {
                m_line.readsStandardInput = true;
            } else if (argument.startsWith(u'-')) {
                const qsizetype taken = takeOption(arguments, at);
                if (taken < 0) {
                    return m_line;
                }
                at += taken;
            }
        }
        return m_line;
    }

private:
    /// "+12:3", for the next file.
    bool takePlace(const QString &argument)
    {
        static const QRegularExpression place(u"^\\+(\\d*)(?::(\\d+))?$"_s);
        const auto match = place.match(argument);
        if (match.hasMatch()) {
            m_nextLine =
                static_cast<LineNumber>(match.captured(1).isEmpty() ? std::numeric_limits<qsizetype>::max() : number(match.captured(1)));
            m_nextColumn = match.hasCaptured(2) ? number(match.captured(2)) : 0;
        }
        return match.hasMatch();
    }

    /// As compilers write it, with a colon at the end perhaps; of what may be meant, the file with the longest name.
    [[nodiscard]] std::optional<CommandLine::File> placeIn(const QString &argument) const
    {
        static const std::array forms = {QRegularExpression(u"^(.+):(\\d+):?$"_s), QRegularExpression(u"^(.+):(\\d+):(\\d+):?$"_s)};
        for (const QRegularExpression &form : forms) {
            const auto match = form.match(argument);
            const QString path = match.hasMatch() ? absoluteFilePath(match.captured(1), m_folder) : QString();
            if (!path.isEmpty() && QFileInfo::exists(path)) {
                return CommandLine::File{path, static_cast<LineNumber>(number(match.captured(2))),
                                         match.hasCaptured(3) ? number(match.captured(3)) : 0};
            }
        }
        return std::nullopt;
    }

    void addFile(const QString &argument)
    {
        CommandLine::File file{absoluteFilePath(argument, m_folder), std::exchange(m_nextLine, std::nullopt),
                               std::exchange(m_nextColumn, 0)};
        if (!QFileInfo::exists(file.path)) {
            const auto place = placeIn(argument);
            if (!place) {
                addProblem(formatted(localized(u"“%@” does not exist."), argument));
                return;
            }
            file = *place;
        }
        if (QFileInfo(file.path).isDir()) {
            addProblem(formatted(localized(u"“%@” is a folder."), argument));
        } else {
            m_line.files.push_back(file);
        }
    }

    /// How many arguments more it takes; below 0 when nothing else counts.
    qsizetype takeOption(const QStringList &arguments, qsizetype at)
    {
        const QString &argument = arguments[at];
        const QString name = argument.startsWith("--"_L1) ? argument.section(u'=', 0, 0) : argument;
        const auto row = std::ranges::find_if(optionRows, [&](const OptionRow &known) {
            return name == known.longName || (!known.shortName.isEmpty() && name == known.shortName);
        });
        const bool hasValue = name != argument;
        if (row == optionRows.end() || (hasValue && row->valueCount != 1)) {
            return refuse(formatted(localized(u"There is no option “%@”."), argument));
        }
        const qsizetype wanted = hasValue ? 0 : row->valueCount;
        const QStringList values = hasValue ? QStringList{argument.sliced(name.size() + 1)} : arguments.mid(at + 1, wanted);
        if (values.size() < row->valueCount) {
            return refuse(formatted(localized(u"“%@” needs more: %@"), argument, QString(row->values)));
        }
        switch (row->option) {
        case Option::wait:
            m_line.waits = true;
            return wanted;
        case Option::newWindow:
            m_line.opensNewWindow = true;
            return wanted;
        case Option::newTab:
            m_line.opensNewTab = true;
            return wanted;
        case Option::compare:
            m_line.request = CommandLine::Request::compare;
            m_line.files.clear();
            std::ranges::for_each(values, [this](const QString &value) { addFile(value); });
            return -1;
        case Option::language:
            if (values.first() != "en"_L1 && values.first() != "de"_L1) {
                return refuse(formatted(localized(u"“%@” is no language of the interface; there are “en” and “de”."), values.first()));
            }
            m_line.language = values.first() == "de"_L1 ? AppLanguage::german : AppLanguage::english;
            return wanted;
        case Option::help:
            return end(CommandLine::Request::showHelp);
        case Option::version:
            return end(CommandLine::Request::showVersion);
        }
        return wanted;
    }

    qsizetype end(CommandLine::Request request)
    {
        m_line = {.request = request, .language = m_line.language};
        return -1;
    }

    qsizetype refuse(const QString &reason)
    {
        const qsizetype ended = end(CommandLine::Request::refuse);
        addProblem(reason);
        return ended;
    }

    void addProblem(const QString &problem) { m_line.problems << problem; }

    QString m_folder;
    CommandLine m_line;
    std::optional<LineNumber> m_nextLine;
    qsizetype m_nextColumn = 0;
};

} // namespace

std::span<const OptionRow> CommandLine::options()
{
    return optionRows;
}

std::span<const std::pair<QLatin1StringView, const char16_t *>> CommandLine::otherForms()
{
    return others;
}

CommandLine CommandLine::parse(const QStringList &arguments, const QString &folder)
{
    return Parser(folder).parse(arguments);
}

QString CommandLine::help()
{
    std::vector<std::pair<QString, QString>> rows;
    for (const OptionRow &option : optionRows) {
        const QString names = (option.shortName.isEmpty() ? QString() : option.shortName + u", "_s) + option.longName;
        rows.emplace_back(option.values.isEmpty() ? names : names + u' ' + option.values, localized(option.purpose));
    }
    for (const auto &[form, purpose] : others) {
        rows.emplace_back(QString(form), localized(purpose));
    }
    const qsizetype width = std::ranges::max(rows, {}, [](const auto &row) { return row.first.size(); }).first.size();
    QString text = localized(u"Usage: quillet [OPTION] [FILE…]") + u"\n\n"_s;
    for (const auto &[form, purpose] : rows) {
        text += u"  "_s + form.leftJustified(width) + u"  "_s + purpose + u'\n';
    }
    return text;
}
