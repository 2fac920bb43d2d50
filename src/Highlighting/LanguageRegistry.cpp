// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/LanguageRegistry.h"

#include "Highlighting/Languages/LanguageRow.h"

#include <QHash>

#include <algorithm>

namespace {

using LanguagesByName = QHash<QString, Language>;

/// Where two languages claim the same entry the later one has it.
LanguagesByName languagesBy(const QStringList &(Language::*entries)() const)
{
    LanguagesByName map;
    for (const Language &language : LanguageRegistry::all()) {
        for (const QString &entry : (language.*entries)()) {
            map.insert(entry.toLower(), language);
        }
    }
    return map;
}

const LanguagesByName &byExtension()
{
    static const LanguagesByName map = languagesBy(&Language::extensions);
    return map;
}

const LanguagesByName &byFilename()
{
    static const LanguagesByName map = languagesBy(&Language::filenames);
    return map;
}

QStringView lastComponent(QStringView path)
{
    while (path.endsWith(u'/')) {
        path.chop(1);
    }
    return path.sliced(path.lastIndexOf(u'/') + 1);
}

/// A dot that a name begins with hides the file and begins no extension.
QStringView extensionOf(QStringView name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.sliced(dot + 1) : QStringView();
}

} // namespace

const std::vector<Language> &LanguageRegistry::all()
{
    static const std::vector<Language> languages = [] {
        std::vector<Language> built;
        for (const LanguageRow &row : builtInLanguages()) {
            built.emplace_back(row);
        }
        built.back() = Language::plainText();
        return built;
    }();
    return languages;
}

Language LanguageRegistry::detect(QStringView path, QStringView firstLine)
{
    const QString name = lastComponent(path).toString().toLower();
    const LanguagesByName &extensions = byExtension();
    if (const auto found = extensions.find(extensionOf(name).toString()); found != extensions.end()) {
        return *found;
    }
    const LanguagesByName &filenames = byFilename();
    if (const auto found = filenames.find(name); found != filenames.end()) {
        return *found;
    }
    if (firstLine.startsWith(u"#!")) {
        const auto found =
            std::ranges::find_if(all(), [firstLine](const Language &language) { return language.matchesShebang(firstLine); });
        if (found != all().end()) {
            return *found;
        }
    }
    return Language::plainText();
}

std::optional<Language> LanguageRegistry::withID(QStringView id)
{
    const auto found = std::ranges::find_if(all(), [id](const Language &language) { return language.id() == id; });
    return found == all().end() ? std::nullopt : std::optional(*found);
}
