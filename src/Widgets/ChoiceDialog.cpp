// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/ChoiceDialog.h"

#include "Base/Translation.h"
#include "Widgets/Mnemonics.h"
#include "Widgets/WindowSize.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr QSize startSize(640, 420);

} // namespace

ChoiceDialog::ChoiceDialog(const ChoicePanel &panel, QWidget *window) : QDialog(window), m_list(new QTreeWidget(this))
{
    setWindowTitle(panel.title);
    auto *message = new QLabel(panel.message, this);
    message->setTextFormat(Qt::PlainText);
    message->setWordWrap(true);
    message->setBuddy(m_list);
    m_list->setHeaderLabels({panel.choiceTitle, panel.detailTitle});
    m_list->setAccessibleName(panel.title);
    m_list->setRootIsDecorated(false);
    m_list->setAllColumnsShowFocus(true);
    m_list->setAlternatingRowColors(true);
    for (const ChoicePanel::Choice &choice : panel.choices) {
        auto *item = new QTreeWidgetItem(m_list, {choice.title, choice.detail});
        item->setTextAlignment(0, Qt::AlignTop | Qt::AlignLeft);
        item->setDisabled(!choice.isEnabled);
    }
    m_list->resizeColumnToContents(0);
    m_list->setCurrentItem(m_list->topLevelItem(panel.current));
    auto *buttons = new QDialogButtonBox(this);
    QString taken;
    const QStringList titles = withMnemonics({panel.prompt, localized(u"Cancel")}, taken);
    QPushButton *accept = buttons->addButton(titles[0], QDialogButtonBox::AcceptRole);
    buttons->addButton(titles[1], QDialogButtonBox::RejectRole);
    accept->setDefault(true);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(message);
    layout->addWidget(m_list, 1);
    layout->addWidget(buttons);
    resize(sizeOnScreen(*this, startSize));
    m_list->setFocus();
    connect(buttons, &QDialogButtonBox::accepted, this, &ChoiceDialog::take);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QTreeWidget::itemClicked, this, &ChoiceDialog::take);
}

void ChoiceDialog::take()
{
    QTreeWidgetItem *item = m_list->currentItem();
    if (item && !item->isDisabled()) {
        m_chosen = m_list->indexOfTopLevelItem(item);
        accept();
    }
}
