// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/SettingsWindowController.h"

#include "Base/HomePath.h"
#include "Base/Translation.h"
#include "Editor/EditorFont.h"
#include "Highlighting/Theme.h"
#include "Settings/Preferences.h"
#include "UI/ToolbarSettingsView.h"
#include "Widgets/AlertPresenter.h"
#include "Widgets/Mnemonics.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFontInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QTabWidget>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

using Level = SettingsForm::Level;

struct CheckboxRow {
    QLatin1StringView name;
    const char16_t *title;
    bool (Preferences::*value)() const;
    void (Preferences::*setValue)(bool);
};

constexpr auto checkboxRows = std::to_array<CheckboxRow>({
    {"showLineNumbers"_L1, u"Show line numbers", &Preferences::showLineNumbers, &Preferences::setShowLineNumbers},
    {"wrapLines"_L1, u"Wrap long lines", &Preferences::wrapLines, &Preferences::setWrapLines},
    {"showInvisibles"_L1, u"Show invisible characters", &Preferences::showInvisibles, &Preferences::setShowInvisibles},
    {"highlightCurrentLine"_L1, u"Highlight the current line", &Preferences::highlightCurrentLine, &Preferences::setHighlightCurrentLine},
    {"insertSpaces"_L1, u"Insert spaces instead of tabs", &Preferences::insertSpaces, &Preferences::setInsertSpaces},
    {"autoIndent"_L1, u"Keep indentation on new lines", &Preferences::autoIndent, &Preferences::setAutoIndent},
    {"vimMode"_L1, u"Vim key bindings", &Preferences::vimMode, &Preferences::setVimMode},
    {"vimSharesClipboard"_L1, u"Share yanks with the system clipboard", &Preferences::vimSharesClipboard,
     &Preferences::setVimSharesClipboard},
    {"trimTrailingWhitespaceOnSave"_L1, u"Trim trailing whitespace on save", &Preferences::trimTrailingWhitespaceOnSave,
     &Preferences::setTrimTrailingWhitespaceOnSave},
    {"ensureTrailingNewlineOnSave"_L1, u"Ensure the file ends with a newline", &Preferences::ensureTrailingNewlineOnSave,
     &Preferences::setEnsureTrailingNewlineOnSave},
    {"autosaveDrafts"_L1, u"Keep local drafts of unsaved buffers", &Preferences::autosaveDrafts, &Preferences::setAutosaveDrafts},
    {"autosaveToDisk"_L1, u"Also write changes straight to the file", &Preferences::autosaveToDisk, &Preferences::setAutosaveToDisk},
    {"restoreSession"_L1, u"Reopen tabs and splits on launch", &Preferences::restoreSession, &Preferences::setRestoreSession},
    {"restoreSessionWhenOpeningFiles"_L1, u"Even when launched by opening a file", &Preferences::restoreSessionWhenOpeningFiles,
     &Preferences::setRestoreSessionWhenOpeningFiles},
    {"reloadCleanFilesAutomatically"_L1, u"Reload unmodified files when they change on disk", &Preferences::reloadCleanFilesAutomatically,
     &Preferences::setReloadCleanFilesAutomatically},
});

constexpr auto systemTheme = "System"_L1;
constexpr std::array tabWidths = {2, 3, 4, 8};
/// In letters.
constexpr int intervalFieldWidth = 8;
/// Logical pixels, enough for the frame of any window manager, which is not known before the window is shown.
constexpr QSize frameRoom(16, 48);

QString displayName(AppLanguage language)
{
    switch (language) {
    case AppLanguage::system:
        return localized(u"Automatic");
    case AppLanguage::english:
        return u"English"_s;
    case AppLanguage::german:
        return u"Deutsch"_s;
    }
    return {};
}

/// A path as it is told: from the home folder on, and with places where a line may break.
QString toldPath(const QString &path)
{
    QString told = abbreviatedPath(path);
    constexpr QChar zeroWidthSpace(0x200B);
    return told.replace(u'/', u'/' + QString(zeroWidthSpace));
}

/// As the settings file has it, or with the comma of other languages.
std::optional<double> parsedInterval(QString text)
{
    bool isNumber = false;
    const double seconds = text.trimmed().replace(u',', u'.').toDouble(&isNumber);
    return isNumber && std::isfinite(seconds) ? std::optional(seconds) : std::nullopt;
}

QString shownInterval(double seconds)
{
    QLocale locale = Localization::current().locale();
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(seconds, 'f', QLocale::FloatingPointShortest);
}

FormPopUp &makePopUp(QLatin1StringView name)
{
    auto *popUp = new FormPopUp;
    popUp->setObjectName(name);
    return *popUp;
}

} // namespace

