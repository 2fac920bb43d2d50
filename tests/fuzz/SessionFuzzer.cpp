// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Bytes as a session: nothing crashes whatever they are, what is read from them is written the same, and a draft that is there comes back.
#include "DocumentSurroundings.h"
#include "Require.h"
#include "Session/DraftFile.h"
#include "Session/SessionRestoration.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QString draftName = u"1B4E28BA-2FA1-11D2-883F-0016D3CCA427.draft"_s;
const QString draftText = u"typed, not saved"_s;

/// A folder for sessions, once with a draft and once without.
class Place final : DocumentSurroundings {
public:
    explicit Place(bool hasDraft) : m_hasDraft(hasDraft)
    {
        QDir().mkpath(root() + u"/Drafts"_s);
        if (hasDraft) {
            put(u"Drafts/"_s + draftName, draftText.toUtf8());
        }
        put(u"file.txt"_s, "in the file\n");
    }

    void check(SessionSnapshot snapshot)
    {
        for (SessionSnapshot::Document &document : snapshot.documents) {
            if (document.filePath && QDir::isAbsolutePath(*document.filePath)) {
                // Nothing of this machine may be read.
                document.filePath = root() + QDir::cleanPath(u'/' + *document.filePath);
            }
        }
        put(u"session.json"_s, snapshot.toJson());
        SessionStore store({root(), m_folder.path()}, preferences);
        const SessionStore::Saved saved = store.read();
        REQUIRE(saved.snapshot == snapshot);
        DocumentStore documents(services, {});
        const auto restored = restoreDocuments(saved, store, documents);
        bool isDraftBack = false;
        std::set<QUuid> ids;
        for (const auto &document : documents.documents()) {
            const TextRange selection = document->lastSelectedRange;
            REQUIRE(selection.location >= 0 && selection.length >= 0 && selection.length <= document->storage().length());
            REQUIRE(selection.location <= document->storage().length() - selection.length);
            REQUIRE(std::isfinite(document->lastScrollOffset) && document->lastScrollOffset >= 0);
            REQUIRE(!document->arrival().isPending() && ids.insert(document->id()).second);
            isDraftBack |= document->storage().string() == draftText;
        }
        REQUIRE(isDraftBack == m_hasDraft);
        for (const RestoredDocument &document : restored) {
            REQUIRE(ids.contains(document.document->id()));
        }
    }

private:
    [[nodiscard]] QString root() const { return m_folder.filePath(u"Quillet"_s); }
    void put(const QString &name, const QByteArray &content) const
    {
        QFile file(root() + u'/' + name);
        REQUIRE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }

    bool m_hasDraft;
    // In memory where there is such a folder.
    QTemporaryDir m_folder{u"/dev/shm/quillet-fuzz-XXXXXX"_s};
};

void checkFrame(const QString &text)
{
    if (const auto frame = WindowFrame::fromString(text)) {
        REQUIRE(frame->width > 0 && frame->height > 0);
        REQUIRE(WindowFrame::fromString(frame->toString()) == frame);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static int argumentCount = 1;
    static char name[] = "fuzz-session";
    static char *arguments[] = {name, nullptr};
    static const QCoreApplication application(argumentCount, arguments);
    // Warnings of names that no file can have.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    static Place empty(false);
    static Place withDraft(true);

    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    checkFrame(QString::fromUtf8(bytes));
    const auto snapshot = SessionSnapshot::fromJson(bytes);
    if (!snapshot) {
        return 0;
    }
    REQUIRE(SessionSnapshot::fromJson(snapshot->toJson()) == snapshot);
    checkFrame(snapshot->windowFrame.value_or(QString()));
    empty.check(*snapshot);
    withDraft.check(*snapshot);
    QCoreApplication::processEvents();
    return 0;
}
