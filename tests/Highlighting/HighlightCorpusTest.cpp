// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// The samples in data/highlight/LANGUAGE are to be coloured as the file of the same place in data/highlight-scopes shows: there every line
// of the sample begins with ": ", and under it stands a line of letters that begins with "= ", one for each unit, unless it has no colour:
//
//     c comment   s string   e escape   n number   k keyword   b builtin   t type   f function   v variable   a attribute
//     p preprocessor   u punctuation   o operator   h heading   m emphasis   l link   x invalid
//
// "highlighting-tests --gtest_filter=*Corpus* --dump" writes what is found; read it before you believe it.

#include "HighlighterFixture.h"

#include "Highlighting/LanguageRegistry.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList samples()
{
    QStringList paths;
    QDirIterator files(QStringLiteral(QUILLET_TEST_DATA "/highlight"), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        paths += files.next();
    }
    paths.sort();
    return paths;
}

QByteArray annotated(const Document &document)
{
    QByteArray result;
    const Rope &text = document.storage.text();
    for (qsizetype line = 0; line < text.lineCount(); ++line) {
        const qsizetype from = text.lineStart(line);
        const auto range = TextRange::between(from, line + 1 < text.lineCount() ? text.lineStart(line + 1) : text.length());
        const QString source = text.toString(range);
        QByteArray letters = QByteArray::fromStdString(document.colours(range));
        letters.replace('.', ' ');
        for (qsizetype index = 0; index < letters.size(); ++index) {
            // So that what follows stands below what it belongs to.
            if (source[index] == u'\t' && letters[index] == ' ') {
                letters[index] = '\t';
            }
        }
        while (!letters.isEmpty() && (letters.back() == ' ' || letters.back() == '\t')) {
            letters.chop(1);
        }
        result += (u": "_s + source.chopped(source.endsWith(u'\n') ? 1 : 0)).toUtf8().trimmed() + '\n';
        if (!letters.isEmpty()) {
            result += "= " + letters + '\n';
        }
    }
    return result;
}

} // namespace

TEST(HighlightCorpus, IsColouredAsWrittenDown)
{
    const bool isDump = QCoreApplication::arguments().contains(u"--dump");
    const QStringList paths = samples();
    EXPECT_GE(paths.size(), qsizetype(LanguageRegistry::all().size()));
    for (const QString &path : paths) {
        const QString id = QFileInfo(path).dir().dirName();
        const auto language = LanguageRegistry::withID(id);
        ASSERT_TRUE(language) << id.toStdString();
        Document document(*language, QString::fromUtf8(contentsOf(path)));
        document.ensureAll();
        const QByteArray found = annotated(document);
        const QString expectation = QString(path).replace(u"/data/highlight/"_s, u"/data/highlight-scopes/"_s);
        if (isDump) {
            ASSERT_TRUE(QDir().mkpath(QFileInfo(expectation).path()));
            QFile file(expectation);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(found) == found.size());
            continue;
        }
        const auto foundLines = found.split('\n');
        const auto wantedLines = contentsOf(expectation).split('\n');
        EXPECT_EQ(foundLines.size(), wantedLines.size()) << expectation.toStdString();
        for (qsizetype line = 0; line < std::min(foundLines.size(), wantedLines.size()); ++line) {
            const QByteArray above = line == 0 ? QByteArray() : foundLines[line - 1];
            ASSERT_EQ(foundLines[line], wantedLines[line]) << expectation.toStdString() << ", line " << line + 1 << ", under\n"
                                                           << above.toStdString();
        }
    }
}
