// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/ChangeMarks.h"

#include "Base/ColorContrast.h"
#include "Highlighting/Theme.h"
#include "Model/TextDocument.h"
#include "Settings/Preferences.h"

#include <algorithm>

namespace {

/// Of marks, which are too small to be seen with less.
constexpr double leastContrast = 3;

struct MarkColors {
    LineChange::Kind kind;
    quint32 onLight;
    quint32 onDark;
};
constexpr auto markColors = std::to_array<MarkColors>({
    {LineChange::Kind::added, 0xFF2DA44E, 0xFF57AB5A},
    {LineChange::Kind::modified, 0xFF1F7FE0, 0xFF539BF5},
    {LineChange::Kind::deleted, 0xFFCF222E, 0xFFF47067},
});

} // namespace

quint32 changeColor(const Theme &theme, LineChange::Kind kind)
{
    const MarkColors &colors = *std::ranges::find(markColors, kind, &MarkColors::kind);
    return legible(theme.isDark ? colors.onDark : colors.onLight, theme.foreground, std::max(leastContrast, limitsOf(theme.contrast).mark),
                   {theme.gutterBackground});
}

ChangeMarks::ChangeMarks(TextDocument &document, const Services &services, QObject *parent)
    : QObject(parent), m_document(document), m_services(services)
{
    connect(&document.storage(), &TextStorage::changed, this, &ChangeMarks::noteEdit);
    m_observers.push_back(services.notifications.observe(TextDocument::didChangeMetadata, &document, [this] { noteDocument(); }));
    m_observers.push_back(services.notifications.observe(TextDocument::didReloadFromDisk, &document, [this] { noteDocument(); }));
    m_observers.push_back(services.notifications.observe(Preferences::didChange, nullptr, [this] { noteDocument(); }));
    noteDocument();
}

void ChangeMarks::noteDocument()
{
    compareSoon();
    refreshCommit();
}

void ChangeMarks::refreshCommit()
{
    const QString path = m_document.path();
    if (path.isEmpty() || !areWanted() || !m_services.preferences.value(Settings::compareWithCommit)) {
        m_lookSoon.cancel();
        m_looking.cancel();
        takeCommit(std::nullopt);
        return;
    }
    // Not while a window is about to show its first picture: the library takes time and memory of its own.
    m_lookSoon = m_services.scheduler.after(restTime, [this, path] { lookForCommit(path); });
}

void ChangeMarks::lookForCommit(const QString &path)
{
    // One that hangs is not asked a second time.
    if (m_looking.isPending() && m_lookedFor == path) {
        m_looksAgain = true;
        return;
    }
    if (m_lookedFor != path) {
        takeCommit(std::nullopt); // that was of another file
    }
    m_lookedFor = path;
    m_looksAgain = false;
    m_looking = BackgroundTask::start(
        m_services.workers,
        [path, encoding = m_document.encoding(), known = m_commit](const std::stop_token &stop) {
            return GitBase::read(path, encoding, known, stop);
        },
        [this](std::optional<GitBase> found) {
            takeCommit(std::move(found));
            if (std::exchange(m_looksAgain, false)) {
                lookForCommit(m_lookedFor);
            }
        });
}

void ChangeMarks::takeCommit(std::optional<GitBase> found)
{
    const auto idOf = [](const std::optional<GitBase> &base) { return base ? base->id : QByteArray(); };
    const bool isOther = idOf(found) != idOf(m_commit) || (found && found->encoding != m_commit->encoding);
    m_commit = std::move(found);
    if (isOther) {
        compareSoon();
        emit changed();
    }
}

bool ChangeMarks::areWanted() const
{
    return m_services.preferences.value(Settings::markChanges) && !m_document.isGenerated() && !m_document.arrival().isPending();
}

void ChangeMarks::noteEdit(const TextChange &change)
{
    m_hasOthers |= LineChanges::map(m_changes, change.edits);
    compareSoon();
}

void ChangeMarks::compareSoon()
{
    m_isCurrent = false;
    m_comparing.cancel();
    const bool isLarge = m_document.storage().length() >= largeText;
    m_soon = m_services.scheduler.after(isLarge ? largeRestTime : restTime, [this] { compare(); });
}

std::optional<Rope> ChangeMarks::wantedBase() const
{
    if (!areWanted()) {
        return std::nullopt;
    }
    if (m_commit) {
        return m_commit->text;
    }
    return m_document.isDirty() || m_document.hasUnsavedText() ? m_document.file().savedText() : std::nullopt;
}

void ChangeMarks::compare()
{
    const auto base = wantedBase();
    if (!base) {
        take({}, {});
        return;
    }
    m_comparing = BackgroundTask::start(
        m_services.workers,
        [base = *base, text = m_document.storage().text()](const std::stop_token &stop) {
            const auto compared = LineDiff::compare(base, text, Whitespace::counts, {.stop = stop});
            return compared ? LineChanges::of(*compared) : std::vector<LineChange>();
        },
        // An edit meanwhile has cancelled it.
        [this, base = *base](std::vector<LineChange> changes) { take(base, std::move(changes)); });
}

void ChangeMarks::take(const Rope &base, std::vector<LineChange> changes)
{
    m_base = base;
    m_isCurrent = true;
    const bool isSame = m_changes == changes;
    m_changes = std::move(changes);
    if (std::exchange(m_hasOthers, false) || !isSame) {
        emit changed();
    }
}
