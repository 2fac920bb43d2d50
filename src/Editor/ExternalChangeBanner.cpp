// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/ExternalChangeBanner.h"

#include "Base/Translation.h"
#include "Highlighting/Theme.h"
#include "Widgets/AccessibleRole.h"
#include "Widgets/ElidedLabel.h"

#include <QHBoxLayout>
#include <QPushButton>

#include <algorithm>
#include <array>
#include <span>

namespace {

constexpr quint32 lightYellow = 0xFFFFCC00;
constexpr quint32 darkYellow = 0xFFFFD60A;
constexpr int leastHeight = 32;
/// A sentence that is shortened to less says too little.
constexpr int leastSentenceWidth = 320;
constexpr int spacing = 8;

} // namespace

struct ExternalChangeBanner::ButtonRow {
    QStringView title;
    std::function<void()> ExternalChangeBanner::*callback;
};

struct ExternalChangeBanner::StateRow {
    QStringView sentence;
    std::span<const ButtonRow> buttons;
};

const ExternalChangeBanner::StateRow *ExternalChangeBanner::rowOf(TextDocument::ExternalState state)
{
    static constexpr std::array conflictButtons = {ButtonRow{u"Compare", &ExternalChangeBanner::onCompare},
                                                   ButtonRow{u"Reload from Disk", &ExternalChangeBanner::onReload},
                                                   ButtonRow{u"Keep Mine", &ExternalChangeBanner::onKeep}};
    static constexpr std::array deletionButtons = {ButtonRow{u"Save Again", &ExternalChangeBanner::onSave},
                                                   ButtonRow{u"Dismiss", &ExternalChangeBanner::onKeep}};
    static constexpr StateRow conflicted = {u"“%@” changed on disk and has unsaved edits here.", conflictButtons};
    static constexpr StateRow deleted = {u"“%@” was deleted or moved.", deletionButtons};
    static constexpr StateRow waiting = {u"Waiting for “%@”: its folder does not answer. You can go on with other tabs, or close this one.",
                                         {}};
    switch (state) {
    case TextDocument::ExternalState::conflicted:
        return &conflicted;
    case TextDocument::ExternalState::deleted:
        return &deleted;
    case TextDocument::ExternalState::waiting:
        return &waiting;
    case TextDocument::ExternalState::none:
        break;
    }
    return nullptr;
}

ExternalChangeBanner::ExternalChangeBanner(QWidget *parent)
    : QWidget(parent), m_stack(new QHBoxLayout(this)), m_buttonStack(new QHBoxLayout), m_label(new ElidedLabel(Qt::ElideMiddle, this))
{
    setAccessibleRole(*this, QAccessible::Grouping);
    becomeNotice(*m_label);
    setAutoFillBackground(true);
    setMinimumHeight(leastHeight);
    m_stack->setContentsMargins(12, 6, 12, 6);
    m_stack->setSpacing(spacing);
    m_stack->addWidget(m_label, 1);
    m_stack->addLayout(m_buttonStack);
}

void ExternalChangeBanner::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    arrange();
}

void ExternalChangeBanner::arrange()
{
    const QMargins margins = m_stack->contentsMargins();
    const int room = width() - margins.left() - margins.right();
    int buttons = -spacing;
    for (const QPushButton *button : m_buttons) {
        buttons += spacing + button->sizeHint().width();
    }
    const int sentence = std::min(m_label->sizeHint().width(), leastSentenceWidth);
    m_stack->setDirection(sentence + spacing + buttons <= room ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    m_buttonStack->setDirection(buttons <= room ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

void ExternalChangeBanner::configure(TextDocument::ExternalState state, const QString &filename)
{
    say(rowOf(state), filename);
}

void ExternalChangeBanner::configure(const TextOrigin &origin)
{
    static constexpr std::array versionButtons = {ButtonRow{u"Compare", &ExternalChangeBanner::onCompare},
                                                  ButtonRow{u"Dismiss", &ExternalChangeBanner::onKeep}};
    static constexpr StateRow otherVersion = {
        u"This is another unsaved version of “%@”. The one that was changed last is in the tab of the file.", versionButtons};
    static constexpr StateRow insertions = {
        u"This was typed into “%@” and not saved. That has another text now, so it could not be put back into its place.",
        std::span(versionButtons).subspan(1)};
    say(origin.kind == TextOrigin::Kind::otherVersion ? &otherVersion : &insertions, origin.shownName());
}

void ExternalChangeBanner::configureAwaited(const QString &filename)
{
    static constexpr std::array buttons = {ButtonRow{u"Done", &ExternalChangeBanner::onDone},
                                           ButtonRow{u"Abort", &ExternalChangeBanner::onAbort}};
    static constexpr StateRow awaited = {u"A program waits until “%@” is closed.", buttons};
    say(&awaited, filename);
}

void ExternalChangeBanner::configureSuggestion(const QString &encoding)
{
    static constexpr std::array buttons = {ButtonRow{u"Reopen", &ExternalChangeBanner::onReopen},
                                           ButtonRow{u"Keep", &ExternalChangeBanner::onKeep},
                                           ButtonRow{u"Other…", &ExternalChangeBanner::onChoose}};
    static constexpr StateRow suggestion = {u"This looks like %@.", buttons};
    say(&suggestion, encoding);
}

void ExternalChangeBanner::say(const StateRow *row, const QString &filename)
{
    const QString sentence = row ? formatted(localized(row->sentence), filename) : QString();
    const auto buttons = row ? row->buttons : std::span<const ButtonRow>();
    // Buttons that stay the same stay: one of them may be pressed or have the focus.
    const auto shows = [](const QPushButton *shown, const ButtonRow &wanted) { return shown->text() == localized(wanted.title); };
    if (!std::ranges::equal(m_buttons, buttons, shows)) {
        const bool hadFocus = std::ranges::any_of(m_buttons, &QPushButton::hasFocus);
        for (QPushButton *button : std::exchange(m_buttons, {})) {
            // One of them may be what led here.
            button->hide();
            button->deleteLater();
        }
        for (const ButtonRow &button : buttons) {
            addButton(localized(button.title), button.callback);
        }
        if (hadFocus && !m_buttons.empty()) {
            m_buttons.front()->setFocus();
        }
    }
    if (m_label->text() != sentence) {
        m_label->setText(sentence);
        setAccessibleName(sentence);
        arrange();
        if (isVisible()) {
            announce(*m_label);
        }
    }
}

void ExternalChangeBanner::addButton(const QString &title, std::function<void()> ExternalChangeBanner::*callback)
{
    auto *button = new QPushButton(title, this);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, callback] {
        if (this->*callback) {
            (this->*callback)();
        }
    });
    m_buttonStack->addWidget(button);
    m_buttons.push_back(button);
}

void ExternalChangeBanner::applyTheme(const Theme &theme)
{
    QPalette colors = palette();
    const quint32 yellow = theme.isDark ? darkYellow : lightYellow;
    colors.setColor(QPalette::Window, QColor::fromRgb(blended(yellow, theme.background, theme.isDark ? 0.72 : 0.62)));
    colors.setColor(QPalette::WindowText, theme.isDark ? Qt::white : Qt::black);
    setPalette(colors);
}
