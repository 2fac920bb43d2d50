// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Scheduler.h"

#include <QGuiApplication>
#include <QStyleHints>

#include <functional>

/// Whether a caret is to be seen just now.
class BlinkingCaret final {
public:
    [[nodiscard]] bool isOn() const { return m_isOn; }
    /// On, and from now on as the desktop has it; `repaint` is called whenever it changes.
    void restart(Scheduler &scheduler, std::function<void()> repaint)
    {
        m_isOn = true;
        const int period = QGuiApplication::styleHints()->cursorFlashTime();
        if (period < 2) {
            m_timer.cancel();
            return;
        }
        const std::chrono::milliseconds half(period / 2);
        m_timer = scheduler.every(half, std::chrono::milliseconds(20), [this, repaint = std::move(repaint)] {
            m_isOn = !m_isOn;
            repaint();
        });
    }
    void rest()
    {
        m_isOn = true;
        m_timer.cancel();
    }

private:
    bool m_isOn = true;
    RepeatingTimer m_timer;
};
