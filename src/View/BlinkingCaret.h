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
    /// After so long without a key it stays on: nobody looks for it, and the machine may sleep.
    static constexpr std::chrono::seconds patience{10};

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
        m_changesLeft = patience / half;
        m_timer = scheduler.every(half, std::chrono::milliseconds(20), [this, repaint = std::move(repaint)] {
            m_isOn = !m_isOn;
            --m_changesLeft;
            repaint();
            if (m_isOn && m_changesLeft <= 0) {
                m_timer.cancel();
            }
        });
    }
    void rest()
    {
        m_isOn = true;
        m_timer.cancel();
    }

private:
    bool m_isOn = true;
    std::chrono::milliseconds::rep m_changesLeft = 0;
    RepeatingTimer m_timer;
};
