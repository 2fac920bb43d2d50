// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/MainWindow.h"

#include "App/MenuBar.h"
#include "Model/DocumentStore.h"
#include "Model/Preferences.h"
#include "Platform/AlertPresenter.h"
#include "Platform/DefaultsStore.h"
#include "Platform/Localization.h"
#include "Platform/Translation.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize startSize(1000, 680);
constexpr auto lastFolderKey = "io.panels.lastDirectory"_L1;

} // namespace

MainWindow::MainWindow(const AppServices &services) : m_services(services)
{
    resize(startSize);
    installMenus();
    m_languageObserver = m_services.notifications.observe(Localization::didChangeNotification, nullptr, [this] {
        installMenus();
        updateTitle();
    });
    setDocument(std::make_unique<TextDocument>(m_services.documents.services(), QString(), std::nullopt));
}

MainWindow::~MainWindow()
{
    closeDocument();
}

void MainWindow::closeDocument()
{
    // A new document may come to stand where the old one was in memory: nothing may still wait for that address.
    m_metadataObserver.reset();
    // The editor refers to the document's text.
    delete std::exchange(m_editor, nullptr);
    if (m_document) {
        m_services.documents.remove(*std::exchange(m_document, nullptr));
    }
}

template<bool (Preferences::*value)() const, void (Preferences::*setValue)(bool)>
void MainWindow::toggle()
{
    (m_services.preferences.*setValue)(!(m_services.preferences.*value)());
}

template<bool (Preferences::*value)() const>
ActionState MainWindow::stateOf() const
{
    return {.checkMark = (m_services.preferences.*value)() ? CheckMark::on : CheckMark::none};
}

const ActionRow *MainWindow::actionFor(Selector selector) const
{
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&MainWindow::openDocument>("openDocument:"),
        action<&MainWindow::saveDocument>("saveDocument:"),
        action<&MainWindow::saveDocumentAs>("saveDocumentAs:"),
        action<&MainWindow::revertDocument, &MainWindow::canRevert>("revertDocumentToSaved:"),
        action<&MainWindow::terminate>("terminate:"),
        action<&MainWindow::toggle<&Preferences::showLineNumbers, &Preferences::setShowLineNumbers>,
               &MainWindow::stateOf<&Preferences::showLineNumbers>>("toggleLineNumbers:"),
        action<&MainWindow::toggle<&Preferences::wrapLines, &Preferences::setWrapLines>, &MainWindow::stateOf<&Preferences::wrapLines>>(
            "toggleLineWrap:"),
        action<&MainWindow::toggle<&Preferences::showInvisibles, &Preferences::setShowInvisibles>,
               &MainWindow::stateOf<&Preferences::showInvisibles>>("toggleInvisibles:"),
        action<&MainWindow::toggle<&Preferences::highlightCurrentLine, &Preferences::setHighlightCurrentLine>,
               &MainWindow::stateOf<&Preferences::highlightCurrentLine>>("toggleCurrentLineHighlight:"),
        action<&MainWindow::increaseFontSize>("increaseFontSize:"),
        action<&MainWindow::decreaseFontSize>("decreaseFontSize:"),
        action<&MainWindow::resetFontSize>("resetFontSize:"),
    });
    return findAction(rows, selector);
}

void MainWindow::setDocument(std::unique_ptr<TextDocument> document)
{
    closeDocument();
    m_document = &m_services.documents.add(std::move(document));
    m_editor = new EditorViewController(m_services.editors(), *m_document, this);
    m_editor->setDelegate(this);
    m_metadataObserver = m_services.notifications.observe(TextDocument::didChangeMetadata, m_document, [this] { updateTitle(); });
    setCentralWidget(m_editor);
    m_editor->setFocus();
    updateTitle();
}

void MainWindow::editorDidDropFiles(EditorViewController & /*editor*/, const QStringList &paths)
{
    open(paths.first());
}

bool MainWindow::canRevert() const
{
    return !m_document->isUntitled();
}

void MainWindow::revertDocument()
{
    if (const auto reverted = m_document->revertToFileOnDisk(); !reverted) {
        presentError(reverted.error());
    }
}

void MainWindow::installMenus()
{
    installMenuBar(*this, m_services.presenter);
    installEncodingMenu();
}

void MainWindow::installEncodingMenu()
{
    QMenu *menu = menuBar()->addMenu(localized(u"Text Encoding"));
    auto *choices = new QActionGroup(menu);
    for (const TextEncoding encoding : TextFile::selectableEncodings) {
        QAction *item = menu->addAction(displayName(encoding));
        item->setCheckable(true);
        choices->addAction(item);
        connect(item, &QAction::triggered, this, [this, encoding] { chooseEncoding(encoding); });
        connect(menu, &QMenu::aboutToShow, item, [this, item, encoding] { item->setChecked(m_document->encoding() == encoding); });
    }
}

