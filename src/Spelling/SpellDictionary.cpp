// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Spelling/SpellDictionary.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <hunspell/hunspell.hxx>
#include <unicode/ucnv.h>
#include <unicode/uscript.h>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr auto affixSuffix = ".aff"_L1;
constexpr auto wordsSuffix = ".dic"_L1;

/// "de_AT" of "de_AT.UTF-8@euro" and "de-AT".
QString withoutEncoding(const QString &language)
{
    const auto end = std::ranges::find_if(language, [](QChar character) { return character == u'.' || character == u'@'; });
    return language.first(end - language.begin()).replace(u'-', u'_');
}

bool isReadableFile(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() && info.isReadable();
}

/// What a file of words begins with is about how many there are. Anything else would make a dictionary that knows no word, and every
/// word of a text a mistake.
bool hasWords(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    QByteArray count = file.readLine(64);
    if (count.startsWith("\xEF\xBB\xBF")) {
        count.remove(0, 3);
    }
    count = count.trimmed();
    const auto digits = std::ranges::find_if_not(count, [](char unit) { return unit >= '0' && unit <= '9'; }) - count.begin();
    return digits > 0 && count.first(digits).toInt() > 0 && !file.atEnd();
}

} // namespace

QStringList SpellDictionary::folders(const std::function<QString(const char *name)> &variable)
{
    QStringList folders = variable("DICPATH").split(u':', Qt::SkipEmptyParts);
    QStringList data = variable("XDG_DATA_DIRS").split(u':', Qt::SkipEmptyParts);
    data << u"/usr/local/share"_s << u"/usr/share"_s;
    const QString own = variable("XDG_DATA_HOME");
    data.prepend(QDir::isAbsolutePath(own) ? own : variable("HOME") + u"/.local/share"_s);
    for (const QString &folder : std::as_const(data)) {
        folders << folder + u"/hunspell"_s << folder + u"/myspell/dicts"_s << folder + u"/myspell"_s;
    }
    for (QString &folder : folders) {
        folder = QDir::cleanPath(folder);
    }
    folders.removeIf([](const QString &folder) { return !QDir::isAbsolutePath(folder); });
    folders.removeDuplicates();
    return folders;
}

std::vector<SpellDictionaryFiles> SpellDictionary::installed(const QStringList &folders)
{
    std::vector<SpellDictionaryFiles> all;
    for (const QString &folder : folders) {
        const QStringList names = QDir(folder).entryList({u"*"_s + wordsSuffix}, QDir::Files, QDir::Name);
        for (const QString &file : names) {
            const QString name = file.chopped(wordsSuffix.size());
            const QString base = folder + u'/' + name;
            if (std::ranges::find(all, name, &SpellDictionaryFiles::name) == all.end() && QFileInfo::exists(base + affixSuffix)) {
                all.push_back({name, base + affixSuffix, base + wordsSuffix});
            }
        }
    }
    return all;
}

std::vector<SpellDictionaryFiles> SpellDictionary::installed(const QStringList &folders, const QStringList &languages)
{
    const std::vector<SpellDictionaryFiles> all = installed(folders);
    std::vector<SpellDictionaryFiles> chosen;
    for (const QString &language : languages) {
        const QString name = withoutEncoding(language);
        const QString code = name.section(u'_', 0, 0);
        const auto rank = [&](const SpellDictionaryFiles &files) {
            const std::array candidates = {name, code, QLocale(code).name()};
            const auto place = std::ranges::find(candidates, files.name) - candidates.begin();
            return place < std::ssize(candidates) ? place : files.name.startsWith(code + u'_') ? std::ssize(candidates) : PTRDIFF_MAX;
        };
        const auto best = std::ranges::min_element(all, {}, rank);
        if (best != all.end() && rank(*best) != PTRDIFF_MAX && std::ranges::find(chosen, *best) == chosen.end()) {
            chosen.push_back(*best);
        }
    }
    return chosen;
}

SpellDictionary::SpellDictionary() = default;
SpellDictionary::~SpellDictionary() = default;

