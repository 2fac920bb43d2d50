// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Diff/DiffWindowController.h"

#include "Commands/Actions.h"
#include "Widgets/AccessibleRole.h"
#include "Widgets/WindowSize.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QScreen>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize startSize(1180, 720);
constexpr QSize leastSize(560, 280);

} // namespace

DiffWindowController::DiffWindowController(const EditorServices &services, Side left, Side right, const Language &language)
    : m_firstResponder(*this, services.presenter)
{
    setAccessibleRole(*this, QAccessible::Window);
    // Doubled, the mark's placeholder stands for itself.
    setWindowTitle(QString(left.title + u" \u2194 "_s + right.title).replace("[*]"_L1, "[*][*]"_L1));
    m_content = new DiffViewController(services, std::move(left), std::move(right), language, this);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_content);
    setMinimumSize(leastSize);
    resize(sizeOnScreen(*this, startSize).expandedTo(leastSize));
}

void DiffWindowController::comeToFront()
{
    if (!isVisible()) {
        if (const QScreen *shown = screen()) {
            move(shown->availableGeometry().center() - rect().center());
        }
    }
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    // No focus proxy: the Tab key would come to it wherever it goes around the window, and never to the other column.
    m_content->rightView().setFocus();
}

const ActionRow *DiffWindowController::actionFor(const Action &wanted) const
{
    using Self = DiffWindowController;
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&Self::performClose>(Actions::performClose),
        action<&Self::performClose>(Actions::closeTab),
        action<&Self::performMiniaturize>(Actions::performMiniaturize),
        action<&Self::performZoom>(Actions::performZoom),
        action<&Self::toggleFullScreen>(Actions::toggleFullScreen),
    });
    return findAction(rows, wanted);
}

void DiffWindowController::closeEvent(QCloseEvent *event)
{
    event->accept();
    emit closed();
}

void DiffWindowController::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}
