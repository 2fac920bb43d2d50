// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/EditorToolbarController.h"

#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Commands/KeyboardChords.h"
#include "Model/TextDocument.h"
#include "Settings/Preferences.h"
#include "UI/ToolbarActionItem.h"
#include "UI/ToolbarCatalogue.h"
#include "UI/ToolbarStrip.h"
#include "View/FirstResponder.h"
#include "Widgets/InterfaceStyle.h"
#include "Widgets/SymbolIcon.h"

#include <QApplication>
#include <QEvent>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QProxyStyle>
#include <QToolBar>
#include <QToolButton>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto validationInterval = 50ms;
// Logical pixels.
constexpr int symbolSideBesideMenus = 18;
constexpr int symbolSideInRow = 20;
constexpr int menuExtensionWidth = 15;

/// The window's title as its frame shows it.
QString titleOf(const QWidget &window)
{
    // A doubled placeholder stands for itself.
    QString title = window.windowTitle();
    title.replace("[*][*]"_L1, "\n"_L1);
    title.replace("[*]"_L1, window.isWindowModified() ? "*"_L1 : ""_L1);
    return title.replace("\n"_L1, "[*]"_L1);
}

/// The button for the menus that have no room.
QToolButton *menuExtension(const QMenuBar &menuBar)
{
    return menuBar.findChild<QToolButton *>(u"qt_menubar_ext_button"_s);
}

/// The toolkit's picture is black on any ground, and nothing says what the button is for.
void decorateMenuExtension(const QMenuBar &menuBar)
{
    if (QToolButton *button = menuExtension(menuBar)) {
        // Another than that of the toolbar's button beside it; small, since a title more may stand here.
        button->setIcon(symbolIcon(u"chevron.down"));
        button->setIconSize({menuExtensionWidth, menuExtensionWidth});
        const QString name = localized(u"More Menus");
        button->setToolTip(name);
        button->setAccessibleName(name);
    }
}

/// Gives a menu bar with its button a style of its own; null gives them the program's back.
void setStyle(QMenuBar &menuBar, QStyle *style)
{
    menuBar.setStyle(style);
    if (QToolButton *button = menuExtension(menuBar)) {
        button->setStyle(style);
    }
}

/// Makes the titles of a menu bar as high as the toolbar beside them: else they would stand at the upper edge of their row. The button for
/// those that have no room is made as wide as its symbol.
class TitleStyle final : public QProxyStyle {
public:
    TitleStyle(int height, QObject *owner) : QProxyStyle(InterfaceStyle::baseName()), m_height(height) { setParent(owner); }

    [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                                         const QWidget *widget) const override
    {
        const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        return type == CT_MenuBarItem ? size.expandedTo({0, m_height}) : size;
    }

    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override
    {
        const int length = QProxyStyle::pixelMetric(metric, option, widget);
        return metric == PM_ToolBarExtensionExtent ? std::max(length, menuExtensionWidth) : length;
    }

private:
    int m_height;
};

} // namespace

EditorToolbarController::EditorToolbarController(QMainWindow &window, const ToolbarServices &services)
    : QObject(&window), m_window(window), m_services(services), m_lastValidation(services.scheduler.now() - validationInterval)
{
    NotificationCenter &notifications = m_services.notifications;
    const auto applyAgain = [this] { apply(); };
    const auto validateAgain = [this] { validateSoon(); };
    m_observers = {notifications.observe(Preferences::toolbarConfigurationDidChange, nullptr, applyAgain),
                   notifications.observe(Localization::didChangeNotification, nullptr, applyAgain),
                   notifications.observe(KeyboardChords::didChangeNotification, nullptr, applyAgain),
                   notifications.observe(TextDocument::didChangeMetadata, nullptr, validateAgain),
                   notifications.observe(Preferences::didChange, nullptr, validateAgain)};
    connect(qApp, &QApplication::focusChanged, this, validateAgain);
    m_window.installEventFilter(this);
    apply();
}

EditorToolbarController::~EditorToolbarController() = default;

void EditorToolbarController::setMenuFiller(MenuFiller filler)
{
    m_fillMenu = std::move(filler);
    validate();
}

QWidget *EditorToolbarController::entry() const
{
    return m_strip ? m_strip->entry() : nullptr;
}

// Construction

void EditorToolbarController::apply()
{
    removeStrip();
    decorateMenuExtension(*m_window.menuBar());
    if (m_services.preferences.value(Settings::toolbarStyle) == ToolbarStyle::hidden) {
        return;
    }
    m_strip = new ToolbarStrip;
    for (const ToolbarAction *action : ToolbarCatalogue::configuredActions(m_services.preferences)) {
        addItem(*action);
    }
    m_strip->setExtensionFiller([this](QMenu &menu, ToolbarActionItem &item) { addToExtension(menu, item); });
    connect(m_strip, &ToolbarStrip::left, this, [this] {
        if (QWidget *behind = m_services.responder.focusBehindBars()) {
            behind->setFocus(Qt::OtherFocusReason);
        }
    });
    FirstResponder::setBar(*m_strip);
    updateTitle();
    installStrip();
    validate();
}