SettingsWindowController::SettingsWindowController(SettingsServices services)
    : QDialog(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint),
      m_services(std::move(services))
{
    setObjectName(u"settings"_s);
    setAttribute(Qt::WA_QuitOnClose, false);
    auto *stack = new QVBoxLayout(this);
    stack->setContentsMargins(8, 8, 8, 8);
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_W), this), &QShortcut::activated, this, &QWidget::close);
    build();
    NotificationCenter &notifications = m_services.notifications;
    const auto update = [this] { refresh(); };
    m_observers = {notifications.observe(Localization::didChangeNotification, nullptr, [this] { rebuild(); }),
                   notifications.observe(Preferences::didChange, nullptr, update),
                   notifications.observe(Preferences::toolbarConfigurationDidChange, nullptr, update)};
}

SettingsWindowController::~SettingsWindowController()
{
    storeInterval();
    // It loses the focus when this is no more than a dialog.
    disconnect(m_intervalField, nullptr, this, nullptr);
}

// Construction

void SettingsWindowController::build()
{
    setWindowTitle(localized(u"Settings"));
    m_checkboxes.clear();
    m_tabs = new QTabWidget;
    QString taken;
    const QStringList titles =
        withMnemonics({localized(u"Appearance"), localized(u"Editing"), localized(u"Saving"), localized(u"Toolbar")}, taken);
    m_toolbarView = new ToolbarSettingsView(m_services.preferences);
    const std::array<SettingsForm *, 4> forms = {makeAppearancePage(), makeEditingPage(), makeSavingPage(), m_toolbarView};
    for (size_t index = 0; index < forms.size(); ++index) {
        forms[index]->finish();
        forms[index]->markTitles(taken);
        m_tabs->addTab(new SettingsPage(*forms[index]), titles[qsizetype(index)]);
    }
    layout()->addWidget(m_tabs);
    refresh();
}

void SettingsWindowController::rebuild()
{
    storeInterval();
    const int page = m_tabs->currentIndex();
    const QString focused = focusWidget() ? focusWidget()->objectName() : QString();
    QTabWidget *before = m_tabs;
    build();
    m_tabs->setCurrentIndex(page);
    // One of its controls is what led here.
    before->hide();
    before->deleteLater();
    m_tabs->show();
    if (auto *control = focused.isEmpty() ? nullptr : m_tabs->findChild<QWidget *>(focused)) {
        control->setFocus();
    }
    if (isVisible()) {
        resize(size().expandedTo(sizeHint()).boundedTo(screen()->availableSize() - frameRoom));
    }
}

QCheckBox &SettingsWindowController::makeCheckbox(QLatin1StringView name)
{
    const auto row = std::ranges::find(checkboxRows, name, &CheckboxRow::name);
    auto *box = new QCheckBox(localized(row->title));
    box->setObjectName(name);
    m_checkboxes.insert(name, box);
    connect(box, &QCheckBox::clicked, this, [this, row](bool isOn) { (m_services.preferences.*row->setValue)(isOn); });
    return *box;
}

SettingsForm *SettingsWindowController::makeAppearancePage()
{
    auto *form = new SettingsForm;
    addFontRow(*form);
    m_themePopUp = &makePopUp("themePopUp"_L1);
    m_themePopUp->addItem(localized(u"System"), systemTheme);
    m_themePopUp->insertSeparator(1);
    for (const Theme &theme : Theme::all()) {
        m_themePopUp->addItem(localized(theme.name), theme.name.toString());
    }
    form->addRow(localized(u"Theme:"), *m_themePopUp);
    connect(m_themePopUp, &QComboBox::activated, this,
            [this] { m_services.preferences.setThemeName(m_themePopUp->currentData().toString()); });

    m_languagePopUp = &makePopUp("languagePopUp"_L1);
    for (const AppLanguage language : {AppLanguage::system, AppLanguage::english, AppLanguage::german}) {
        m_languagePopUp->addItem(displayName(language), int(language));
    }
    form->addRow(localized(u"Language:"), *m_languagePopUp);
    form->addNote(localized(u"Takes effect immediately. “Automatic” follows the language order in System Settings."), *m_languagePopUp);
    connect(m_languagePopUp, &QComboBox::activated, this,
            [this] { m_services.preferences.setLanguage(AppLanguage(m_languagePopUp->currentData().toInt())); });

    form->addGap();
    for (const auto name : {"showLineNumbers"_L1, "wrapLines"_L1, "showInvisibles"_L1, "highlightCurrentLine"_L1}) {
        form->addControl(makeCheckbox(name));
    }
    return form;
}

