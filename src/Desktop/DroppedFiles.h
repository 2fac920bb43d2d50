// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QFileInfo>
#include <QMimeData>
#include <QStringList>
#include <QUrl>

/// The files, folders left out, that lie on this machine and are dragged: their absolute paths in order.
[[nodiscard]] inline QStringList droppedFiles(const QMimeData &content)
{
    QStringList paths;
    for (const QUrl &url : content.urls()) {
        if (url.isLocalFile() && QFileInfo(url.toLocalFile()).isFile()) {
            paths << url.toLocalFile();
        }
    }
    return paths;
}
