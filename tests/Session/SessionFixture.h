// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FaultyCalls.h"
#include "DocumentSurroundings.h"
#include "Session/DraftFile.h"
#include "Session/SessionStore.h"
#include "TestFolder.h"

/// A snapshot of one pane with these documents, as a window makes it.
inline SessionSnapshot sessionOf(SessionStore &store, const std::vector<TextDocument *> &documents)
{
    SessionSnapshot snapshot{.panes = {{}}};
    for (TextDocument *document : documents) {
        snapshot.documents << SessionSnapshot::Document{.id = document->id(),
                                                        .filePath = document->isUntitled() ? std::nullopt : std::optional(document->path()),
                                                        .draftFilename = store.writeDraft(*document),
                                                        .encodingRawValue = quint32(document->encoding()),
                                                        .lineEnding = rawValue(document->lineEnding()).toString()};
        snapshot.panes.front().documentIDs << document->id();
    }
    return snapshot;
}

/// A folder for a session, and documents that need no window.
class SessionFixture : public testing::Test, protected TestFolder, protected DocumentSurroundings {
protected:
    [[nodiscard]] QString root() const { return path(QStringLiteral("Quillet")); }
    [[nodiscard]] std::unique_ptr<SessionStore> open()
    {
        return std::make_unique<SessionStore>(SessionStore::Places{root(), path({})}, preferences, calls);
    }
    [[nodiscard]] std::unique_ptr<TextDocument> document(const QString &text, const QUuid &id = QUuid::createUuid(),
                                                         const QString &path = {})
    {
        const auto file = TextFile::read(path);
        return std::make_unique<TextDocument>(services, path,
                                              TextFile::Contents{.text = Rope(text), .state = file ? file->state : std::nullopt}, id);
    }
    static void edit(TextDocument &document, const QString &text) { document.storage().apply({{0, document.storage().length()}, text}); }
    static void expectWritten(SessionStore &store) { EXPECT_TRUE(store.waitUntilWritten(std::chrono::minutes(1))); }
    /// Writes a session of these documents, and waits for it.
    static void keep(SessionStore &store, const std::vector<TextDocument *> &documents)
    {
        store.write(sessionOf(store, documents));
        expectWritten(store);
    }
    [[nodiscard]] QStringList drafts() const { return names(QStringLiteral("Quillet/Drafts")); }
    [[nodiscard]] static QString draftName(const QUuid &id) { return QStringLiteral("Drafts/") + DraftFile::nameFor(id); }
    [[nodiscard]] QByteArray draftOf(const QUuid &id) const { return read(root() + u'/' + draftName(id)); }
    QString put(const QString &name, const QByteArray &content) const // NOLINT(modernize-use-nodiscard)
    {
        return TestFolder::put(QStringLiteral("Quillet/") + name, content);
    }
    /// What a program that has ended was writing to `target`; nobody has its number.
    void putRescued(const QString &name, const QString &target, const QByteArray &content) const
    {
        const QString base = QStringLiteral("Rescue/") + QString::fromLatin1(programMark(99'999'999)) + name;
        put(base + QStringLiteral(".content"), content);
        put(base + QStringLiteral(".target"), target.toUtf8());
    }

    DocumentStore documents{services, {}};
    FaultyCalls calls;
};
