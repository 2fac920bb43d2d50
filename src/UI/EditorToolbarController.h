// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Base/Scheduler.h"
#include "UI/ToolbarAction.h"
#include "UI/ToolbarStrip.h"

#include <QObject>
#include <QPointer>
#include <QToolBar>

#include <array>
#include <functional>

class FirstResponder;
class Preferences;
class QMainWindow;
class QMenu;
class ToolbarActionItem;
struct ActionState;

/// What a toolbar uses.
struct ToolbarServices {
    Scheduler &scheduler;
    NotificationCenter &notifications;
    const Preferences &preferences;
    FirstResponder &responder;
};

/// The toolbar of one main window, as the preferences want it: beside the menus in the menu bar's row, in a row of its own, or none. It is
/// made anew when its configuration or the language changes.
///
/// Its buttons send their actions to the window's first responder and are enabled as that says. It is asked a moment after the focus moved
/// or a document or the preferences changed, at most every 50 ms, and whenever the window wants it: what nobody announces, such as another
/// selection, is the window's to report.
class EditorToolbarController final : public QObject {
    Q_OBJECT

public:
    /// Puts what the button of an action with a menu opens into `menu`, which is empty; nothing disables the button.
    using MenuFiller = std::function<void(QMenu &menu)>;

    /// The window owns the controller; the services must outlive it. The window keeps its menu bar.
    EditorToolbarController(QMainWindow &window, const ToolbarServices &services);
    ~EditorToolbarController() override;

    /// For the one action that has a menu.
    void setMenuFiller(MenuFiller filler);

    /// Lets the buttons show what can be done now.
    void validate();
    /// The same in a moment, once for however many calls. For every key and every movement of the caret.
    void validateSoon();

    /// Null when the toolbar is hidden. Valid until the configuration or the language changes.
    [[nodiscard]] ToolbarStrip *strip() const { return m_strip; }
    /// Where the keyboard enters the toolbar; null when there is nothing to go to.
    [[nodiscard]] QWidget *entry() const;

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void apply();
    void removeStrip();
    void installStrip();
    void addItem(const ToolbarAction &spec);
    void addToExtension(QMenu &menu, ToolbarActionItem &item);
    void perform(const ToolbarAction &spec);
    void fill(QMenu &menu) const;
    [[nodiscard]] ActionState stateOf(const ToolbarAction &spec) const;
    void updateTitle();

    QMainWindow &m_window;
    ToolbarServices m_services;
    MenuFiller m_fillMenu;
    QPointer<ToolbarStrip> m_strip;
    /// Around the strip where it has a row of its own.
    QPointer<QToolBar> m_bar;
    DelayedTask m_validation;
    Scheduler::Milliseconds m_lastValidation;
    std::array<NotificationCenter::Token, 5> m_observers;
};
