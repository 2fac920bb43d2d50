// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/SettingsWindowController.h"

#include "Base/HomePath.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Editor/EditorFont.h"
#include "Highlighting/Theme.h"
#include "Settings/Preferences.h"
#include "UI/SettingControls.h"
#include "UI/ToolbarSettingsView.h"
#include "UI/VimChordsPanel.h"
#include "Widgets/AlertPresenter.h"
#include "Widgets/Mnemonics.h"
#include "Widgets/WindowSize.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFontInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QTabWidget>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// A path as it is shown: from the home folder on, and with places where a line may break.
QString shownPath(const QString &path)
{
    QString shown = abbreviatedPath(path);
    constexpr QChar zeroWidthSpace(0x200B);
    return shown.replace(u'/', u'/' + QString(zeroWidthSpace));
}

} // namespace

SettingsWindowController::SettingsWindowController(SettingsServices services)
    : QDialog(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint),
      m_services(std::move(services))
{
    setObjectName(u"settings"_s);
    setAttribute(Qt::WA_QuitOnClose, false);
    auto *stack = new QVBoxLayout(this);
    // The pages have the margins.
    stack->setContentsMargins({});
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
    m_controls->commit();
}

// Construction

void SettingsWindowController::build()
{
    setWindowTitle(localized(u"Settings"));
    m_controls = std::make_unique<SettingControls>(m_services.preferences, shownPath(m_services.dataFolder));
    m_tabs = new QTabWidget;
    m_tabs->setDocumentMode(true);
    QStringList titles;
    for (const SettingsPageTable &page : Settings::pages) {
        titles << localized(page.title);
    }
    QString taken;
    titles = withMnemonics(titles, taken);
    for (const SettingsPageTable &page : Settings::pages) {
        auto *form = new SettingsForm;
        for (const SettingRow &row : page.rows) {
            addRow(*form, row);
        }
        form->finish();
        form->markTitles(taken);
        m_tabs->addTab(new SettingsPage(*form), titles.takeFirst());
    }
    layout()->addWidget(m_tabs);
    refresh();
}

void SettingsWindowController::rebuild()
{
    m_controls->commit();
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
        resize(sizeOnScreen(*this, size().expandedTo(sizeHint())));
    }
    if (m_chords) {
        delete m_chords;
        showChords();
    }
}

/// As its type says, but for a few.
void SettingsWindowController::addRow(SettingsForm &form, const SettingRow &row)
{
    using Self = SettingsWindowController;
    struct SpecialRow {
        const AnySetting *setting;
        void (Self::*add)(SettingsForm &form, const SettingRow &row);
    };
    static constexpr auto specialRows = std::to_array<SpecialRow>({
        {&Settings::fontName, &Self::addFontRow},
        {&Settings::themeName, &Self::addThemeRow},
        {&Settings::vimMode, &Self::addVimModeRow},
        {&Settings::vimKeymapPreset, &Self::addKeymapRow},
        {&Settings::vimChords, &Self::addChordsRow},
        {&Settings::toolbarItemIDs, &Self::addToolbarList},
    });
    const auto special = std::ranges::find(specialRows, &row.setting, &SpecialRow::setting);
    if (special == specialRows.end()) {
        m_controls->add(form, row);
    } else {
        (this->*special->add)(form, row);
    }
}

void SettingsWindowController::addFontRow(SettingsForm &form, const SettingRow &settingRow)
{
    m_fontLabel = new QLabel;
    m_fontLabel->setObjectName(u"fontLabel"_s);
    m_fontLabel->setTextFormat(Qt::PlainText);
    m_fontButton = new QPushButton(localized(u"Choose…"));
    m_fontButton->setObjectName(u"fontButton"_s);
    m_fontButton->setAutoDefault(false);
    connect(m_fontButton, &QPushButton::clicked, this, &SettingsWindowController::chooseFont);
    m_desktopFontButton = new QPushButton(localized(u"Use Desktop’s"));
    m_desktopFontButton->setObjectName(u"desktopFontButton"_s);
    m_desktopFontButton->setAccessibleDescription(localized(u"Uses the fixed-width font and size of the desktop."));
    m_desktopFontButton->setToolTip(m_desktopFontButton->accessibleDescription());
    m_desktopFontButton->setAutoDefault(false);
    connect(m_desktopFontButton, &QPushButton::clicked, this, &SettingsWindowController::useDesktopFont);
    auto *row = new QHBoxLayout;
    row->addWidget(m_fontLabel);
    row->addWidget(m_fontButton);
    row->addWidget(m_desktopFontButton);
    row->addStretch();
    form.addRow(localized(settingRow.setting.details.title), *row, *m_fontButton);
    m_fontNote = &form.addNote({}, *m_fontButton);
    m_fontNote->setObjectName(u"fontNote"_s);
}

