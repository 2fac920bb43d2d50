// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/OpenFile.h"

#include "Platform/Translation.h"

#include <QFileInfo>

#include <utility>

OpenFile::OpenFile(UndoManager::Clock clock) : m_undoManager(m_storage, std::move(clock)) {}

OpenFile::OpenFile(const TextFile::Contents &contents, QString path, UndoManager::Clock clock)
    : m_undoManager(m_storage, std::move(clock)), m_path(std::move(path)), m_encoding(contents.encoding), m_lineEnding(contents.lineEnding)
{
    {
        const UndoManager::Pause pause(m_undoManager);
        m_storage.replaceCharacters(TextRange{}, contents.text);
    }
    m_undoManager.markSavePoint();
}

tl::expected<std::unique_ptr<OpenFile>, TextFile::ReadError> OpenFile::read(const QString &path, UndoManager::Clock clock)
{
    return TextFile::read(path).map(
        [&](const TextFile::Contents &contents) { return std::unique_ptr<OpenFile>(new OpenFile(contents, path, std::move(clock))); });
}

Result<void> OpenFile::save(const QString &path)
{
    return TextFile::write(m_storage.text(), path, m_encoding, m_lineEnding).map([&] {
        m_path = path;
        m_undoManager.markSavePoint();
    });
}

QString OpenFile::displayName() const
{
    return m_path.isEmpty() ? localized(u"Untitled") : QFileInfo(m_path).fileName();
}
