// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/FontDialog.h"

#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Widgets/DialogGrid.h"
#include "Widgets/Mnemonics.h"
#include "Widgets/WindowSize.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// Logical pixels.
constexpr QSize startSize(420, 440);
constexpr int sampleHeight = 84;

} // namespace

FontDialog::FontDialog(const FontPanel &panel, QWidget *window)
    : QDialog(window), m_families(new QListWidget), m_fixedOnly(new QCheckBox), m_size(new QDoubleSpinBox), m_sample(new QLabel)
{
    setWindowTitle(panel.title);
    m_families->setUniformItemSizes(true);
    m_families->setAccessibleName(localized(u"Font"));
    m_size->setLocale(Localization::current().locale());
    m_size->setRange(panel.leastSize, panel.greatestSize);
    m_size->setDecimals(1);
    m_size->setValue(panel.current.pointSize);
    m_sample->setText(u"function main() {\n    return 0O1lI == \"Äöü\";\n}"_s);
    m_sample->setTextFormat(Qt::PlainText);
    m_sample->setFixedHeight(sampleHeight);
    m_sample->setMargin(8);
    // What is too large is cut off, the dialog does not grow with it.
    m_sample->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_sample->setFrameShape(QFrame::StyledPanel);
    m_sample->setBackgroundRole(QPalette::Base);
    m_sample->setForegroundRole(QPalette::Text);
    m_sample->setAutoFillBackground(true);
    arrange();
    const bool isKnown = QFontDatabase::hasFamily(panel.current.family);
    m_fixedOnly->setChecked(!isKnown || QFontDatabase::isFixedPitch(panel.current.family));
    listFamilies(panel.current.family);
    connect(m_fixedOnly, &QCheckBox::toggled, this, [this] { listFamilies(chosen().family); });
    connect(m_families, &QListWidget::currentRowChanged, this, &FontDialog::update);
    connect(m_families, &QListWidget::itemActivated, this, &QDialog::accept);
    connect(m_size, &QDoubleSpinBox::valueChanged, this, &FontDialog::update);
    resize(sizeOnScreen(*this, startSize.expandedTo(minimumSizeHint())));
    m_families->setFocus();
}

void FontDialog::arrange()
{
    QString taken;
    const QStringList titles = withMnemonics({localized(u"Font:"), localized(u"Show only fixed-width fonts"), localized(u"Size:")}, taken);
    auto *familyTitle = new QLabel(titles[0]);
    familyTitle->setBuddy(m_families);
    m_fixedOnly->setText(titles[1]);
    auto *sizeTitle = new QLabel(titles[2]);
    sizeTitle->setBuddy(m_size);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    m_accept = buttons->button(QDialogButtonBox::Ok);
    DialogGrid::apply(*buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *families = new QVBoxLayout;
    families->setSpacing(DialogGrid::titleSpacing);
    families->addWidget(familyTitle);
    families->addWidget(m_families, 1);
    auto *sizes = new QHBoxLayout;
    sizes->setSpacing(DialogGrid::columnSpacing);
    sizes->addWidget(sizeTitle);
    sizes->addWidget(m_size);
    sizes->addStretch();
    auto *stack = new QVBoxLayout(this);
    DialogGrid::apply(*stack);
    stack->addLayout(families, 1);
    stack->addWidget(m_fixedOnly);
    stack->addLayout(sizes);
    stack->addWidget(m_sample);
    stack->addSpacing(DialogGrid::groupSpacing);
    stack->addWidget(buttons);
}

FontChoice FontDialog::chosen() const
{
    const QListWidgetItem *item = m_families->currentItem();
    return {.family = item ? item->text() : QString(), .pointSize = m_size->value()};
}

void FontDialog::listFamilies(const QString &current)
{
    m_families->clear();
    for (const QString &family : QFontDatabase::families()) {
        if (!QFontDatabase::isPrivateFamily(family) && (!m_fixedOnly->isChecked() || QFontDatabase::isFixedPitch(family))) {
            m_families->addItem(family);
        }
    }
    const QList<QListWidgetItem *> found = m_families->findItems(current, Qt::MatchFixedString);
    m_families->setCurrentItem(found.isEmpty() ? m_families->item(0) : found.first());
    m_families->scrollToItem(m_families->currentItem(), QAbstractItemView::PositionAtCenter);
    update();
}

void FontDialog::update()
{
    const FontChoice shown = chosen();
    m_accept->setEnabled(!shown.family.isEmpty());
    if (!shown.family.isEmpty()) {
        QFont font(shown.family);
        font.setPointSizeF(shown.pointSize);
        m_sample->setFont(font);
    }
}
