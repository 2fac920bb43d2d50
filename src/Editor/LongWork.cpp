// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/LongWork.h"

#include "View/TextView.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include <utility>

using namespace std::chrono_literals;

namespace {

/// Before anything is said of what goes on.
constexpr Scheduler::Milliseconds timeout = 400ms;
constexpr Scheduler::Milliseconds untilDone = 24h;

} // namespace

LongWork::LongWork(CommandServices services) : m_services(std::move(services)) {}

LongWork::~LongWork() = default;

void LongWork::begin(TextView &view, const QString &message, Keys keys, std::function<void()> stop)
{
    const bool isShown = end();
    m_view = &view;
    m_taken = keys;
    m_stop = std::move(stop);
    m_isUnderWay = true;
    m_isShown = isShown;
    view.installEventFilter(this);
    m_showSoon = m_services.scheduler.after(timeout, [this, message] {
        m_isShown = true;
        m_services.showMessage(message, untilDone);
    });
}

bool LongWork::end()
{
    m_showSoon.cancel();
    if (m_view) {
        m_view->removeEventFilter(this);
    }
    m_isUnderWay = false;
    return std::exchange(m_isShown, false);
}

void LongWork::handOver()
{
    const QPointer self(this);
    while (self && m_view && !m_isUnderWay && !m_keys.empty()) {
        const auto key = std::move(m_keys.front());
        m_keys.pop_front();
        QCoreApplication::sendEvent(m_view, key.get());
    }
}

bool LongWork::isStop(const QKeyEvent &event) const
{
    const bool isControl = m_taken == Keys::wait && event.modifiers() == Qt::ControlModifier;
    return event.key() == Qt::Key_Escape || (isControl && (event.key() == Qt::Key_BracketLeft || event.key() == Qt::Key_C));
}

void LongWork::dropKeys()
{
    m_keys.clear();
}

bool LongWork::eventFilter(QObject *object, QEvent *event)
{
    const bool isPress = event->type() == QEvent::KeyPress;
    if (!m_isUnderWay || (!isPress && event->type() != QEvent::ShortcutOverride)) {
        return QObject::eventFilter(object, event);
    }
    const auto &key = static_cast<const QKeyEvent &>(*event);
    if (isStop(key)) {
        event->accept();
        if (isPress) {
            dropKeys();
            const auto stop = m_stop;
            stop();
        }
        return true;
    }
    if (isPress && m_taken == Keys::wait) {
        event->accept();
        m_keys.emplace_back(key.clone());
        return true;
    }
    return QObject::eventFilter(object, event);
}
