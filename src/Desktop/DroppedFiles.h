// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

class QDropEvent;

/// The files, folders left out, that lie on this machine and are dragged over something: their absolute paths in order. What they are is
/// asked once a drag, when it comes; what does not answer soon counts as a file.
class DroppedFiles final {
public:
    /// Of the event that enters, moves or drops.
    [[nodiscard]] const QStringList &of(const QDropEvent &event);

private:
    QStringList m_paths;
};
