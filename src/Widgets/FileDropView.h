// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Desktop/DroppedFiles.h"

#include <QWidget>

#include <functional>

/// The root of a window's content: takes files that are dropped anywhere on it. Folders are left out, and refused when there is no file.
class FileDropView : public QWidget {
public:
    using QWidget::QWidget;

    /// Gets absolute paths of files that exist.
    std::function<void(const QStringList &paths)> onDropFiles;

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void offer(QDragMoveEvent &event);

    DroppedFiles m_files;
};
