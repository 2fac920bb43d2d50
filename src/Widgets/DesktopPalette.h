// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Desktop/SystemAppearance.h"

#include <QObject>
#include <QPalette>

#include <functional>

/// What `desktop` needs so that it is as requested: all colours when it is light and shall be dark or the other way round, the colours of
/// what is chosen for an accent, text and grounds at their extremes for high contrast. Only what differs is set.
[[nodiscard]] QPalette requestedPalette(const QPalette &desktop, const RequestedAppearance &requested);

/// What `desktop` needs so that the hints in its fields can be read: only their colour is set, and only where it stands out too little.
[[nodiscard]] QPalette legibleHints(const QPalette &desktop);

/// What the boxes to tick need on the dark ground of `shown`, where their outlines are not seen: a ground of their own.
[[nodiscard]] QPalette visibleBoxes(const QPalette &shown);

/// What `desktop` needs so that tool tips look like its windows: nothing when it has colours for them, else all of theirs.
[[nodiscard]] QPalette plainToolTips(const QPalette &desktop);

/// Some desktops say what they request and leave it to the program to look so; some set all colours but those of hints and tool tips, which
/// then are the toolkit's: black hints on a dark ground, tool tips on yellow. While it lives, the application's palette has what
/// requestedPalette(), legibleHints() and plainToolTips() say, also after the desktop changed its colours. Main thread only; one at a time,
/// after the application object was made.
class DesktopPalette final : public QObject {
    Q_OBJECT

public:
    /// `desktop` gives the desktop's own colours, without what the application has set.
    explicit DesktopPalette(std::function<QPalette()> desktop = systemPalette);

    void adapt(const RequestedAppearance &requested);
    /// What the user has chosen for this program, and what goes before the desktop's request; none: nothing.
    void follow(std::optional<Appearance> chosen);
    /// As the desktop's own colours are.
    [[nodiscard]] Appearance ofDesktop() const { return m_ofDesktop; }

    bool eventFilter(QObject *object, QEvent *event) override;

signals:
    void desktopChanged();

private:
    [[nodiscard]] static QPalette systemPalette();
    void adjust();
    void adjustBoxes(const QPalette &adjusted);

    std::function<QPalette()> m_desktop;
    RequestedAppearance m_requested;
    std::optional<Appearance> m_chosen;
    Appearance m_ofDesktop = Appearance::light;
    /// The application's, as it was left.
    QPalette m_shown;
    bool m_isAdjusting = false;
    bool m_hasSetToolTips = false;
    bool m_hasSetBoxes = false;
};
