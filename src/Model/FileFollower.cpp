// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/FileFollower.h"

#include "Base/FilePath.h"

void FileFollower::follow(const QString &path, const std::optional<FileStamp> &known)
{
    forget();
    m_path = path;
    m_watcher.reset();
    if (!path.isEmpty()) {
        m_watcher = std::make_unique<FileWatcher>(m_services.watchers, path, known, [this](FileWatcher::Event event) { handle(event); });
    }
}

void FileFollower::agreeOn(const std::optional<FileState> &state)
{
    m_state = state;
    m_shown.reset();
}

void FileFollower::handle(FileWatcher::Event event)
{
    if (event == FileWatcher::Event::deleted) {
        m_lookSoon = m_services.scheduler.after(deletionCheckDelay, [this] { look(); });
    } else {
        forget(); // it is there, whatever it was before
        read();
    }
}

void FileFollower::look()
{
    // On a worker: asking a share whose server is gone may take minutes.
    m_looking = BackgroundTask::start(
        m_services.workers, [path = m_path](const std::stop_token &) { return isThere(path); },
        [this](bool exists) {
            if (!exists) {
                m_reading.cancel(); // of a file that was there
                m_services.deleted();
            }
        });
}

void FileFollower::read()
{
    m_reading = BackgroundTask::start(
        m_services.workers,
        [path = m_path, current = m_services.storage.snapshot(), &files = m_services.files](const std::stop_token &stop) {
            return DocumentFile::read(path, std::nullopt, current, files, stop);
        },
        [this](const DocumentFile::ReadResult &reading) {
            if (reading && reading->hash) {
                m_services.changed(*reading);
            }
        });
}

void FileFollower::forget()
{
    m_lookSoon.cancel();
    m_looking.cancel();
    m_reading.cancel();
}

void FileFollower::beginOwnWrite()
{
    m_asksAgain = m_asksAgain || m_lookSoon.isPending() || m_looking.isPending() || m_reading.isPending();
    forget();
    if (m_watcher) {
        m_watcher->beginOwnWrite();
    }
}

void FileFollower::endOwnWrite(const std::optional<FileStamp> &written)
{
    if (m_watcher) {
        m_watcher->endOwnWrite(written);
    }
    if (std::exchange(m_asksAgain, false) && !written && !m_path.isEmpty()) {
        look();
        read();
    }
}