/// A text that is as in its file is read anew; any other keeps its characters and is saved in the encoding.
void MainWindow::chooseEncoding(TextEncoding encoding)
{
    if (m_document->isUntitled() || m_document->isDirty()) {
        m_document->setEncoding(encoding);
        return;
    }
    if (const auto read = m_document->reinterpret(encoding); !read) {
        presentError(read.error());
    }
}

void MainWindow::presentError(const TextFile::ReadError &error)
{
    m_services.presenter.present(Alert::forError(error.description(), error.recoverySuggestion().value_or(QString())), this, {});
}

void MainWindow::updateTitle()
{
    // Doubled, the mark's placeholder stands for itself.
    setWindowTitle(m_document->displayName().replace("[*]"_L1, "[*][*]"_L1) + u"[*]"_s);
    setWindowFilePath(m_document->path());
    setWindowModified(m_document->isDirty());
}

void MainWindow::show(const QString &path)
{
    const auto contents = TextFile::read(path);
    if (contents) {
        setDocument(std::make_unique<TextDocument>(m_services.documents.services(), path, *contents));
        return;
    }
    presentError(contents.error());
}

void MainWindow::open(const QString &path)
{
    askToSave([this, path](bool mayGoOn) {
        if (mayGoOn) {
            show(path);
        }
    });
}

void MainWindow::openDocument()
{
    m_services.presenter.present(OpenPanel{.choice = OpenPanel::Choice::file, .startFolder = panelFolder()}, this,
                                 [this](const QStringList &paths) {
                                     if (!paths.isEmpty()) {
                                         rememberPanelFolder(paths.first());
                                         open(paths.first());
                                     }
                                 });
}

void MainWindow::saveDocument()
{
    save([](bool) {});
}

void MainWindow::saveDocumentAs()
{
    saveAs([](bool) {});
}

void MainWindow::save(Completion completion)
{
    if (m_document->path().isEmpty()) {
        saveAs(std::move(completion));
    } else {
        write(m_document->path(), completion);
    }
}

void MainWindow::saveAs(Completion completion)
{
    const QString &path = m_document->path();
    const SavePanel panel{.startFolder = path.isEmpty() ? panelFolder() : QFileInfo(path).path(),
                          .suggestedName = m_document->displayName()};
    m_services.presenter.present(panel, this, [this, completion = std::move(completion)](const std::optional<QString> &chosen) {
        if (!chosen) {
            completion(false);
            return;
        }
        rememberPanelFolder(*chosen);
        write(*chosen, completion);
    });
}

void MainWindow::write(const QString &path, const Completion &completion)
{
    const Result<void> saved = m_document->save(path);
    updateTitle();
    if (!saved) {
        m_services.presenter.present(Alert::forError(saved.error().message), this, {});
    }
    completion(saved.has_value());
}

void MainWindow::askToSave(Completion completion)
{
    if (!m_document->isDirty()) {
        completion(true);
        return;
    }
    const Alert question{.messageText = formatted(localized(u"Do you want to save the changes made to “%@”?"), m_document->displayName()),
                         .informativeText = localized(u"Your changes will be lost if you don’t save them."),
                         .buttons = {{localized(u"Save")},
                                     {localized(u"Cancel"), AlertButtonRole::cancel},
                                     {localized(u"Don’t Save"), AlertButtonRole::destructive}}};
    m_services.presenter.present(question, this, [this, completion = std::move(completion)](const AlertReply &reply) {
        if (reply.button == AlertReply::firstButton) {
            save(completion);
        } else {
            completion(reply.button == AlertReply::thirdButton);
        }
    });
}

void MainWindow::terminate()
{
    close();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (std::exchange(m_mayClose, false) || !m_document->isDirty()) {
        event->accept();
        return;
    }
    event->ignore();
    askToSave([this](bool mayGoOn) {
        if (mayGoOn) {
            m_mayClose = true;
            close();
        }
    });
    // Answered at once, the closing under way is the one to let through.
    event->setAccepted(std::exchange(m_mayClose, false));
}

void MainWindow::changeFontSize(int steps)
{
    m_services.preferences.setFontSize(m_services.preferences.fontSize() + steps);
}

void MainWindow::resetFontSize()
{
    m_services.preferences.setFontSize(std::get<double>(Preferences::row(Preference::fontSize).defaultValue));
}

QString MainWindow::panelFolder() const
{
    QString last = m_services.defaults.string(lastFolderKey);
    if (!last.isEmpty() && QFileInfo::exists(last)) {
        return last;
    }
    return m_document->path().isEmpty() ? QDir::homePath() : QFileInfo(m_document->path()).path();
}

void MainWindow::rememberPanelFolder(const QString &path)
{
    m_services.defaults.set(lastFolderKey, QFileInfo(path).path());
}
