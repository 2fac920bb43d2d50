// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/FileFollower.h"

#include "Base/FilePath.h"
#include "Model/DocumentForm.h"
#include "Model/EncodingMemory.h"
#include "Model/SavedText.h"

#include <algorithm>

void FileFollower::follow(const QString &path, const std::optional<FileStamp> &known)
{
    forget();
    m_path = path;
    m_watcher.reset();
    if (!path.isEmpty()) {
        m_watcher = std::make_unique<FileWatcher>(m_services.watchers, path, known, [this](FileWatcher::Event event) { handle(event); });
    }
}

std::optional<Rope> FileFollower::savedText() const
{
    return m_path.isEmpty() || m_isNew ? std::nullopt : m_services.saved.text();
}

void FileFollower::agreeOn(const std::optional<FileState> &state, const std::shared_ptr<const ReadPosition> &position)
{
    m_state = state;
    m_shown.reset();
    m_position = position;
    m_positionRevision = m_services.storage.revision();
    if (position && position->isAssumed) {
        checkGrowthSoon();
    } else {
        stopChecking();
    }
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
            const bool neverWas = m_isNew && !m_state && !m_shown;
            if (!exists && !neverWas) {
                m_reading.cancel(); // of a file that was there
                m_services.deleted();
            }
        });
}

void FileFollower::read()
{
    DocumentFile::Basis basis;
    if (m_positionRevision == m_services.storage.revision()) {
        basis = {.position = m_position, .hash = m_services.saved.hash(), .form = m_services.form.value()};
    }
    basis.remembered = m_services.encodings ? m_services.encodings->encodingOf(m_path) : std::nullopt;
    m_reading = BackgroundTask::start(
        m_services.workers,
        [path = m_path, basis, current = m_services.storage.snapshot(), &files = m_services.files](const std::stop_token &stop) {
            return DocumentFile::readAgain(path, basis, current, files, stop);
        },
        [this](const DocumentFile::ReadResult &reading) {
            if (reading) {
                m_services.changed(*reading);
            }
        });
}

void FileFollower::checkGrowthSoon()
{
    const Scheduler::Milliseconds now = m_services.scheduler.now();
    m_uncheckedSince = m_uncheckedSince.value_or(now);
    const auto delay = std::clamp(*m_uncheckedSince + longestUnchecked - now, Scheduler::Milliseconds(0), growthCheckDelay);
    m_checkSoon = m_services.scheduler.after(delay, [this] { checkGrowth(); });
}

void FileFollower::checkGrowth()
{
    if (m_checking.isPending()) {
        return; // on a slow disk; what came since then follows
    }
    m_uncheckedSince.reset();
    m_checking = BackgroundTask::start(
        m_services.workers,
        [path = m_path, position = m_position, &files = m_services.files](const std::stop_token &stop) {
            return GrowingFile::check(path, *position, files, stop);
        },
        [this, position = m_position](const GrowingFile::Check &check) { takeCheck(position, check); });
}

void FileFollower::takeCheck(const std::shared_ptr<const ReadPosition> &position, const GrowingFile::Check &check)
{
    if (check.finding == GrowingFile::Finding::different) {
        m_position.reset();
        stopChecking();
        read();
    } else if (m_position != position) {
        checkGrowthSoon();
    } else if (check.state) {
        m_state = check.state;
    }
}

void FileFollower::stopChecking()
{
    m_uncheckedSince.reset();
    m_checkSoon.cancel();
    m_checking.cancel();
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
    stopChecking(); // it would see a half of what is written in place
    if (m_watcher) {
        m_watcher->beginOwnWrite();
    }
}

void FileFollower::endOwnWrite(const std::optional<FileStamp> &written)
{
    if (m_watcher) {
        m_watcher->endOwnWrite(written);
    }
    if (!written && m_position && m_position->isAssumed) {
        checkGrowthSoon();
    }
    if (std::exchange(m_asksAgain, false) && !written && !m_path.isEmpty()) {
        look();
        read();
    }
}
