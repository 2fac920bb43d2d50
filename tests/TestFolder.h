// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// A folder that goes with the test, and the files in it.
class TestFolder {
public:
    /// An absolute one stays as it is.
    [[nodiscard]] QString path(const QString &name) const { return QDir(m_folder.path()).absoluteFilePath(name); }
    /// Makes the folders that it needs; returns the path.
    QString put(const QString &name, const QByteArray &content) const // NOLINT(modernize-use-nodiscard)
    {
        QDir().mkpath(QFileInfo(path(name)).path());
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size()) << file.fileName().toStdString();
        return file.fileName();
    }
    [[nodiscard]] QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
    [[nodiscard]] QStringList names(const QString &folder = {}) const
    {
        return QDir(path(folder)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

private:
    QTemporaryDir m_folder;
};
