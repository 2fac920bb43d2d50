// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/ToolbarSettingsView.h"

#include "Base/Translation.h"
#include "Desktop/PaletteBlend.h"
#include "Settings/Preferences.h"
#include "UI/ToolbarAction.h"
#include "Widgets/SymbolIcon.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Logical pixels.
constexpr int rowHeight = 26;
constexpr int symbolSide = 18;
constexpr int leastListHeight = 160;
constexpr QSize listSize(430, 260);
/// How much of the text's colour the frames of boxes have.
constexpr double frameShare = 0.6;

/// Some styles frame the box of a row in a darker shade of the window's colour, which does not show on a dark list.
class ActionDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        const QColor ground = option->palette.color(QPalette::Base);
        const QColor text = option->palette.color(QPalette::Text);
        if (ground.lightness() < text.lightness()) {
            option->palette.setColor(QPalette::Window, blended(ground, text, frameShare));
        }
    }
};

/// As high as usual where there is room.
class ActionList final : public QListWidget {
public:
    [[nodiscard]] QSize sizeHint() const override { return listSize; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {listSize.width() / 2, leastListHeight}; }
};

} // namespace

ToolbarSettingsView::ToolbarSettingsView(SettingsForm &form, const SettingRow &row, Preferences &preferences)
    : QObject(&form), m_preferences(preferences), m_selection(preferences.value(Settings::toolbarItemIDs))
{
    addList(form, row);
    addButtons(form);
    reload();
}

void ToolbarSettingsView::addList(SettingsForm &form, const SettingRow &row)
{
    m_list = new ActionList;
    m_list->setItemDelegate(new ActionDelegate(m_list));
    m_list->setObjectName(row.controlName());
    m_list->setAccessibleName(localized(row.setting.details.title));
    m_list->setIconSize({symbolSide, symbolSide});
    m_list->setUniformItemSizes(true);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setDragDropMode(QAbstractItemView::InternalMove);
    m_list->setDefaultDropAction(Qt::MoveAction);
    form.addGap();
    form.addWideNote(localized(row.note), *m_list);
    form.addWide(*m_list);
    connect(m_list, &QListWidget::itemChanged, this, [this](const QListWidgetItem *item) {
        m_selection.setChosen(m_list->row(item), item->checkState() == Qt::Checked);
        store();
    });
    connect(m_list, &QListWidget::currentRowChanged, this, &ToolbarSettingsView::updateButtons);
    connect(m_list->model(), &QAbstractItemModel::rowsMoved, this,
            [this](const QModelIndex &, int first, int, const QModelIndex &, int before) { rowsMoved(first, before); });
    for (const auto &[key, step] : {std::pair(Qt::Key_Up, -1), std::pair(Qt::Key_Down, 1)}) {
        auto *shortcut = new QShortcut(QKeySequence(Qt::ALT | key), m_list);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, [this, step = step] { moveSelected(step); });
    }
}

void ToolbarSettingsView::addButtons(SettingsForm &form)
{
    const auto makeButton = [](QStringView name, const QString &title) {
        auto *button = new QPushButton(title);
        button->setObjectName(name.toString());
        button->setAutoDefault(false);
        return button;
    };
    m_moveUp = makeButton(u"moveUp", localized(u"Move Up"));
    m_moveDown = makeButton(u"moveDown", localized(u"Move Down"));
    QPushButton *restore = makeButton(u"restoreDefaults", localized(u"Restore Defaults"));
    auto *row = new QHBoxLayout;
    row->addWidget(m_moveUp);
    row->addWidget(m_moveDown);
    row->addStretch();
    row->addWidget(restore);
    form.addWide(*row);
    connect(m_moveUp, &QPushButton::clicked, this, [this] { moveSelected(-1); });
    connect(m_moveDown, &QPushButton::clicked, this, [this] { moveSelected(1); });
    connect(restore, &QPushButton::clicked, this, &ToolbarSettingsView::restoreDefaults);
}

void ToolbarSettingsView::refresh()
{
    ToolbarSelection stored(m_preferences.value(Settings::toolbarItemIDs));
    if (stored.ids() != m_selection.ids()) {
        m_selection = std::move(stored);
        reload();
    }
}

void ToolbarSettingsView::reload()
{
    const int current = m_list->currentRow();
    {
        const QSignalBlocker quiet(m_list);
        m_list->clear();
        for (const ToolbarSelection::Row &row : m_selection.rows()) {
            auto *item = new QListWidgetItem(symbolIcon(row.action->symbol()), localized(row.action->label), m_list);
            // Dropped on an item, a row would replace it.
            item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsDragEnabled);
            item->setCheckState(row.isChosen ? Qt::Checked : Qt::Unchecked);
            item->setSizeHint({0, std::max(rowHeight, m_list->fontMetrics().height() + rowHeight / 4)});
        }
        m_list->setCurrentRow(current);
    }
    updateButtons();
}

void ToolbarSettingsView::store()
{
    m_preferences.set(Settings::toolbarItemIDs, m_selection.ids());
}

void ToolbarSettingsView::moveSelected(int step)
{
    const int from = m_list->currentRow();
    const int to = from + step;
    if (from < 0 || to < 0 || to >= m_list->count()) {
        return;
    }
    // Before which row it comes, as they are before the move.
    m_list->model()->moveRow({}, from, {}, step > 0 ? to + 1 : to);
    m_list->scrollToItem(m_list->currentItem());
}

/// By whatever way; `to` as the model counts.
void ToolbarSettingsView::rowsMoved(int from, int to)
{
    if (m_selection.move(from, to > from ? to - 1 : to)) {
        store();
    }
    updateButtons();
}

void ToolbarSettingsView::restoreDefaults()
{
    for (const SettingRow &row : Settings::toolbarRows) {
        m_preferences.reset(row.setting);
    }
    m_selection = ToolbarSelection(m_preferences.value(Settings::toolbarItemIDs));
    reload();
}

void ToolbarSettingsView::updateButtons()
{
    const int row = m_list->currentRow();
    m_moveUp->setEnabled(row > 0);
    m_moveDown->setEnabled(row >= 0 && row + 1 < m_list->count());
}
