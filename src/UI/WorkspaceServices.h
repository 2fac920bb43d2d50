// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Editor/EditorViewController.h"

class DefaultsStore;
class Desktop;

/// What windows and what is in them use; made in `main`, and by every test for itself. Must outlive them.
struct WorkspaceServices {
    Scheduler &scheduler;
    NotificationCenter &notifications;
    DefaultsStore &defaults;
    Preferences &preferences;
    Pasteboard &pasteboard;
    AlertPresenter &presenter;
    DocumentStore &documents;
    Workers &workers;
    FindState &find;
    Desktop &desktop;
    /// Null where no spelling is checked.
    SpellChecker *spellChecker = nullptr;
    SpellingPanel *spellingPanel = nullptr;

    [[nodiscard]] EditorServices editors() const
    {
        return {scheduler, notifications, preferences, pasteboard, presenter, documents, workers, find, spellChecker, spellingPanel};
    }
};
