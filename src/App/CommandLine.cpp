// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/CommandLine.h"

#include "Base/FilePath.h"
#include "Base/Translation.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

using OptionRow = CommandLine::OptionRow;
using Option = OptionRow::Option;

constexpr auto optionRows = std::to_array<OptionRow>({
    {Option::wait, "--wait"_L1, "-w"_L1, {}, 0, u"end when the files are closed; exit status 1 when edits were not saved"},
    {Option::newWindow, "--new-window"_L1, "-n"_L1, {}, 0, u"open the files in a window of their own"},
    {Option::newTab, "--new-tab"_L1, "-t"_L1, {}, 0, u"open an empty tab"},
    {Option::compare, "--diff"_L1, "-d"_L1, "OLD NEW"_L1, 2, u"compare two files side by side; with --wait, end when that is closed"},
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

/// The files that an argument may mean, the likeliest first: all of it is a name, or there is a place at its end as compilers write it,
/// with a colon perhaps.
std::vector<CommandLine::File> candidatesFor(const QString &argument, const QString &folder)
{
    static const std::array forms = {QRegularExpression(u"^(.+):(\\d+):?$"_s), QRegularExpression(u"^(.+):(\\d+):(\\d+):?$"_s)};
    std::vector<CommandLine::File> candidates = {{absoluteFilePath(argument, folder)}};
    for (const QRegularExpression &form : forms) {
        if (const auto match = form.match(argument); match.hasMatch()) {
            candidates.push_back({absoluteFilePath(match.captured(1), folder), static_cast<LineNumber>(number(match.captured(2))),
                                  match.hasCaptured(3) ? number(match.captured(3)) : 0});
        }
    }
    return candidates;
}

class Parser {
public:
    Parser(const QStringList &arguments, const QString &folder, const PathKindQuery &kindsOf) : m_folder(folder)
    {
        QStringList paths;
        for (const QString &argument : arguments) {
            std::ranges::transform(candidatesFor(argument, folder), std::back_inserter(paths), &CommandLine::File::path);
        }
        const std::vector<PathKind> kinds = kindsOf(paths);
        for (qsizetype index = 0; index < paths.size(); ++index) {
            m_kinds.insert(paths[index], kinds[size_t(index)]);
        }
    }

    [[nodiscard]] CommandLine parse(const QStringList &arguments)
    {
        bool mayBeOption = true;
        for (qsizetype at = 0; at < arguments.size(); ++at) {
            const QString &argument = arguments[at];
            if (!mayBeOption || (!argument.startsWith(u'-') && !takePlace(argument))) {
                addNamed(argument);
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
    [[nodiscard]] PathKind kindAt(const CommandLine::File &candidate) const { return m_kinds.value(candidate.path, PathKind::unknown); }

    /// "+12:3", for the next file, if nothing has that name.
    bool takePlace(const QString &argument)
    {
        static const QRegularExpression place(u"^\\+(\\d*)(?::(\\d+))?$"_s);
        const auto match = place.match(argument);
        const PathKind named = kindAt({absoluteFilePath(argument, m_folder)});
        if (!match.hasMatch() || (named != PathKind::missing && named != PathKind::unknown)) {
            return false;
        }
        m_nextLine =
            static_cast<LineNumber>(match.captured(1).isEmpty() ? std::numeric_limits<qsizetype>::max() : number(match.captured(1)));
        m_nextColumn = match.hasCaptured(2) ? number(match.captured(2)) : 0;
        return true;
    }

    [[nodiscard]] const CommandLine::File &likeliest(const std::vector<CommandLine::File> &candidates) const
    {
        const CommandLine::File *likeliest = &candidates.front();
        for (const CommandLine::File &candidate : candidates) {
            const PathKind kind = kindAt(candidate);
            if (kind != PathKind::missing && kind != PathKind::unknown) {
                return candidate;
            }
            // What does not answer rather has a place than a colon in its name.
            likeliest = kind == PathKind::unknown ? &candidate : likeliest;
        }
        return *likeliest;
    }

    /// What is named beside the two files of a comparison does not count.
    void addNamed(const QString &argument)
    {
        if (m_line.request != CommandLine::Request::compare) {
            addFile(argument);
        }
    }

    void addFile(const QString &argument)
    {
        auto candidates = candidatesFor(argument, m_folder);
        candidates.front().line = std::exchange(m_nextLine, std::nullopt);
        candidates.front().column = std::exchange(m_nextColumn, 0);
        const CommandLine::File &file = likeliest(candidates);
        // Who names a place has seen the file, and who ends with a slash means a folder.
        const bool mayBeNew = m_line.request == CommandLine::Request::openFiles && candidates.size() == 1 && !argument.endsWith(u'/');
        switch (kindAt(file)) {
        case PathKind::missing:
            if (mayBeNew) {
                m_line.files.push_back(file);
            } else {
                addProblem(formatted(localized(u"“%@” does not exist."), argument));
            }
            break;
        case PathKind::folder:
            addProblem(formatted(localized(u"“%@” is a folder."), argument));
            break;
        case PathKind::special:
            addProblem(
                formatted(localized(u"“%@” cannot be opened, because it is a pipe, a socket or a device and not a file."), argument));
            break;
        case PathKind::file:
        case PathKind::unknown:
            m_line.files.push_back(file);
            break;
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
            return refuse(formatted(localized(u"“%@” needs more: %@"), argument, CommandLine::inWords(row->values)));
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
            return wanted;
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
    /// By path.
    QHash<QString, PathKind> m_kinds;
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

std::vector<PathKind> CommandLine::patientQuery(const QStringList &paths)
{
    constexpr std::chrono::milliseconds longest{500};
    return ::kindsOf(paths, longest);
}

CommandLine CommandLine::parse(const QStringList &arguments, const QString &folder, const PathKindQuery &kindsOf)
{
    return Parser(arguments, folder, kindsOf).parse(arguments);
}

QString CommandLine::help()
{
    std::vector<std::pair<QString, QString>> rows;
    for (const OptionRow &option : optionRows) {
        const QString names = (option.shortName.isEmpty() ? QString() : option.shortName + u", "_s) + option.longName;
        rows.emplace_back(option.values.isEmpty() ? names : names + u' ' + inWords(option.values), localized(option.purpose));
    }
    for (const auto &[form, purpose] : others) {
        rows.emplace_back(inWords(form), localized(purpose));
    }
    const qsizetype width = std::ranges::max(rows, {}, [](const auto &row) { return row.first.size(); }).first.size();
    QString text = localized(u"Usage: quillet [OPTION] [FILE…]") + u"\n\n"_s;
    for (const auto &[form, purpose] : rows) {
        text += u"  "_s + form.leftJustified(width) + u"  "_s + purpose + u'\n';
    }
    return text;
}

QString CommandLine::inWords(QString form)
{
    const std::pair<QLatin1StringView, QString> words[] = {{"FILE"_L1, localized(u"FILE")},
                                                           {"LINE"_L1, localized(u"LINE")},
                                                           {"COLUMN"_L1, localized(u"COLUMN")},
                                                           {"OLD"_L1, localized(u"OLD")},
                                                           {"NEW"_L1, localized(u"NEW")}};
    for (const auto &[english, word] : words) {
        form.replace(english, word);
    }
    return form;
}
