// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Base/Result.h"
#include "Base/Scheduler.h"
#include "Print/PageLayout.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class QProgressDialog;
class QWidget;

/// Something that is printed or exported by a worker. While that takes its time a window of its own shows how far it has come and lets the
/// user cancel it; everything else goes on. It goes by itself when it is over. Destroying it cancels. Main thread only.
class PrintJob final : public QObject {
    Q_OBJECT

public:
    /// What is over by then is never shown.
    static constexpr Scheduler::Milliseconds delay{500};

    using Work = std::function<Result<void>(const std::stop_token &stop, PrintProgress &progress)>;
    using Done = std::function<void(const Result<void> &result)>;

    /// `title` says what is done. `done` is not called when it is cancelled. All but `parent` must outlive it.
    PrintJob(Scheduler &scheduler, Workers &workers, const QString &title, QWidget &window, Work work, Done done, QObject *parent);
    ~PrintJob() override;

    /// From now on its window is seen.
    void show();

private:
    void cancel();

    Scheduler &m_scheduler;
    const QString m_title;
    const QPointer<QWidget> m_window;
    std::shared_ptr<PrintProgress> m_progress = std::make_shared<PrintProgress>();
    std::unique_ptr<QProgressDialog> m_dialog;
    BackgroundTask m_work;
    DelayedTask m_showing;
    RepeatingTimer m_timer;
};
