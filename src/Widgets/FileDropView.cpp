// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/FileDropView.h"

#include "Desktop/DroppedFiles.h"

#include <QDropEvent>

namespace {

void offer(QDragMoveEvent &event)
{
    if (droppedFiles(*event.mimeData()).isEmpty()) {
        event.ignore();
        return;
    }
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

} // namespace

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
    const QStringList paths = droppedFiles(*event->mimeData());
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
