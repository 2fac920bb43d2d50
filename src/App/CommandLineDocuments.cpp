// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/CommandLineDocuments.h"

#include "App/CommandLine.h"
#include "Base/Translation.h"

using namespace Qt::StringLiterals;

namespace {

using OptionRow = CommandLine::OptionRow;

/// The words that an option takes one of; none when it takes names of files, or nothing.
QStringList choicesOf(const OptionRow &option)
{
    const QString values(option.values);
    return values.contains(u'|') ? values.split(u'|') : QStringList();
}

QString forMan(QString text)
{
    return text.replace(u'\\', "\\e"_L1).replace(u'-', "\\-"_L1);
}

QString inQuotes(QString text)
{
    return u'\'' + text.replace(u'\'', "'\\''"_L1) + u'\'';
}

QStringList namesOf(const OptionRow &option)
{
    return option.shortName.isEmpty() ? QStringList{option.longName} : QStringList{option.shortName, option.longName};
}

/// Tagged paragraphs: what is typed in bold, then what it does.
QString tagged(const QString &form, const QString &purpose)
{
    return u".TP\n\\fB"_s + forMan(form) + u"\\fR\n"_s + forMan(purpose) + u'\n';
}

} // namespace

QString CommandLineDocuments::manPage()
{
    const auto section = [](const QString &title) { return u".SH "_s + title + u'\n'; };
    QString page = u".TH QUILLET 1\n"_s + section(localized(u"NAME")) + u"quillet \\- "_s +
                   forMan(localized(u"An editor for plain text and source code.")).chopped(1) + u'\n' + section(localized(u"SYNOPSIS")) +
                   CommandLine::inWords(u"\\fBquillet\\fR [\\fIOPTION\\fR] [\\fIFILE\\fR...]\n"_s) + section(localized(u"OPTIONS"));
    for (const OptionRow &option : CommandLine::options()) {
        const QString names = namesOf(option).join(", "_L1);
        page += tagged(option.values.isEmpty() ? names : names + u' ' + CommandLine::inWords(option.values), localized(option.purpose));
    }
    page += section(localized(u"FILES"));
    for (const auto &[form, purpose] : CommandLine::otherForms()) {
        page += tagged(CommandLine::inWords(form), localized(purpose));
    }
    return page;
}

QString CommandLineDocuments::bashCompletion()
{
    QStringList all;
    QString cases;
    for (const OptionRow &option : CommandLine::options()) {
        all << namesOf(option);
        if (const QStringList choices = choicesOf(option); !choices.isEmpty()) {
            cases += u"        "_s + namesOf(option).join(u'|') + u") COMPREPLY=($(compgen -W "_s + inQuotes(choices.join(u' ')) +
                     u" -- \"$word\")); return ;;\n"_s;
        }
    }
    return u"# bash completion for quillet\n_quillet()\n{\n    local word=${COMP_WORDS[COMP_CWORD]}\n    COMPREPLY=()\n"
           u"    case ${COMP_WORDS[COMP_CWORD-1]} in\n"_s +
           cases + u"    esac\n    if [[ $word == -* ]]; then\n        COMPREPLY=($(compgen -W "_s + inQuotes(all.join(u' ')) +
           u" -- \"$word\"))\n    else\n        compopt -o default\n    fi\n}\ncomplete -F _quillet quillet\n"_s;
}

QString CommandLineDocuments::zshCompletion()
{
    QString text = u"#compdef quillet\n_arguments \\\n"_s;
    for (const OptionRow &option : CommandLine::options()) {
        const QStringList choices = choicesOf(option);
        QString values;
        for (int value = 0; value < option.valueCount; ++value) {
            values += choices.isEmpty() ? u":file:_files"_s : u":word:("_s + choices.join(u' ') + u')';
        }
        const QString purpose = localized(option.purpose).replace(u'[', "\\["_L1).replace(u']', "\\]"_L1);
        const QStringList names = namesOf(option);
        for (const QString &name : names) {
            text += u"    "_s + inQuotes(u'(' + names.join(u' ') + u')' + name + u'[' + purpose + u']' + values) + u" \\\n"_s;
        }
    }
    return text + u"    '*:file:_files'\n"_s;
}

QString CommandLineDocuments::fishCompletion()
{
    QString text;
    for (const OptionRow &option : CommandLine::options()) {
        const QStringList choices = choicesOf(option);
        text +=
            u"complete -c quillet"_s + (option.shortName.isEmpty() ? QString() : u" -s "_s + QString(option.shortName).sliced(1)) +
            u" -l "_s + QString(option.longName).sliced(2) + (choices.isEmpty() ? QString() : u" -x -a "_s + inQuotes(choices.join(u' '))) +
            (choices.isEmpty() && option.valueCount > 0 ? u" -r"_s : QString()) + u" -d "_s + inQuotes(localized(option.purpose)) + u'\n';
    }
    return text;
}
