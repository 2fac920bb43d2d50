// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Editor/EditorViewController.h"

class ClosedTabs;
class DefaultsStore;
class Desktop;
class RecentDocuments;
class SessionKeeper;
class SessionStore;

/// What windows and what is in them use; made by Program, and by every test for itself. Must outlive them.
struct WorkspaceServices : EditorServices {
    DefaultsStore &defaults;
    Desktop &desktop;
    SessionStore &session;
    SessionKeeper &keeper;
    RecentDocuments &recent;
    ClosedTabs &closedTabs;
};
