// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "Base/FileCalls.h"
#include "Base/Scheduler.h"
#include "Highlighting/LanguageRegistry.h"
#include "Model/DocumentConventions.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
#include "Text/TextStorage.h"

#include <QDir>

#include <array>

using namespace Qt::StringLiterals;

namespace {

QStringView nameOf(DocumentConventions::Source source)
{
    using enum DocumentConventions::Source;
    switch (source) {
    case user:
    case preference:
        return u"preference";
    case editorConfig:
        return u"editorconfig";
    case text:
        return u"text";
    case language:
        return u"language";
    }
    Q_UNREACHABLE();
}

/// With the settings as they are by default, or as they are given.
QJsonObject runIndentation(const Arguments &arguments)
{
    const QString path = QDir::current().absoluteFilePath(arguments.positionals[0]);
    const auto contents = TextFile::read(path);
    if (!contents) {
        return answerOf(contents.error());
    }
    ManualScheduler scheduler;
    DefaultsStore defaults{QString(), scheduler};
    NotificationCenter notifications;
    Preferences preferences{defaults, notifications};
    setPreferences(preferences, arguments.values(u"pref"));
    TextStorage storage;
    storage.apply({{}, contents->text});
    const QString head = storage.string({0, std::min<qsizetype>(storage.length(), 512)});
    const Language language = LanguageRegistry::detect(path, head.section(u'\n', 0, 0));
    InlineWorkers workers;
    DocumentConventions conventions({storage, language, preferences, workers, FileCalls::system(), path, {}});
    conventions.noteText();
    conventions.take(EditorConfig::of(path, FileCalls::system()));
    const Indentation indentation = conventions.indentation();
    return {{u"unit"_s, indentation.unit == Indentation::Unit::tab ? u"tab"_s : u"spaces"_s},
            {u"width"_s, indentation.width},
            {u"source"_s, nameOf(conventions.source()).toString()}};
}

constexpr auto indentationOptions = std::to_array<OptionRow>({{u"pref", u"KEY=VALUE", isPreferenceSetting}});

constexpr auto rows = std::to_array<CommandRow>({
    {u"indentation", u"FILE", indentationOptions, u"what a new line of the text is indented with, and who says so", runIndentation},
});

} // namespace

std::span<const CommandRow> indentationCommands()
{
    return rows;
}