void EditorToolbarController::removeStrip()
{
    if (!m_strip) {
        return;
    }
    if (QWidget *behind = m_services.responder.focusBehindBars(); behind && m_strip->isAncestorOf(m_window.focusWidget())) {
        behind->setFocus(Qt::OtherFocusReason);
    }
    if (m_window.menuBar()->cornerWidget() == m_strip) {
        m_window.menuBar()->setCornerWidget(nullptr);
        setStyle(*m_window.menuBar(), nullptr);
    }
    // One of the buttons may be what led here.
    m_strip->hide();
    m_strip->deleteLater();
    m_strip = nullptr;
    if (m_bar) {
        m_window.removeToolBar(m_bar);
        m_bar->deleteLater();
        m_bar = nullptr;
    }
}

void EditorToolbarController::installStrip()
{
    if (m_services.preferences.value(Settings::toolbarStyle) == ToolbarStyle::combined) {
        m_strip->setRoomBeside(*m_window.menuBar());
        setStyle(*m_window.menuBar(), new TitleStyle(m_strip->sizeHint().height(), m_strip));
        m_window.menuBar()->setCornerWidget(m_strip);
    } else {
        m_bar = new QToolBar;
        m_bar->setObjectName(u"QuilletToolbar"_s);
        m_bar->setAccessibleName(m_strip->accessibleName());
        m_bar->setMovable(false);
        m_bar->setContextMenuPolicy(Qt::PreventContextMenu);
        // Else the window's own context menu would offer to hide it.
        m_bar->toggleViewAction()->setVisible(false);
        m_bar->addWidget(m_strip);
        m_window.addToolBar(Qt::TopToolBarArea, m_bar);
    }
    m_strip->show();
}

void EditorToolbarController::addItem(const ToolbarAction &spec)
{
    const auto labels =
        m_services.preferences.value(Settings::toolbarShowsLabels) ? ToolbarActionItem::Labels::shown : ToolbarActionItem::Labels::hidden;
    const auto tint =
        m_services.preferences.value(Settings::toolbarWarnsInRed) ? ToolbarActionItem::Tint::red : ToolbarActionItem::Tint::none;
    auto *item = new ToolbarActionItem(spec, labels, tint, m_strip);
    const bool isBesideMenus = m_services.preferences.value(Settings::toolbarStyle) == ToolbarStyle::combined;
    const int side = isBesideMenus ? symbolSideBesideMenus : symbolSideInRow;
    item->setIconSize({side, side});
    if (spec.hasMenu) {
        auto *menu = new QMenu(item);
        connect(menu, &QMenu::aboutToShow, this, [this, menu] { fill(*menu); });
        item->setMenu(menu);
    } else {
        connect(item, &QToolButton::clicked, this, [this, &spec] { perform(spec); });
    }
    m_strip->addItem(*item);
}

void EditorToolbarController::addToExtension(QMenu &menu, ToolbarActionItem &item)
{
    const ToolbarAction &spec = item.spec();
    if (spec.hasMenu) {
        QMenu *submenu = menu.addMenu(item.icon(), item.text());
        fill(*submenu);
        submenu->setEnabled(item.isEnabled());
        return;
    }
    QAction *action = menu.addAction(item.icon(), item.text(), this, [this, &spec] { perform(spec); });
    action->setEnabled(item.isEnabled());
    action->setCheckable(item.isCheckable());
    action->setChecked(item.isChecked());
}

void EditorToolbarController::updateTitle()
{
    if (m_strip) {
        m_strip->setTitle(m_services.preferences.value(Settings::windowShowsTitle) ? titleOf(m_window) : QString());
    }
}

// Doing and showing

void EditorToolbarController::perform(const ToolbarAction &spec)
{
    const QPointer alive(this);
    m_services.responder.choose(spec.action);
    if (alive) {
        // A toggle has changed its look by the click alone.
        validate();
    }
}

void EditorToolbarController::fill(QMenu &menu) const
{
    emptyMenu(menu);
    if (m_fillMenu) {
        m_fillMenu(menu);
    }
}

ActionState EditorToolbarController::stateOf(const ToolbarAction &spec) const
{
    ActionState state = m_services.responder.state(spec.action);
    if (spec.hasMenu && state.isEnabled) {
        QMenu menu;
        fill(menu);
        state.isEnabled = !menu.isEmpty();
    }
    return state;
}

void EditorToolbarController::validate()
{
    m_validation.cancel();
    m_lastValidation = m_services.scheduler.now();
    if (m_strip) {
        for (ToolbarActionItem *item : m_strip->items()) {
            item->setState(stateOf(item->spec()));
        }
    }
}

void EditorToolbarController::validateSoon()
{
    if (!m_validation.isPending()) {
        const auto due = m_lastValidation + validationInterval - m_services.scheduler.now();
        m_validation = m_services.scheduler.after(std::max(due, Scheduler::Milliseconds(0)), [this] { validate(); });
    }
}

bool EditorToolbarController::eventFilter(QObject *object, QEvent *event)
{
    if (object == &m_window && (event->type() == QEvent::WindowTitleChange || event->type() == QEvent::ModifiedChange)) {
        updateTitle();
    }
    return QObject::eventFilter(object, event);
}
