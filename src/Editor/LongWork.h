// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "View/CommandServices.h"

#include <QObject>
#include <QPointer>

#include <deque>
#include <functional>
#include <memory>

class QKeyEvent;
class TextView;

/// Work for a text view that may take long, as its user meets it: after a while something is said of it, Escape in the view stops it, and
/// keys that are typed meanwhile wait for it, where it wants that. Main thread only; the services must outlive it, the view need not.
class LongWork final : public QObject {
    Q_OBJECT

public:
    enum class Keys {
        /// They wait; and Control-C stops it too.
        wait,
        /// The view can be used.
        pass,
    };

    explicit LongWork(CommandServices services);
    ~LongWork() override;

    /// `message` is what is said of it. `stop` is called for the key that stops it. Work that is under way is over.
    void begin(TextView &view, const QString &message, Keys keys, std::function<void()> stop);
    /// Whatever came of it. True when something was said of it, and still is. Harmless when nothing is under way.
    bool end();
    [[nodiscard]] bool isUnderWay() const { return m_isUnderWay; }
    /// Has keys handled that waited, up to one that begins work again. One of them may be the end of this: the last thing to be done.
    void handOver();
    void dropKeys();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    [[nodiscard]] bool isStop(const QKeyEvent &event) const;

    CommandServices m_services;
    QPointer<TextView> m_view;
    std::function<void()> m_stop;
    Keys m_taken = Keys::pass;
    bool m_isUnderWay = false;
    bool m_isShown = false;
    DelayedTask m_showSoon;
    std::deque<std::unique_ptr<QKeyEvent>> m_keys;
};
