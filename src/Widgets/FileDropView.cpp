// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/FileDropView.h"

#include <QDropEvent>

void FileDropView::offer(QDragMoveEvent &event)
{
    if (m_files.of(event).isEmpty()) {
        event.ignore();
        return;
    }
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

void FileDropView::dragEnterEvent(QDragEnterEvent *event)
{
    offer(*event);
}

void FileDropView::dragMoveEvent(QDragMoveEvent *event)
{
    offer(*event);
}

void FileDropView::dropEvent(QDropEvent *event)
{
    const QStringList paths = m_files.of(*event);
    if (paths.isEmpty()) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (onDropFiles) {
        onDropFiles(paths);
    }
}
