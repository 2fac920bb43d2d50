// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/MainWindow.h"

#include "App/EditorFont.h"
#include "App/MenuBar.h"
#include "App/OpenFile.h"
#include "App/Preferences.h"
#include "Platform/AlertPresenter.h"
#include "Platform/DefaultsStore.h"
#include "Platform/Translation.h"
#include "Text/TextView.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize startSize(1000, 680);
constexpr auto lastFolderKey = "io.panels.lastDirectory"_L1;

UndoManager::Clock clockOf(Scheduler &scheduler)
{
    return [&scheduler] { return scheduler.now(); };
}

} // namespace

MainWindow::MainWindow(const AppServices &services) : m_services(services)
{
    resize(startSize);
    installMenuBar(*this, m_services.presenter);
    setFile(std::make_unique<OpenFile>(clockOf(m_services.scheduler)));
    m_preferencesObserver =
        m_services.notifications.observe(Preferences::didChange, &m_services.preferences, [this] { applyPreferences(); });
}

MainWindow::~MainWindow()
{
    // The view refers to the file's text.
    delete m_textView;
}

const ActionRow *MainWindow::actionFor(Selector selector) const
{
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&MainWindow::openDocument>("openDocument:"),
        action<&MainWindow::saveDocument>("saveDocument:"),
        action<&MainWindow::saveDocumentAs>("saveDocumentAs:"),
        action<&MainWindow::terminate>("terminate:"),
        action<&MainWindow::toggleLineWrap, &MainWindow::lineWrapState>("toggleLineWrap:"),
        action<&MainWindow::increaseFontSize>("increaseFontSize:"),
        action<&MainWindow::decreaseFontSize>("decreaseFontSize:"),
        action<&MainWindow::resetFontSize>("resetFontSize:"),
    });
    return findAction(rows, selector);
}

void MainWindow::setFile(std::unique_ptr<OpenFile> file)
{
    delete m_textView;
    m_file = std::move(file);
    m_textView = new TextView(m_file->storage(), m_file->undoManager(), {m_services.scheduler, m_services.pasteboard},
                              editorFont(m_services.preferences), this);
    connect(&m_file->undoManager(), &UndoManager::stateChanged, this, [this] { setWindowModified(m_file->isDirty()); });
    connect(m_textView, &TextView::zoomRequested, this, &MainWindow::changeFontSize);
    applyPreferences();
    setCentralWidget(m_textView);
    m_textView->setFocus();
    updateTitle();
}

void MainWindow::applyPreferences()
{
    const Preferences &preferences = m_services.preferences;
    const QFont font = editorFont(preferences);
    if (m_textView->textFont() != font) {
        m_textView->setTextFont(font);
    }
    m_textView->setTabWidth(preferences.tabWidth());
    m_textView->setInvisibles(preferences.showInvisibles() ? TextView::Visibility::shown : TextView::Visibility::hidden);
    const auto wrapMode = preferences.wrapLines() ? TextView::WrapMode::viewWidth : TextView::WrapMode::none;
    if (m_textView->wrapMode() != wrapMode) {
        m_textView->setWrapMode(wrapMode);
    }
}

void MainWindow::updateTitle()
{
    // Doubled, the mark's placeholder stands for itself.
    setWindowTitle(m_file->displayName().replace("[*]"_L1, "[*][*]"_L1) + u"[*]"_s);
    setWindowFilePath(m_file->path());
    setWindowModified(m_file->isDirty());
}

void MainWindow::show(const QString &path)
{
    auto file = OpenFile::read(path, clockOf(m_services.scheduler));
    if (file) {
        setFile(*std::move(file));
        return;
    }
    const TextFile::ReadError &error = file.error();
    m_services.presenter.present(Alert::forError(error.description(), error.recoverySuggestion().value_or(QString())), this, {});
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
    if (m_file->path().isEmpty()) {
        saveAs(std::move(completion));
    } else {
        write(m_file->path(), completion);
    }
}

void MainWindow::saveAs(Completion completion)
{
    const QString &path = m_file->path();
    const SavePanel panel{.startFolder = path.isEmpty() ? panelFolder() : QFileInfo(path).path(), .suggestedName = m_file->displayName()};
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
    const Result<void> saved = m_file->save(path);
    updateTitle();
    if (!saved) {
        m_services.presenter.present(Alert::forError(saved.error().message), this, {});
    }
    completion(saved.has_value());
}

void MainWindow::askToSave(Completion completion)
{
    if (!m_file->isDirty()) {
        completion(true);
        return;
    }
    const Alert question{.messageText = formatted(localized(u"Do you want to save the changes made to “%@”?"), m_file->displayName()),
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
    if (std::exchange(m_mayClose, false) || !m_file->isDirty()) {
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

void MainWindow::toggleLineWrap()
{
    m_services.preferences.setWrapLines(!m_services.preferences.wrapLines());
}

ActionState MainWindow::lineWrapState() const
{
    return {.checkMark = m_services.preferences.wrapLines() ? CheckMark::on : CheckMark::none};
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
    return m_file->path().isEmpty() ? QDir::homePath() : QFileInfo(m_file->path()).path();
}

void MainWindow::rememberPanelFolder(const QString &path)
{
    m_services.defaults.set(lastFolderKey, QFileInfo(path).path());
}
