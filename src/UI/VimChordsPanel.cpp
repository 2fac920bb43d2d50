// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/VimChordsPanel.h"

#include "Base/Translation.h"
#include "Settings/Preferences.h"
#include "Vim/VimOptions.h"
#include "Widgets/DialogGrid.h"
#include "Widgets/Mnemonics.h"
#include "Widgets/WindowSize.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>

using namespace Qt::StringLiterals;

namespace {

// Logical pixels.
constexpr int columnSpacing = 28;
constexpr int rowSpacing = 6;

/// The arrow keys that do not choose lead from line to line.
class Table final : public QWidget {
protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Down) {
            focusNextChild();
        } else if (event->key() == Qt::Key_Up) {
            focusPreviousChild();
        } else {
            QWidget::keyPressEvent(event);
        }
    }
};

QString vimsUses(const VimChords::Chord &chord, const QString &between)
{
    QStringList uses{chord.commanding};
    if (!chord.inserting.isEmpty()) {
        uses << formatted(localized(u"while inserting: %@"), chord.inserting);
    }
    uses.removeAll(QString());
    return uses.join(between);
}

QRadioButton *makeChoice(QString text)
{
    return new QRadioButton(text.replace(u'&', u"&&"_s));
}

QLabel *makeHeading(const QString &text)
{
    auto *heading = new QLabel(text);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    return heading;
}

} // namespace

VimChordsPanel::VimChordsPanel(Preferences &preferences, NotificationCenter &notifications, QWidget *window)
    : QDialog(window), m_preferences(preferences), m_area(new QScrollArea)
{
    setObjectName(u"vimChordsPanel"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(localized(u"Control Keys"));
    auto *explanation = new QLabel(localized(u"While Vim keys are on, each of these keys does what it does in Vim or in Quillet’s menus."));
    explanation->setTextFormat(Qt::PlainText);
    explanation->setWordWrap(true);
    m_area->setFrameShape(QFrame::NoFrame);
    m_area->setWidgetResizable(true);
    m_area->setFocusPolicy(Qt::NoFocus);
    m_area->viewport()->setAutoFillBackground(false);
    auto *buttons = new QDialogButtonBox;
    QString taken;
    const QStringList titles = withMnemonics({localized(u"Restore Defaults"), localized(u"Close")}, taken);
    QPushButton *restore = buttons->addButton(titles[0], QDialogButtonBox::ResetRole);
    restore->setObjectName(u"restoreDefaults"_s);
    restore->setAutoDefault(false);
    buttons->addButton(titles[1], QDialogButtonBox::RejectRole)->setDefault(true);
    auto *stack = new QVBoxLayout(this);
    DialogGrid::apply(*stack);
    DialogGrid::apply(*buttons);
    stack->addWidget(explanation);
    stack->addSpacing(DialogGrid::titleSpacing);
    stack->addWidget(m_area, 1);
    stack->addSpacing(DialogGrid::groupSpacing);
    stack->addWidget(buttons);
    connect(restore, &QPushButton::clicked, this, [this] {
        VimChords chords = stored();
        chords.restore();
        store(chords);
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);
    connect(new QShortcut(Qt::CTRL | Qt::Key_W, this), &QShortcut::activated, this, &QWidget::close);
    m_observer = notifications.observe(Preferences::didChange, nullptr, [this] { refresh(); });
    refresh();
    m_choices.front().vim->setFocus();
    const int around = sizeHint().height() - m_area->sizeHint().height();
    resize(sizeOnScreen(*this, {sizeHint().width(), m_area->widget()->sizeHint().height() + around}));
}

VimChords VimChordsPanel::stored() const
{
    return VimChords(m_preferences.value(Settings::vimChords));
}

void VimChordsPanel::store(const VimChords &chords)
{
    m_preferences.set(Settings::vimChords, chords.entries());
}

void VimChordsPanel::refresh()
{
    if (auto chords = VimChords::all(VimOptions::of(m_preferences)); chords != m_chords) {
        m_chords = std::move(chords);
        makeTable();
    }
    const VimChords owners = stored();
    for (size_t index = 0; index < m_chords.size(); ++index) {
        const Choice &choice = m_choices[index];
        (owners.owner(m_chords[index].key) == VimChords::Owner::vim ? choice.vim : choice.quillet)->setChecked(true);
    }
}

void VimChordsPanel::makeTable()
{
    m_choices.clear();
    auto *table = new Table;
    auto *grid = new QGridLayout(table);
    grid->setContentsMargins(0, 0, DialogGrid::rowSpacing, 0);
    grid->setHorizontalSpacing(columnSpacing);
    grid->setVerticalSpacing(rowSpacing);
    grid->setColumnStretch(2, 1);
    const QString vim = localized(u"Vim");
    const QString quillet = u"Quillet"_s;
    grid->addWidget(makeHeading(vim), 0, 1);
    grid->addWidget(makeHeading(quillet), 0, 2);
    for (const VimChords::Chord &chord : m_chords) {
        const QString command = chord.quillet.isEmpty() ? localized(u"nothing") : chord.quillet;
        const Choice choice{makeChoice(vimsUses(chord, u"\n"_s)), makeChoice(command)};
        choice.vim->setAccessibleName(u"%1, %2: %3"_s.arg(chord.name, vim, vimsUses(chord, u", "_s)));
        choice.quillet->setAccessibleName(u"%1, %2: %3"_s.arg(chord.name, quillet, command));
        auto *group = new QButtonGroup(table);
        group->addButton(choice.vim);
        group->addButton(choice.quillet);
        const int row = grid->rowCount();
        grid->addWidget(new QLabel(chord.name), row, 0);
        grid->addWidget(choice.vim, row, 1);
        grid->addWidget(choice.quillet, row, 2);
        connect(choice.quillet, &QRadioButton::toggled, this, [this, key = chord.key](bool isQuillets) {
            VimChords chords = stored();
            const auto owner = isQuillets ? VimChords::Owner::quillet : VimChords::Owner::vim;
            if (chords.owner(key) != owner) {
                chords.setOwner(key, owner);
                store(chords);
            }
        });
        m_choices.push_back(choice);
    }
    grid->setRowStretch(grid->rowCount(), 1);
    // It takes the place of the one before.
    m_area->setWidget(table);
    table->setAutoFillBackground(false);
    const int wanted = table->sizeHint().width() + m_area->verticalScrollBar()->sizeHint().width();
    m_area->setMinimumWidth(sizeOnScreen(*this, {wanted + 2 * DialogGrid::margin, 0}).width() - 2 * DialogGrid::margin);
}
