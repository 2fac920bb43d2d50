// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineNumber.h"
#include "UI/WorkspaceServices.h"

#include <QUuid>

class TextDocument;
class WorkspaceViewController;

/// Where commands that were typed lead in a window: to files, tabs and places that they name, which are what their sender represents. A
/// link of the window's responder chain. Main thread only.
class TypedDestinations final : public QObject, public Responder {
    Q_OBJECT

public:
    /// The workspace has it and outlives it.
    TypedDestinations(const WorkspaceServices &services, WorkspaceViewController &workspace);

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

private:
    void editFile(const ActionSender &sender);
    void showTab(const ActionSender &sender);
    void listTabs();
    void noteCurrent();
    void showOther();
    void goToPlace(const ActionSender &sender);
    /// 0 for the first character of the line that is no blank.
    void goToColumn(TextDocument &document, LineNumber line, qsizetype column);
    void closeWindow();

    WorkspaceServices m_services;
    WorkspaceViewController &m_workspace;
    /// A text that was in front.
    struct Visited {
        QUuid id;
        /// Empty while it has no file.
        QString path;
    };
    Visited m_current;
    /// The one before.
    Visited m_other;
};
