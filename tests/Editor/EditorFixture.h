// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Pasteboard.h"
#include "Base/Scheduler.h"
#include "Editor/EditorTextView.h"
#include "View/ViewFixture.h"

#include <QTest>

/// An editor's text view with everything around it injected, shown offscreen and focused.
class EditorFixture {
public:
    explicit EditorFixture(const QString &marked, Indentation indentation = {})
    {
        const MarkedText content(marked);
        {
            const UndoManager::Pause pause(undo);
            storage.apply({{}, content.text});
        }
        view.resize(500, 300);
        view.show();
        view.setFocus();
        (void)QTest::qWaitForWindowActive(&view);
        view.setIndentation(indentation);
        view.setSelection(content.selection);
    }

    [[nodiscard]] QString marked() { return MarkedText::marked(storage.string(), view.selection()); }

    TextStorage storage;
    ManualScheduler scheduler;
    UndoManager undo{storage, [this] { return scheduler.now(); }};
    MemoryPasteboard pasteboard;
    int beeps = 0;
    EditorTextView view{storage, undo, {scheduler, pasteboard, [this] { ++beeps; }}, testFont()};
};
