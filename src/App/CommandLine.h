// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Localization.h"
#include "Base/PathKind.h"
#include "Text/LineNumber.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <span>
#include <utility>
#include <vector>

/// What the program was asked to do when it was started.
struct CommandLine {
    enum class Request { openFiles, compare, showHelp, showVersion, refuse };
    struct File {
        /// Absolute. It may not exist yet, and what did not answer when it was asked for may be no file.
        QString path;
        std::optional<LineNumber> line = std::nullopt;
        /// From 1, in UTF-16 units; 0 where none was given.
        qsizetype column = 0;

        friend bool operator==(const File &, const File &) = default;
    };

    Request request = Request::openFiles;
    /// In the order given; two of them for a comparison, the old one first.
    std::vector<File> files = {};
    bool opensNewWindow = false;
    /// An empty tab, besides the files.
    bool opensNewTab = false;
    /// Ends when the files, or the window of a comparison, have been closed again.
    bool waits = false;
    /// What comes from the standard input is opened too.
    bool readsStandardInput = false;
    /// Of the interface, this time.
    std::optional<AppLanguage> language = {};
    /// Why the request is refused, or what is not opened. For standard error, one a line, and where nobody reads that for a window.
    QStringList problems = {};

    struct OptionRow;
    /// In the order in which they are reported.
    [[nodiscard]] static std::span<const OptionRow> options();
    /// What is no option: its form and what it is for, in English.
    [[nodiscard]] static std::span<const std::pair<QLatin1StringView, const char16_t *>> otherForms();

    /// `arguments` without the program's own name; relative ones start at `folder`, "~/" at the home folder. What begins with "-" is an
    /// option unless it follows "--"; "+LINE" or "+LINE:COLUMN" is about the file after it. A file that is really called "a:12" is meant
    /// before line 12 of "a", and one called "+12" before a place. All that may be names is asked for at once.
    [[nodiscard]] static CommandLine parse(const QStringList &arguments, const QString &folder,
                                           const PathKindQuery &kindsOf = patientQuery);
    /// Waits as long as a start may take at most.
    [[nodiscard]] static std::vector<PathKind> patientQuery(const QStringList &paths);
    [[nodiscard]] static QString help();
    /// "DATEI:ZEILE" for "FILE:LINE": what is typed for these words, in the language of the interface.
    [[nodiscard]] static QString inWords(QString form);
};

struct CommandLine::OptionRow {
    enum class Option { wait, newWindow, newTab, compare, language, help, version };

    Option option;
    QLatin1StringView longName;
    /// Empty when there is none.
    QLatin1StringView shortName;
    /// What it takes, as the help shows it.
    QLatin1StringView values;
    int valueCount;
    /// English.
    const char16_t *purpose;
};
