// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/WindowPlacement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace {

/// Of a window that is put where it was, this much has to be seen.
constexpr QSize leastVisible(100, 50);

/// Clients of Wayland neither know nor choose where their windows stand.
bool hasWindowPositions()
{
    return !QGuiApplication::platformName().startsWith("wayland"_L1);
}

int screenBottom()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? screen->geometry().bottom() + 1 : 0;
}

bool isInSight(const QRect &frame)
{
    return std::ranges::any_of(QGuiApplication::screens(), [&](const QScreen *screen) {
        const QSize shown = frame.intersected(screen->availableGeometry()).size();
        return shown.width() >= leastVisible.width() && shown.height() >= leastVisible.height();
    });
}

} // namespace

WindowFrame frameOf(const QWidget &window)
{
    const QRect normal = window.isMaximized() || window.isFullScreen() ? window.normalGeometry() : window.geometry();
    const QPoint place = hasWindowPositions() ? window.pos() : QPoint();
    return {place.x(), screenBottom() - place.y() - normal.height(), normal.width(), normal.height()};
}

void placeWindow(QWidget &window, const WindowFrame &frame)
{
    const QScreen *screen = window.screen();
    const QSize room = screen ? screen->availableSize() : QSize(frame.width, frame.height);
    window.resize(QSize(frame.width, frame.height).boundedTo(room).expandedTo(window.minimumSize()));
    const QRect place(QPoint(frame.x, screenBottom() - frame.y - frame.height), window.size());
    if (hasWindowPositions() && isInSight(place)) {
        window.move(place.topLeft());
    }
}
