// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Spelling/UserWords.h"

#include "Base/AtomicFile.h"
#include "Base/Translation.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype longestWord = 128;

bool isWord(const QString &line)
{
    return !line.isEmpty() && line.size() <= longestWord && std::ranges::all_of(line, [](QChar character) {
        return character.isPrint() && !character.isSpace() && character != QChar::ReplacementCharacter;
    });
}

/// A word that is not lower case throughout may stand at the start of a sentence.
QString uncapitalised(const QString &word)
{
    return word.first(1).toLower() + word.sliced(1);
}

} // namespace

UserWords::UserWords(QString file, QObject *parent) : QObject(parent), m_file(std::move(file)) {}

bool UserWords::contains(const QString &word)
{
    read();
    return !m_words.isEmpty() && (m_words.contains(word) || m_words.contains(uncapitalised(word)));
}

void UserWords::read()
{
    if (std::exchange(m_isRead, true)) {
        return;
    }
    QFile file(m_file);
    if (!QFileInfo(m_file).isFile() || !file.open(QIODevice::ReadOnly)) {
        return;
    }
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (const QString &line : lines) {
        if (const QString word = line.trimmed(); isWord(word)) {
            m_words.insert(word);
        }
    }
}

Result<void> UserWords::learn(const QString &word)
{
    read();
    if (m_file.isEmpty() || !isWord(word)) {
        ignore(word);
        return {};
    }
    // Another running program, or the user with an editor, may have added to the file: it is read again, and nothing in it is lost.
    QByteArray lines;
    if (QFile file(m_file); QFileInfo(m_file).isFile()) {
        if (!file.open(QIODevice::ReadOnly)) {
            ignore(word);
            return failure(formatted(localized(u"“%@” could not be learned: %@ cannot be read."), word, m_file));
        }
        lines = file.readAll();
    }
    if (!lines.isEmpty() && !lines.endsWith('\n')) {
        lines += '\n';
    }
    m_isRead = false;
    read();
    const bool isKnown = m_words.contains(word) && lines.split('\n').contains(word.toUtf8());
    ignore(word);
    if (isKnown) {
        return {};
    }
    makePrivateFolder(QFileInfo(m_file).path());
    return writeAtomically(m_file, lines + word.toUtf8() + '\n', AtomicFile::NewFile::privateToUser);
}

void UserWords::ignore(const QString &word)
{
    if (!word.isEmpty()) {
        m_words.insert(word);
        emit changed();
    }
}
