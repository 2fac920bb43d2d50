// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/FilePanel.h"

#include "Base/FilePath.h"
#include "Base/Translation.h"
#include "Widgets/AlertPresenter.h"
#include "Widgets/SymbolIcon.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>
#include <QTreeView>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Logical pixels.
constexpr QSize preferredSize(820, 520);

struct ToolSymbol {
    QLatin1StringView button;
    QLatin1StringView symbol;
};

constexpr std::array toolSymbols = {
    ToolSymbol{"backButton"_L1, "chevron.left"_L1},
    ToolSymbol{"forwardButton"_L1, "chevron.right"_L1},
    ToolSymbol{"toParentButton"_L1, "chevron.up"_L1},
    ToolSymbol{"newFolderButton"_L1, "folder.badge.plus"_L1},
};

} // namespace

FilePanel::FilePanel(AlertPresenter &presenter, const FileChooserPortalMaker &portal, QWidget *window, const QString &title,
                     AcceptMode mode)
    : QFileDialog(window, title), m_presenter(presenter)
{
    setAcceptMode(mode);
    // There is none while the desktop's dialog stands in.
    m_isOwn = findChild<QLineEdit *>(u"fileNameEdit"_s) != nullptr;
    if (m_isOwn) {
        m_portal = portal ? portal() : nullptr;
        setOption(DontConfirmOverwrite);
        decorate();
    }
}

FilePanel::~FilePanel() = default;

void FilePanel::setStartFolder(const QString &folder)
{
    if (!folder.isEmpty() && QDir(folder).exists()) {
        m_question.folder = folder;
        setDirectory(folder);
    }
}

void FilePanel::setSuggestedName(const QString &name)
{
    m_question.name = name;
    selectFile(name);
}

void FilePanel::setPrompt(const QString &prompt)
{
    if (!prompt.isEmpty()) {
        m_question.acceptLabel = prompt;
        setLabelText(QFileDialog::Accept, prompt);
    }
}

QStringList FilePanel::chosenPaths() const
{
    QStringList paths = m_chosen;
    if (paths.isEmpty()) {
        std::ranges::transform(selectedUrls(), std::back_inserter(paths), localPath);
    }
    return paths;
}

void FilePanel::setVisible(bool isVisible)
{
    if (isVisible && m_portal && !testAttribute(Qt::WA_DontShowOnScreen)) {
        setAttribute(Qt::WA_DontShowOnScreen);
        askPortal();
    }
    QFileDialog::setVisible(isVisible);
}

void FilePanel::askPortal()
{
    using enum FileChooserPortal::Choice;
    // Without one of its own it is called by what it does.
    m_question.title = windowTitle();
    const FileMode mode = fileMode();
    m_question.choice = acceptMode() == AcceptSave ? save : mode == Directory ? openFolder : mode == ExistingFiles ? openFiles : openFile;
    const QWidget *window = parentWidget() ? parentWidget()->window() : nullptr;
    m_portal->ask(m_question, window ? window->windowHandle() : nullptr,
                  [this](FileChooserPortal::Outcome outcome, const QStringList &paths) {
                      const std::unique_ptr<FileChooserPortal> asked = std::move(m_portal);
                      if (outcome == FileChooserPortal::Outcome::unavailable) {
                          hide();
                          setAttribute(Qt::WA_DontShowOnScreen, false);
                          show();
                          return;
                      }
                      m_chosen = paths;
                      done(outcome == FileChooserPortal::Outcome::chosen ? Accepted : Rejected);
                  });
}

void FilePanel::decorate()
{
    const QScreen *shown = screen();
    resize(preferredSize.boundedTo(shown ? shown->availableSize() * 9 / 10 : preferredSize));
    if (auto *files = findChild<QTreeView *>(u"treeView"_s)) {
        QHeaderView *header = files->header();
        header->setStretchLastSection(false);
        for (int column = 0; column < header->count(); ++column) {
            header->setSectionResizeMode(column, column == 0 ? QHeaderView::Stretch : QHeaderView::ResizeToContents);
        }
    }
    // What screen readers call the pop-ups.
    for (const auto &[label, popUp] : {std::pair("lookInLabel"_L1, "lookInCombo"_L1), std::pair("fileTypeLabel"_L1, "fileTypeCombo"_L1)}) {
        if (auto *title = findChild<QLabel *>(label)) {
            title->setBuddy(findChild<QComboBox *>(popUp));
        }
    }
    // The toolkit's own pictures are for desktops that have none, and look it.
    if (QIcon::hasThemeIcon(u"go-previous"_s)) {
        return;
    }
    for (QPushButton *button : findChildren<QPushButton *>()) {
        button->setIcon({});
    }
    for (const ToolSymbol &row : toolSymbols) {
        if (auto *button = findChild<QToolButton *>(row.button)) {
            button->setIcon(symbolIcon(row.symbol));
        }
    }
}

void FilePanel::accept()
{
    const QFileInfo chosen(selectedFiles().value(0));
    // A folder is opened.
    if (m_isOwn && acceptMode() == AcceptSave && chosen.exists() && !chosen.isDir()) {
        askToReplace(chosen.fileName());
    } else {
        QFileDialog::accept();
    }
}

void FilePanel::askToReplace(const QString &name)
{
    const Alert alert{.messageText = formatted(localized(u"“%@” already exists. Do you want to replace it?"), name),
                      .informativeText = localized(u"What the file holds now is overwritten."),
                      .buttons = {{localized(u"Replace"), AlertButtonRole::destructive}, {localized(u"Cancel"), AlertButtonRole::cancel}}};
    m_presenter.present(alert, this, [this](const AlertReply &reply) {
        if (reply.button == AlertReply::firstButton) {
            QFileDialog::accept();
        }
    });
}
