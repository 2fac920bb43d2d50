// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Pasteboard.h"
#include "Base/Workers.h"
#include "Desktop/Desktop.h"
#include "Desktop/ForeignKeyboard.h"
#include "Files/WatchedPath.h"
#include "Find/FindState.h"
#include "GuardedFiles.h"
#include "HeldWorkers.h"
#include "Model/DocumentStore.h"
#include "Model/EncodingMemory.h"
#include "Model/FileMemory.h"
#include "Model/RecentDocuments.h"
#include "Session/ClosedTabs.h"
#include "Session/SessionKeeper.h"
#include "Session/SessionStore.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
#include "TestFolder.h"
#include "UI/WorkspaceServices.h"
#include "Vim/VimConfiguration.h"
#include "Vim/VimHistory.h"
#include "Vim/VimRegisters.h"
#include "Widgets/AlertPresenter.h"

/// All that editors and windows use, with nothing of this machine in it but a folder that goes with it: time stands until it is advanced,
/// questions are answered by the test, settings and clipboard are kept in memory.
struct Surroundings : TestFolder {
    Surroundings() : Surroundings(QString()) {}
    /// With the session of another one that is gone, which used the same folder for its data.
    explicit Surroundings(const QString &data) : session({data.isEmpty() ? path(QStringLiteral("data")) : data, {}}, preferences) {}
    Q_DISABLE_COPY_MOVE(Surroundings)

    ManualScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults{QString(), scheduler};
    Preferences preferences{defaults, notifications};
    MemoryPasteboard pasteboard;
    ScriptedAlertPresenter presenter;
    HeldWorkers workers{HeldWorkers::Mode::atOnce};
    FileWatcherQueue watchers{scheduler, WatchCalls::system(), workers};
    GuardedFiles files;
    FakeAdministrator administrator;
    FileMemory fileMemory{QString()};
    EncodingMemory encodings{fileMemory};
    SessionStore session;
    std::optional<Appearance> desktopAppearance;
    int appearanceQueries = 0;
    DocumentStore documents{{.scheduler = scheduler,
                             .notifications = notifications,
                             .preferences = preferences,
                             .workers = workers,
                             .watchers = watchers,
                             .discardDraft = [this](const QUuid &id) { session.discardDraft(id); },
                             .files = files,
                             .bringBack = [this](const QString &path) { keeper.bringBack(path); },
                             .encodings = &encodings,
                             .administrator = &administrator},
                            [this] {
                                ++appearanceQueries;
                                return desktopAppearance;
                            }};
    SessionKeeper keeper{scheduler, notifications, preferences, documents, session};
    ClosedTabs closedTabs{notifications, preferences, documents, session};
    FindState find;
    VimRegisters registers{pasteboard, preferences};
    VimHistory vimHistory;
    VimConfiguration vimConfiguration{preferences};
    ForeignKeyboard keyboard;
    RecordingDesktop desktop;
    RecentDocuments recent{QString(), workers};
    WorkspaceServices services{{scheduler, notifications, preferences, pasteboard, presenter, documents, workers, find, registers, keyboard,
                                nullptr, nullptr, nullptr, &vimHistory, &vimConfiguration},
                               defaults,
                               desktop,
                               session,
                               keeper,
                               recent,
                               closedTabs};
};