void SpellDictionary::ConverterCloser::operator()(UConverter *converter) const
{
    ucnv_close(converter);
}

std::unique_ptr<SpellDictionary> SpellDictionary::load(const SpellDictionaryFiles &files)
{
    if (!isReadableFile(files.affixes) || !isReadableFile(files.words) || !hasWords(files.words)) {
        return nullptr;
    }
    std::unique_ptr<SpellDictionary> dictionary(new SpellDictionary);
    try {
        dictionary->m_hunspell =
            std::make_unique<Hunspell>(QFile::encodeName(files.affixes).constData(), QFile::encodeName(files.words).constData());
    } catch (const std::exception &) {
        return nullptr; // a file that asks for more than there is
    }
    QByteArray encoding = QByteArray::fromStdString(dictionary->m_hunspell->get_dict_encoding());
    if (encoding.startsWith("microsoft-")) {
        encoding.remove(0, 10);
    }
    UErrorCode status = U_ZERO_ERROR;
    dictionary->m_converter.reset(ucnv_open(encoding.constData(), &status));
    ucnv_setFromUCallBack(dictionary->m_converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    if (U_FAILURE(status)) {
        return nullptr;
    }
    dictionary->findScripts(files.name);
    return dictionary;
}

void SpellDictionary::findScripts(const QString &name)
{
    std::array<UScriptCode, 8> codes{};
    UErrorCode status = U_ZERO_ERROR;
    const int count = uscript_getCode(name.toLatin1().constData(), codes.data(), int(codes.size()), &status);
    if (U_SUCCESS(status) && count > 0) {
        m_scripts.assign(codes.begin(), codes.begin() + count);
    } else {
        m_scripts = {USCRIPT_LATIN};
    }
}

bool SpellDictionary::isResponsible(QStringView word) const
{
    for (qsizetype place = 0; place < word.size(); ++place) {
        char32_t character = word[place].unicode();
        if (word[place].isHighSurrogate() && place + 1 < word.size()) {
            character = QChar::surrogateToUcs4(word[place], word[place + 1]);
        }
        UErrorCode status = U_ZERO_ERROR;
        const UScriptCode script = uscript_getScript(UChar32(character), &status);
        if (script != USCRIPT_COMMON && script != USCRIPT_INHERITED) {
            return std::ranges::find(m_scripts, int(script)) != m_scripts.end();
        }
    }
    return false;
}

std::optional<std::string> SpellDictionary::encoded(const QString &word)
{
    std::string bytes(size_t(UCNV_GET_MAX_BYTES_FOR_STRING(word.size(), ucnv_getMaxCharSize(m_converter.get()))), '\0');
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_fromUChars(m_converter.get(), bytes.data(), int32_t(bytes.size()),
                                           reinterpret_cast<const UChar *>(word.utf16()), int32_t(word.size()), &status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    bytes.resize(size_t(length));
    return bytes;
}

QString SpellDictionary::decoded(const std::string &word)
{
    QString text(qsizetype(word.size()) * 2, Qt::Uninitialized);
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(m_converter.get(), reinterpret_cast<UChar *>(text.data()), int32_t(text.size()), word.data(),
                                         int32_t(word.size()), &status);
    return U_SUCCESS(status) ? text.first(length) : QString();
}

bool SpellDictionary::knows(const QString &word)
{
    const auto isListed = [this](const QString &spelled) {
        const auto bytes = encoded(spelled);
        return bytes && m_hunspell->spell(*bytes);
    };
    if (isListed(word)) {
        return true;
    }
    // Few dictionaries have the apostrophe of typographers.
    return word.contains(u'\u2019') && isListed(QString(word).replace(u'\u2019', u'\''));
}

QStringList SpellDictionary::suggestions(const QString &word)
{
    QStringList suggestions;
    if (const auto bytes = encoded(word)) {
        for (const std::string &suggestion : m_hunspell->suggest(*bytes)) {
            if (const QString text = decoded(suggestion); !text.isEmpty()) {
                suggestions << text;
            }
        }
    }
    return suggestions;
}
