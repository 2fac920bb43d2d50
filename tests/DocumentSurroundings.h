// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Scheduler.h"
#include "Files/WatchedPath.h"
#include "HeldWorkers.h"
#include "Model/DocumentStore.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"

#include <QCoreApplication>

/// All that documents use: time stands until it is advanced, workers do their work at once unless they are held, settings are in memory.
struct DocumentSurroundings {
    explicit DocumentSurroundings(FileCalls &calls = FileCalls::system(), std::function<void(const QUuid &)> discardDraft = {})
        : services{.scheduler = scheduler,
                   .notifications = notifications,
                   .preferences = preferences,
                   .workers = workers,
                   .watchers = watchers,
                   .discardDraft = std::move(discardDraft),
                   .files = calls}
    {}
    Q_DISABLE_COPY_MOVE(DocumentSurroundings)

    /// Lets time pass and what workers and the kernel said arrive.
    void settle(std::chrono::milliseconds time = std::chrono::seconds(1))
    {
        for (const auto end = scheduler.now() + time; scheduler.now() < end;) {
            QCoreApplication::processEvents();
            scheduler.advance(std::chrono::milliseconds(50));
            QCoreApplication::processEvents();
        }
    }

    ManualScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults{QString(), scheduler};
    Preferences preferences{defaults, notifications};
    HeldWorkers workers{HeldWorkers::Mode::atOnce};
    InlineWorkers watchingWorkers;
    FileWatcherQueue watchers{scheduler, WatchCalls::system(), watchingWorkers};
    DocumentServices services;
};