void SettingsWindowController::addThemeRow(SettingsForm &form, const SettingRow &row)
{
    std::vector<SettingControls::Choice> choices = {{localized(u"System"), u"System"_s}, {}};
    for (const Theme &theme : Theme::all()) {
        choices.push_back({localized(theme.name), theme.name.toString()});
    }
    m_controls->addChoices(form, row, choices);
}

void SettingsWindowController::addKeymapRow(SettingsForm &form, const SettingRow &row)
{
    auto *reference = new QPushButton(localized(u"Show Key Reference…"));
    reference->setObjectName(u"showKeyReference"_s);
    reference->setAutoDefault(false);
    connect(reference, &QPushButton::clicked, this, [this] { perform(Actions::showVimKeyReference); });
    m_controls->add(form, row, reference);
}

/// Who switches modal editing on sees once whose keys are whose.
void SettingsWindowController::addVimModeRow(SettingsForm &form, const SettingRow &row)
{
    m_controls->add(form, row);
    connect(form.findChild<QCheckBox *>(row.controlName()), &QCheckBox::clicked, this, [this](bool isOn) {
        if (isOn && !m_services.preferences.value(Settings::vimChordsShown)) {
            showChords();
        }
    });
}

void SettingsWindowController::addChordsRow(SettingsForm &form, const SettingRow &row)
{
    auto *button = new QPushButton(localized(row.setting.details.title));
    button->setObjectName(row.controlName());
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, &SettingsWindowController::showChords);
    form.addControl(*button);
    form.addNote(localized(row.note), *button);
}

void SettingsWindowController::showChords()
{
    if (!m_chords) {
        m_chords = new VimChordsPanel(m_services.preferences, m_services.notifications, this);
        m_services.preferences.set(Settings::vimChordsShown, true);
    }
    m_chords->show();
    m_chords->raise();
    m_chords->activateWindow();
}

void SettingsWindowController::addToolbarList(SettingsForm &form, const SettingRow &row)
{
    m_toolbarView = new ToolbarSettingsView(form, row, m_services.preferences);
}

// What is shown and stored

void SettingsWindowController::refresh()
{
    m_controls->refresh();
    refreshFont();
    m_toolbarView->refresh();
}

void SettingsWindowController::refreshFont()
{
    const Preferences &preferences = m_services.preferences;
    const QString used = QFontInfo(editorFont(preferences)).family();
    // Nobody has chosen the default, which few desktops have.
    const bool isChosen = preferences.isSet(Settings::fontName);
    const QString name = isChosen ? preferences.value(Settings::fontName) : used;
    m_fontLabel->setText(name + u' ' + QString::number(std::lround(preferences.value(Settings::fontSize))));
    const bool isMissing = isChosen && !QFontDatabase::hasFamily(name);
    m_fontNote->setText(isMissing ? formatted(localized(u"This font is not installed; “%@” is used instead."), used) : QString());
    m_fontNote->setVisible(isMissing);
    m_desktopFontButton->setEnabled(isChosen || preferences.isSet(Settings::fontSize));
    m_fontButton->setAccessibleDescription(QStringList{m_fontLabel->text(), m_fontNote->text()}.join(u' ').trimmed());
}

void SettingsWindowController::chooseFont()
{
    const Preferences &preferences = m_services.preferences;
    const FontPanel panel{.title = localized(u"Font"),
                          .current = {QFontInfo(editorFont(preferences)).family(), preferences.value(Settings::fontSize)},
                          .leastSize = Settings::fontSize.details.minimum,
                          .greatestSize = Settings::fontSize.details.maximum};
    m_services.presenter.present(panel, this, [this](const std::optional<FontChoice> &font) {
        if (font) {
            m_services.preferences.set(Settings::fontName, font->family);
            m_services.preferences.set(Settings::fontSize, font->pointSize);
        }
    });
}

void SettingsWindowController::useDesktopFont()
{
    // The button that was pressed is not there any more for the keyboard.
    m_fontButton->setFocus();
    m_services.preferences.unset(Settings::fontName);
    m_services.preferences.unset(Settings::fontSize);
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
    m_controls->commit();
    if (m_chords) {
        m_chords->close();
    }
    QDialog::hideEvent(event);
}
