// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPalette>

/// What `desktop` needs so that the hints in its fields can be read: only their colour is set, and only where it stands out too little.
[[nodiscard]] QPalette legibleHints(const QPalette &desktop);

/// What `desktop` needs so that tool tips look like its windows: nothing when it has colours for them, else all of theirs.
[[nodiscard]] QPalette plainToolTips(const QPalette &desktop);

/// Some desktops set all colours but those of hints and tool tips, which then are the toolkit's: black hints on a dark ground, tool tips
/// on yellow. While it lives, the application's palette has what legibleHints() and plainToolTips() say, also after the desktop changed
/// its colours. Main thread only; one at a time, after the application object was made.
class DesktopPalette final : public QObject {
    Q_OBJECT

public:
    DesktopPalette();

    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void mend();

    bool m_hasSetToolTips = false;
};
