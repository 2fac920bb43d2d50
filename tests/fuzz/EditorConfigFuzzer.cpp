// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Bytes as .editorconfig files of a folder and of the one in it: nothing crashes or goes on for ever whatever they are, what is understood
// is within its bounds, and is the same when it is read again.
#include "Base/FileCalls.h"
#include "Files/EditorConfig.h"
#include "Require.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fuzzer/FuzzedDataProvider.h>

using namespace Qt::StringLiterals;

namespace {

/// In memory where there is such a folder.
const QTemporaryDir &folder()
{
    static const QTemporaryDir made(u"/dev/shm/quillet-fuzz-XXXXXX"_s);
    static const bool hasInner = QDir(made.path()).mkdir(u"inner"_s);
    REQUIRE(hasInner);
    return made;
}

void put(const QString &name, const std::string &content)
{
    QFile file(folder().filePath(name));
    REQUIRE(file.open(QIODevice::WriteOnly) && file.write(content.data(), qsizetype(content.size())) == qsizetype(content.size()));
}

} // namespace

/// The library that understands the files keeps memory of those that it does not.
extern "C" const char *__asan_default_options() // NOLINT(bugprone-reserved-identifier): so it is called
{
    return "detect_leaks=0";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider provider(data, size);
    QString name = QString::fromUtf8(QByteArray::fromStdString(provider.ConsumeRandomLengthString(24))).remove(u'/').remove(QChar(0));
    put(u"inner/.editorconfig"_s, provider.ConsumeRandomLengthString(size / 2));
    // That of no folder above may be read.
    put(u".editorconfig"_s, "root = true\n" + provider.ConsumeRemainingBytesAsString());
    if (name.isEmpty() || name == u"." || name == u"..") {
        name = u"a.c"_s;
    }
    const QString path = folder().filePath(u"inner/"_s + name);
    const EditorConfig config = EditorConfig::of(path, FileCalls::system());
    REQUIRE(config == EditorConfig::of(path, FileCalls::system()));
    for (const auto &number : {config.indentSize, config.tabWidth, config.longestLine}) {
        REQUIRE(!number || *number > 0);
    }
    return 0;
}
