// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Desktop/FileChooserPortal.h"

#include <QFileDialog>

#include <memory>

class AlertPresenter;

/// Makes what asks the desktop's portal; null where there is none to ask.
using FileChooserPortalMaker = std::function<std::unique_ptr<FileChooserPortal>()>;

/// Asks for files. Where the toolkit has a dialog of the desktop's, that is shown, else the one of the desktop's portal; while that is open
/// this blocks its window unseen. Where there is neither it is the toolkit's own, made like the rest of the program: wide enough for its
/// columns, with the program's symbols, and with a question that says what its buttons do before a file is replaced.
class FilePanel final : public QFileDialog {
    Q_OBJECT

public:
    FilePanel(AlertPresenter &presenter, const FileChooserPortalMaker &portal, QWidget *window, const QString &title, AcceptMode mode);
    ~FilePanel() override;

    /// The portal takes its own question; these are for all.
    void setStartFolder(const QString &folder);
    void setSuggestedName(const QString &name);
    void setPrompt(const QString &prompt);

    /// Absolute paths, when it was accepted.
    [[nodiscard]] QStringList chosenPaths() const;

    void accept() override;
    void setVisible(bool isVisible) override;

private:
    void decorate();
    void askToReplace(const QString &name);
    void askPortal();

    AlertPresenter &m_presenter;
    std::unique_ptr<FileChooserPortal> m_portal;
    FileChooserPortal::Question m_question;
    QStringList m_chosen;
    bool m_isOwn = false;
};
