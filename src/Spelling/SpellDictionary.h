// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class Hunspell;
struct UConverter;

/// The two files of a dictionary that is installed: the rules of its affixes and its words.
struct SpellDictionaryFiles {
    /// As the files are called: "de_AT".
    QString name;
    QString affixes;
    QString words;

    friend bool operator==(const SpellDictionaryFiles &, const SpellDictionaryFiles &) = default;
};

/// One dictionary in memory, in whatever encoding it is written. Not safe for use by two threads at once.
class SpellDictionary final {
public:
    /// Where dictionaries are installed, the user's own first: $DICPATH, the data folders of the user and of the system. `variable` gives
    /// the value of a variable of the environment, empty when it is not set.
    [[nodiscard]] static QStringList folders(const std::function<QString(const char *name)> &variable);
    /// All there are, each once. Only names are read.
    [[nodiscard]] static std::vector<SpellDictionaryFiles> installed(const QStringList &folders);
    /// For each of the languages ("de_AT.UTF-8", "en") the dictionary of that name, else one of the language as it is spoken elsewhere.
    /// A language without a dictionary has none, and no dictionary is there twice.
    [[nodiscard]] static std::vector<SpellDictionaryFiles> installed(const QStringList &folders, const QStringList &languages);

    /// Null when a file cannot be read or is none of a dictionary. Takes up to 100 ms and some 10 MB.
    [[nodiscard]] static std::unique_ptr<SpellDictionary> load(const SpellDictionaryFiles &files);
    ~SpellDictionary();
    Q_DISABLE_COPY_MOVE(SpellDictionary)

    /// Whether `word` is written in the script of the language: of others the dictionary knows nothing.
    [[nodiscard]] bool isResponsible(QStringView word) const;
    [[nodiscard]] bool knows(const QString &word);
    /// The likeliest first. May take a few hundred milliseconds.
    [[nodiscard]] QStringList suggestions(const QString &word);

private:
    struct ConverterCloser {
        void operator()(UConverter *converter) const;
    };

    SpellDictionary();

    /// None when the dictionary's encoding lacks one of the characters.
    [[nodiscard]] std::optional<std::string> encoded(const QString &word);
    [[nodiscard]] QString decoded(const std::string &word);
    void findScripts(const QString &name);

    std::unique_ptr<Hunspell> m_hunspell;
    std::unique_ptr<UConverter, ConverterCloser> m_converter;
    /// Script codes of ICU.
    std::vector<int> m_scripts;
};
