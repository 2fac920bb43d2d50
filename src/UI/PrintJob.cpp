// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/PrintJob.h"

#include "Base/Translation.h"

#include <QProgressDialog>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr Scheduler::Milliseconds interval{100};
constexpr int allDone = 1000;
/// Logical pixels.
constexpr int leastWidth = 380;

} // namespace

PrintJob::PrintJob(Scheduler &scheduler, Workers &workers, const QString &title, QWidget &window, Work work, Done done, QObject *parent)
    : QObject(parent), m_scheduler(scheduler), m_title(title), m_window(&window)
{
    m_work = BackgroundTask::start(
        workers, [work = std::move(work), progress = m_progress](const std::stop_token &stop) { return work(stop, *progress); },
        [this, done = std::move(done)](const Result<void> &result) {
            m_showing.cancel();
            m_timer.cancel();
            m_dialog.reset();
            deleteLater();
            done(result);
        });
    m_showing = scheduler.after(delay, [this] { show(); });
}

PrintJob::~PrintJob() = default;

void PrintJob::show()
{
    if (m_dialog || !m_window || !m_work.isPending()) {
        return;
    }
    m_showing.cancel();
    m_dialog = std::make_unique<QProgressDialog>(m_title, localized(u"Cancel"), 0, allDone, m_window);
    m_dialog->setObjectName(u"printProgress"_s);
    m_dialog->setWindowTitle(m_window->windowTitle().remove(u"[*]"_s));
    m_dialog->setMinimumDuration(std::numeric_limits<int>::max());
    m_dialog->setAutoClose(false);
    m_dialog->setAutoReset(false);
    m_dialog->setMinimumWidth(leastWidth);
    // What is being typed goes on into the text.
    m_dialog->setAttribute(Qt::WA_ShowWithoutActivating);
    connect(m_dialog.get(), &QProgressDialog::canceled, this, &PrintJob::cancel);
    m_dialog->setValue(m_progress->done());
    m_dialog->show();
    m_timer = m_scheduler.every(interval, interval / 2, [this] { m_dialog->setValue(m_progress->done()); });
}

void PrintJob::cancel()
{
    m_work.cancel();
    m_timer.cancel();
    // One of its buttons is what led here, and may be clicked twice.
    QProgressDialog *dialog = m_dialog.release();
    dialog->disconnect(this);
    dialog->hide();
    dialog->deleteLater();
    deleteLater();
}
