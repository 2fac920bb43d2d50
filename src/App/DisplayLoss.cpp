// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/DisplayLoss.h"

#include <QCoreApplication>
#include <QSemaphore>
#include <QThread>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// What the toolkit's platforms say before they end the program; that of Wayland then leaves out what exit() does.
constexpr std::array lastWords = {"The X11 connection broke"_L1, "The Wayland connection broke"_L1,
                                  "The Wayland connection experienced a fatal error"_L1};

constexpr int mostMilliseconds = 2000;

std::function<void()> pendingAction;
QtMessageHandler otherHandler = nullptr;

void act()
{
    if (const auto action = std::exchange(pendingAction, {})) {
        action();
    }
}

void listen(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    otherHandler(type, context, message);
    const bool isLast = std::ranges::any_of(lastWords, [&message](QLatin1StringView words) { return message.startsWith(words); });
    QCoreApplication *const application = QCoreApplication::instance();
    if (!isLast || !application) {
        return;
    }
    if (QThread::currentThread() == application->thread()) {
        act();
        return;
    }
    // The one that reads from the display ends the program as soon as this returns. The main thread may have stopped already.
    const auto done = std::make_shared<QSemaphore>();
    const auto actThere = [done] {
        act();
        done->release();
    };
    QMetaObject::invokeMethod(application, actThere, Qt::QueuedConnection);
    std::ignore = done->tryAcquire(1, mostMilliseconds);
}

} // namespace

DisplayLoss::DisplayLoss(std::function<void()> action)
{
    pendingAction = std::move(action);
    otherHandler = qInstallMessageHandler(listen);
    [[maybe_unused]] static const int registered = std::atexit(act);
}

DisplayLoss::~DisplayLoss()
{
    pendingAction = {};
    qInstallMessageHandler(otherHandler);
}
