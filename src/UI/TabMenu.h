// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UI/TabPlace.h"

#include <QPoint>

class QWidget;

/// Pops up, for one tab, the commands of Actions::Menus::tab, which `responder` takes or hands on. The menu belongs to `parent` and goes
/// when it closes.
void showTabMenu(QWidget &parent, Responder &responder, const TabPlace &tab, QPoint globalPosition);
