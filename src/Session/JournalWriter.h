// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileCalls.h"
#include "Session/EditJournal.h"

#include <QDeadlineTimer>
#include <QThreadPool>

#include <functional>
#include <map>
#include <set>

class QFileInfo;

/// Puts what is typed into files at once (EditJournal), on a thread of its own: nothing but typing waits there, and a program that is
/// killed has it there. Flushing them to the disk, for when the power goes, has another thread.
///
/// A document's journals are numbered, each beginning where its draft was handed over to be written, and go when a later draft is on disk.
class JournalWriter final {
public:
    /// `calls` must outlive the writer.
    explicit JournalWriter(FileCalls &calls) : m_calls(calls)
    {
        m_thread.setMaxThreadCount(1);
        m_flushing.setMaxThreadCount(1);
    }
    Q_DISABLE_COPY_MOVE(JournalWriter)

    // Main thread
    /// Before anything is written or read.
    void setFolder(const QString &folder) { m_folder = folder; }
    /// What earlier programs left, by document. Later numbers are higher.
    [[nodiscard]] std::map<QUuid, LeftEdits> read();
    /// Moves those of a document out of the way, to a folder from which they go by dropSetAside() and not otherwise.
    void setAside(const QUuid &document);
    /// What is there, also from earlier programs. What is damaged goes when it has been there for a month.
    [[nodiscard]] std::map<QUuid, LeftEdits> readSetAside();
    /// The next journal of the document, on `base`; returns its number.
    quint64 begin(const QUuid &document, const SessionSnapshot::Document &entry, const Rope &base);
    /// After begin().
    void append(const QUuid &document, const TextEdits &change);
    /// The number that the next journal will have.
    [[nodiscard]] quint64 nextNumber() const { return m_lastNumber + 1; }
    /// What was appended so far goes to the disk.
    void flush();

    // Any thread
    /// The text that the journal `number` builds on is safe: those before it go, and itself as long as it is empty.
    void drop(const QUuid &document, quint64 number);
    /// Those up to `lastNumber` that were set aside are not needed any more.
    void dropSetAside(const QUuid &document, quint64 lastNumber);
    [[nodiscard]] bool waitUntilWritten(QDeadlineTimer deadline);

private:
    /// The last one of a document.
    struct Open {
        quint64 number = 0;
        QByteArray beginning = {};
        int file = -1;
        bool isEmpty = true;
        /// Part of it is missing: what follows would be of another text.
        bool isBroken = false;
    };

    [[nodiscard]] QString pathOf(const QUuid &document, quint64 number) const;
    [[nodiscard]] QString asideFolder() const;
    /// `reject` is told of those that are none.
    using Rejection = std::function<void(const QFileInfo &file, const QByteArray &content)>;
    [[nodiscard]] std::map<QUuid, LeftEdits> readIn(const QString &folder, const Rejection &reject);
    void moveAside(const QString &name) const;
    [[nodiscard]] static std::vector<quint64> numbersOf(const QUuid &document, const QString &folder);
    void write(const QUuid &document, Open &open, const QByteArray &bytes);
    void close(Open &open);

    FileCalls &m_calls;
    QString m_folder;
    quint64 m_lastNumber = 0;
    // Of the writing thread
    std::map<QUuid, Open> m_open;
    std::set<QString> m_unflushed;
    // The threads end before what they use.
    QThreadPool m_flushing;
    QThreadPool m_thread;
};
