// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"

#include <QByteArray>
#include <QString>

#include <memory>

/// A small file of the program's own, which only the user may read and of which only the latest content counts. Nobody is notified when it
/// cannot be written. Main thread only.
class KeptFile final {
public:
    /// What is in the file at `path`; empty when there is no regular one of at most `largest` bytes that can be read.
    [[nodiscard]] static QByteArray contentAt(const QString &path, qint64 largest);
    /// Replaces it as one step; its folder is made, for the user only, when it is not there.
    static void writeAt(const QString &path, QByteArrayView content);

    /// `path` is absolute. `workers` must outlive this.
    KeptFile(QString path, Workers &workers);
    Q_DISABLE_COPY_MOVE(KeptFile)
    /// Writes what is not written yet.
    ~KeptFile();

    [[nodiscard]] QByteArray content(qint64 largest) const;
    /// On a worker, soon; what was to be written before and is not yet never is.
    void write(const QByteArray &content);

private:
    struct Writing;

    std::shared_ptr<Writing> m_writing;
    Workers &m_workers;
    BackgroundTask m_task;
};
