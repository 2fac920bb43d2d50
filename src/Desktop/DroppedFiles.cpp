// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/DroppedFiles.h"

#include "Base/FilePath.h"
#include "Base/PathKind.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

namespace {

QStringList filesIn(const QMimeData &content)
{
    QStringList paths;
    for (const QUrl &url : content.urls()) {
        if (const QString path = localPath(url); !path.isEmpty()) {
            paths << path;
        }
    }
    const std::vector<PathKind> kinds = kindsOf(paths);
    QStringList files;
    for (qsizetype index = 0; index < paths.size(); ++index) {
        if (const PathKind kind = kinds[size_t(index)]; kind == PathKind::file || kind == PathKind::unknown) {
            files << paths[index];
        }
    }
    return files;
}

} // namespace

const QStringList &DroppedFiles::of(const QDropEvent &event)
{
    if (event.type() == QEvent::DragEnter) {
        m_paths = filesIn(*event.mimeData());
    }
    return m_paths;
}
