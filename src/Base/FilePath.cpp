// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/FilePath.h"

#include <QDir>
#include <QUrl>

#include <unicode/utf8.h>

#include <cstdlib>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr char32_t firstByteSign = 0x10FE80;
constexpr char32_t lastByteSign = 0x10FEFF;
constexpr uchar firstByte = 0x80;

bool isByteSign(char32_t character)
{
    return character >= firstByteSign && character <= lastByteSign;
}

/// What `units` are with each sign of a byte, which are two of them, replaced by `replacement(byte)`.
template<typename Text, typename Convert, typename Replacement>
Text withoutByteSigns(QStringView units, Convert convert, Replacement replacement)
{
    Text text;
    qsizetype start = 0;
    for (qsizetype at = 0; at + 1 < units.size(); ++at) {
        const bool isPair = units[at].isHighSurrogate() && units[at + 1].isLowSurrogate();
        const char32_t character = isPair ? QChar::surrogateToUcs4(units[at], units[at + 1]) : 0;
        if (isByteSign(character)) {
            text += convert(units.sliced(start, at - start));
            text += replacement(char(character - firstByteSign + firstByte));
            start = ++at + 1;
        }
    }
    text += convert(units.sliced(start));
    return text;
}

} // namespace

QString decodedPath(QByteArrayView bytes)
{
    QString path;
    path.reserve(bytes.size());
    const auto *const units = reinterpret_cast<const uint8_t *>(bytes.data());
    for (qsizetype at = 0; at < bytes.size();) {
        const qsizetype start = at;
        UChar32 character = 0;
        U8_NEXT(units, at, bytes.size(), character);
        if (character >= 0 && !isByteSign(char32_t(character))) {
            path += QChar::fromUcs4(char32_t(character));
            continue;
        }
        for (const char byte : bytes.sliced(start, at - start)) {
            path += QChar::fromUcs4(firstByteSign + (uchar(byte) - firstByte));
        }
    }
    return path;
}

QByteArray encodedPath(const QString &path)
{
    return withoutByteSigns<QByteArray>(
        path, [](QStringView units) { return units.toUtf8(); }, [](char byte) { return byte; });
}

bool isThere(const QString &path)
{
    struct stat status = {};
    return ::stat(encodedPath(path).constData(), &status) == 0;
}

QByteArray realPath(const QByteArray &path)
{
    const std::unique_ptr<char, decltype(&std::free)> found(::realpath(path.constData(), nullptr), std::free);
    return found.get();
}

QString shownPath(const QString &path)
{
    return withoutByteSigns<QString>(
        path, [](QStringView units) { return units; }, [](char) { return QChar(QChar::ReplacementCharacter); });
}

QString localPath(const QUrl &url)
{
    if (!url.isLocalFile()) {
        return {};
    }
    return url.host().isEmpty() ? decodedPath(QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1())) : url.toLocalFile();
}

QString addressOf(const QString &path)
{
    return u"file://"_s + QString::fromLatin1(encodedPath(path).toPercentEncoding("/!$&'()*+,:=@"));
}

QString workingFolder()
{
    const std::unique_ptr<char, decltype(&std::free)> folder(::getcwd(nullptr, 0), std::free);
    return folder ? decodedPath(folder.get()) : QDir::rootPath();
}

QString absoluteFilePath(const QString &name, const QString &folder)
{
    if (name == "~"_L1 || name.startsWith("~/"_L1)) {
        return QDir::cleanPath(QDir::homePath() + name.mid(1));
    }
    return QDir::cleanPath(QDir(folder).absoluteFilePath(name));
}
