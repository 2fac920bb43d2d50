// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/ReplacementSearch.h"

#include "Text/TextStorage.h"

#include <QPointer>

void ReplacementSearch::start(TextStorage &storage, Workers &workers, Search search, Arrival arrive)
{
    const auto look = [search, text = storage.text()](const std::stop_token &stop) { return search(text, stop); };
    m_task = BackgroundTask::start(
        workers, look, [this, &workers, search, arrive, alive = QPointer(&storage), revision = storage.revision()](const Found &found) {
            if (alive && alive->revision() == revision) {
                arrive(found);
            } else if (alive) {
                start(*alive, workers, search, arrive);
            }
        });
}