void SettingsWindowController::addFontRow(SettingsForm &form)
{
    m_fontLabel = new QLabel;
    m_fontLabel->setObjectName(u"fontLabel"_s);
    m_fontLabel->setTextFormat(Qt::PlainText);
    m_fontButton = new QPushButton(localized(u"Choose…"));
    m_fontButton->setObjectName(u"fontButton"_s);
    m_fontButton->setAutoDefault(false);
    connect(m_fontButton, &QPushButton::clicked, this, &SettingsWindowController::chooseFont);
    auto *row = new QHBoxLayout;
    row->addWidget(m_fontLabel);
    row->addWidget(m_fontButton);
    row->addStretch();
    form.addRow(localized(u"Font:"), *row, *m_fontButton);
    m_fontNote = &form.addNote({}, *m_fontButton);
    m_fontNote->setObjectName(u"fontNote"_s);
}

SettingsForm *SettingsWindowController::makeEditingPage()
{
    auto *form = new SettingsForm;
    m_tabWidthPopUp = &makePopUp("tabWidthPopUp"_L1);
    form->addRow(localized(u"Indent width:"), *m_tabWidthPopUp);
    connect(m_tabWidthPopUp, &QComboBox::activated, this,
            [this] { m_services.preferences.setTabWidth(m_tabWidthPopUp->currentData().toInt()); });
    form->addControl(makeCheckbox("insertSpaces"_L1));
    QCheckBox &autoIndent = makeCheckbox("autoIndent"_L1);
    form->addControl(autoIndent);
    form->addNote(localized(u"Languages with a settled convention - Go and Makefiles use tabs, YAML and JSON use two spaces - override "
                            u"these per file."),
                  *m_tabWidthPopUp);
    form->addGap();
    addVimControls(*form);
    return form;
}

void SettingsWindowController::addVimControls(SettingsForm &form)
{
    QCheckBox &vimMode = makeCheckbox("vimMode"_L1);
    form.addControl(vimMode);
    form.addNote(localized(u"Modal editing: normal, insert and visual modes, operators with motions and text objects, registers, marks, "
                           u"search, and the :w / :q family. The current mode is shown at the bottom left."),
                 vimMode);

    m_vimPresetPopUp = &makePopUp("vimPresetPopUp"_L1);
    for (const VimKeymapPreset preset : {VimKeymapPreset::plain, VimKeymapPreset::lazyVim}) {
        m_vimPresetPopUp->addItem(::displayName(preset), int(preset));
    }
    connect(m_vimPresetPopUp, &QComboBox::activated, this,
            [this] { m_services.preferences.setVimKeymapPreset(VimKeymapPreset(m_vimPresetPopUp->currentData().toInt())); });
    auto *reference = new QPushButton(localized(u"Show Key Reference…"));
    reference->setObjectName(u"showKeyReference"_s);
    reference->setAutoDefault(false);
    connect(reference, &QPushButton::clicked, this, [this] { m_services.showKeyReference(); });
    auto *row = new QHBoxLayout;
    row->addWidget(m_vimPresetPopUp);
    row->addWidget(reference);
    row->addStretch();
    form.addRow(localized(u"Keymap:"), *row, *m_vimPresetPopUp);
    form.addNote(localized(u"The LazyVim preset adds its leader-key mappings for the things this editor has - tabs, splits, saving, "
                           u"comments, moving lines. Its language-server, fuzzy-finder, file-tree and git mappings are left unbound "
                           u"rather than pointing at features that are not here. See the README for the full list."),
                 *m_vimPresetPopUp);

    QCheckBox &sharesClipboard = makeCheckbox("vimSharesClipboard"_L1);
    form.addControl(sharesClipboard);
    form.addNote(localized(u"Vim's clipboard=unnamedplus: y and d also copy to the macOS clipboard, and p pastes what was copied in "
                           u"another app."),
                 sharesClipboard);
}

SettingsForm *SettingsWindowController::makeSavingPage()
{
    auto *form = new SettingsForm;
    form->addControl(makeCheckbox("trimTrailingWhitespaceOnSave"_L1));
    form->addControl(makeCheckbox("ensureTrailingNewlineOnSave"_L1));
    form->addGap();
    QCheckBox &drafts = makeCheckbox("autosaveDrafts"_L1);
    form->addControl(drafts);
    form->addNote(formatted(localized(u"Drafts live in ~/Library/Application Support/Quillet and are never uploaded anywhere."),
                            toldPath(m_services.dataFolder)),
                  drafts);
    form->addControl(makeCheckbox("autosaveToDisk"_L1));
    addIntervalRow(*form);
    form->addGap();
    form->addControl(makeCheckbox("restoreSession"_L1));
    QCheckBox &whenOpeningFiles = makeCheckbox("restoreSessionWhenOpeningFiles"_L1);
    form->addControl(whenOpeningFiles, Level::below);
    form->addNote(localized(u"Off, that file replaces the tabs from last time and the list of them is lost."), whenOpeningFiles,
                  Level::below);
    form->addGap();
    form->addControl(makeCheckbox("reloadCleanFilesAutomatically"_L1));
    return form;
}

