// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/KeptFile.h"
#include "Base/NotificationCenter.h"
#include "Base/Scheduler.h"

class Preferences;
class VimFileMarks;
class VimRegisters;

/// What exact modal editing has at the next start too: the registers, and the marks of A–Z that are in files, but nothing of private files.
/// While exact modal editing is off, nothing is read and nothing is written. Main thread only.
///
/// The file is a JSON object with two arrays: "registers", of objects with "name", "text", "type" ("characters", "lines" or "block") and of
/// a block "width" in cells; and "marks", of objects with "name", "path", "line" (from 1) and "column" (UTF-16 units, from 0). It is never
/// trusted: what is not of that kind is left out. It is written some seconds after a change, and by the destructor when something was
/// changed: of several programs the last that has something to say wins.
class VimSavedState final {
public:
    struct Services {
        Scheduler &scheduler;
        Workers &workers;
        NotificationCenter &notifications;
        const Preferences &preferences;
        VimRegisters &registers;
        VimFileMarks &marks;
    };

    /// UTF-16 units of a register that is kept for the next run.
    static constexpr qsizetype largestRegister = 10'000;
    /// Bytes of a file that is still read.
    static constexpr qint64 largestFile = 4 * 1024 * 1024;
    static constexpr Scheduler::Milliseconds delay{3000};

    /// `file` is absolute. All of the services must outlive this.
    VimSavedState(const QString &file, const Services &services);
    Q_DISABLE_COPY_MOVE(VimSavedState)
    ~VimSavedState();

private:
    [[nodiscard]] bool isKept() const;
    /// Once, when exact modal editing is on; what the run has already stays.
    void load();
    void noteChange();
    void write();
    [[nodiscard]] QByteArray toJson() const;

    Services m_services;
    KeptFile m_file;
    QByteArray m_written;
    bool m_isLoaded = false;
    /// By this run, whatever the mode was.
    bool m_hasChanged = false;
    DelayedTask m_pending;
    NotificationCenter::Token m_preferences;
};