void SettingsWindowController::addIntervalRow(SettingsForm &form)
{
    m_intervalField = new QLineEdit;
    m_intervalField->setObjectName(u"intervalField"_s);
    m_intervalField->setAlignment(Qt::AlignRight);
    m_intervalField->setFixedWidth(m_intervalField->fontMetrics().averageCharWidth() * intervalFieldWidth +
                                   m_intervalField->sizeHint().height() / 2);
    connect(m_intervalField, &QLineEdit::editingFinished, this, &SettingsWindowController::storeInterval);
    auto *row = new QHBoxLayout;
    row->addWidget(m_intervalField);
    row->addWidget(new QLabel(localized(u"seconds")));
    row->addStretch();
    form.addRow(localized(u"Every:"), *row, *m_intervalField);
    m_intervalField->setAccessibleDescription(localized(u"seconds"));
}

// What is shown and stored

void SettingsWindowController::refresh()
{
    const Preferences &preferences = m_services.preferences;
    for (const CheckboxRow &row : checkboxRows) {
        m_checkboxes.value(row.name)->setChecked((preferences.*row.value)());
    }
    refreshFont();
    const Theme *theme = Theme::named(preferences.themeName());
    m_themePopUp->showValue(theme ? theme->name.toString() : QString(systemTheme));
    refreshTabWidths();
    m_vimPresetPopUp->showValue(int(preferences.vimKeymapPreset()));
    m_languagePopUp->showValue(int(preferences.language()));
    if (!m_intervalField->isModified()) {
        refreshInterval();
    }
    m_toolbarView->refresh();
}

void SettingsWindowController::refreshFont()
{
    const Preferences &preferences = m_services.preferences;
    const QString stored = preferences.fontName();
    m_fontLabel->setText(stored + u' ' + QString::number(std::lround(preferences.fontSize())));
    const QString used = QFontInfo(editorFont(preferences)).family();
    const bool isMissing = !QFontDatabase::hasFamily(stored);
    m_fontNote->setText(isMissing ? formatted(localized(u"This font is not installed; “%@” is used instead."), used) : QString());
    m_fontNote->setVisible(isMissing);
    m_fontButton->setAccessibleDescription(QStringList{m_fontLabel->text(), m_fontNote->text()}.join(u' ').trimmed());
}

void SettingsWindowController::refreshTabWidths()
{
    const int stored = m_services.preferences.tabWidth();
    std::vector<int> widths(tabWidths.begin(), tabWidths.end());
    if (std::ranges::find(widths, stored) == widths.end()) {
        widths.insert(std::ranges::upper_bound(widths, stored), stored);
    }
    m_tabWidthPopUp->clear();
    for (const int width : widths) {
        m_tabWidthPopUp->addItem(QString::number(width), width);
    }
    m_tabWidthPopUp->showValue(stored);
}

void SettingsWindowController::refreshInterval()
{
    m_intervalField->setText(shownInterval(m_services.preferences.autosaveInterval()));
}

/// Also when the field is left or goes while it is edited.
void SettingsWindowController::storeInterval()
{
    if (!m_intervalField->isModified()) {
        return;
    }
    m_intervalField->setModified(false);
    if (const auto seconds = parsedInterval(m_intervalField->text())) {
        m_services.preferences.setAutosaveInterval(*seconds);
    }
    refreshInterval();
}

void SettingsWindowController::chooseFont()
{
    const Preferences &preferences = m_services.preferences;
    const PreferenceRow &size = Preferences::row(Preference::fontSize);
    const FontPanel panel{.title = localized(u"Font"),
                          .current = {QFontInfo(editorFont(preferences)).family(), preferences.fontSize()},
                          .leastSize = size.minimum,
                          .greatestSize = size.maximum};
    m_services.presenter.present(panel, this, [this](const std::optional<FontChoice> &font) {
        if (font) {
            m_services.preferences.setFontName(font->family);
            m_services.preferences.setFontSize(font->pointSize);
        }
    });
}

// The window

void SettingsWindowController::comeToFront(const QWidget *beside)
{
    if (!testAttribute(Qt::WA_WState_ExplicitShowHide)) {
        const QScreen *on = beside ? beside->screen() : screen();
        const QRect room = on->availableGeometry();
        resize(sizeHint().boundedTo(room.size() - frameRoom));
        move(room.center() - rect().center());
    }
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void SettingsWindowController::hideEvent(QHideEvent *event)
{
    storeInterval();
    QDialog::hideEvent(event);
}
