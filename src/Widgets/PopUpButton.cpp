// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/PopUpButton.h"

#include <QActionGroup>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto searchPause = 1000ms;
constexpr int chevronSide = 8;
constexpr int chevronGap = 3;

/// A title as a menu shows it unchanged.
QString menuText(QString title)
{
    return title.replace(u'&', u"&&"_s);
}

} // namespace

ChoiceMenu::ChoiceMenu(const Scheduler &scheduler, QWidget *parent) : QMenu(parent), m_scheduler(scheduler) {}

void ChoiceMenu::showEvent(QShowEvent *event)
{
    QMenu::showEvent(event);
    m_searched.clear();
    const QList<QAction *> entries = actions();
    const auto checked = std::ranges::find_if(entries, [](const QAction *entry) { return entry->isChecked(); });
    if (checked != entries.end()) {
        setActiveAction(*checked);
    }
}

void ChoiceMenu::keyPressEvent(QKeyEvent *event)
{
    const bool isText = !event->text().isEmpty() && event->text().front().isPrint() &&
                        !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (isText && search(event->text())) {
        event->accept();
        return;
    }
    QMenu::keyPressEvent(event);
}

bool ChoiceMenu::search(const QString &typed)
{
    const auto now = m_scheduler.now();
    if (now - m_lastKey > searchPause) {
        m_searched.clear();
    }
    // Alone it chooses the entry, as in any menu.
    if (m_searched.isEmpty() && typed == u" "_s) {
        return false;
    }
    m_lastKey = now;
    m_searched += typed;
    const bool isRepeated = std::ranges::all_of(m_searched, [this](QChar c) { return c.toLower() == m_searched.front().toLower(); });
    const QList<QAction *> entries = actions();
    const qsizetype current = entries.indexOf(activeAction());
    // A growing word may stay where it is, a first or repeated letter goes on to the next.
    const auto find = [&](const QString &start) {
        const qsizetype first = start.size() > 1 ? qMax<qsizetype>(current, 0) : current + 1;
        for (qsizetype step = 0; step < entries.size(); ++step) {
            QAction *entry = entries[(first + step) % entries.size()];
            if (entry->data().toString().startsWith(start, Qt::CaseInsensitive)) {
                setActiveAction(entry);
                return true;
            }
        }
        return false;
    };
    if (!find(m_searched) && isRepeated) {
        find(m_searched.first(1));
    }
    return true;
}

PopUpButton::PopUpButton(const Scheduler &scheduler, QWidget *parent)
    : FlatButton(parent), m_menu(new ChoiceMenu(scheduler, this)), m_group(new QActionGroup(this))
{
    setSymbol(u"chevron.down"_s, chevronSide);
    setPopupMode(QToolButton::InstantPopup);
    setMenu(m_menu);
    connect(m_group, &QActionGroup::triggered, this, [this](QAction *entry) {
        const int index = int(m_group->actions().indexOf(entry));
        // The mark is back at what is shown until somebody says otherwise.
        showMarks();
        emit chosen(index);
    });
}

void PopUpButton::setTitle(const QString &title)
{
    m_title = title;
    setToolTip(title);
    setAccessibleName(u"%1: %2"_s.arg(m_title, text()));
}

void PopUpButton::setChoices(const QStringList &titles)
{
    const bool isAsBefore = titles.size() == m_group->actions().size();
    for (QAction *entry : m_group->actions()) {
        delete entry;
    }
    for (const QString &title : titles) {
        auto *entry = new QAction(menuText(title), m_menu);
        entry->setCheckable(true);
        entry->setData(title);
        m_group->addAction(entry);
        m_menu->insertAction(m_separator, entry);
    }
    if (m_shownIndices) {
        showMarks();
    } else {
        setShownIndex(isAsBefore ? m_shownIndex : 0, m_shownText);
    }
}

QStringList PopUpButton::choices() const
{
    QStringList titles;
    for (const QAction *entry : m_group->actions()) {
        titles << entry->data().toString();
    }
    return titles;
}

void PopUpButton::separate()
{
    if (!m_separator) {
        m_separator = m_menu->addSeparator();
    }
}

void PopUpButton::addSubmenu(QMenu *menu)
{
    separate();
    menu->setParent(m_menu, menu->windowFlags());
    m_menu->addMenu(menu);
}

void PopUpButton::setCommand(const QString &title)
{
    if (!m_command) {
        separate();
        m_command = m_menu->addAction(QString());
        connect(m_command, &QAction::triggered, this, &PopUpButton::commandTriggered);
    }
    m_command->setText(menuText(title));
    m_command->setData(title);
}

void PopUpButton::setCommandEnabled(bool isEnabled)
{
    m_command->setEnabled(isEnabled);
}

void PopUpButton::setShownIndex(int index, const QString &text)
{
    m_shownIndex = index;
    m_shownText = text;
    showMarks();
    showTitle(text.isEmpty() ? m_group->actions().at(index)->data().toString() : text);
}

void PopUpButton::setShownIndices(const QList<int> &indices, const QString &text)
{
    m_group->setExclusionPolicy(QActionGroup::ExclusionPolicy::None);
    m_shownIndices = indices;
    showMarks();
    showTitle(text);
}

void PopUpButton::showMarks()
{
    const QList<QAction *> entries = m_group->actions();
    if (!m_shownIndices) {
        entries.at(m_shownIndex)->setChecked(true);
        return;
    }
    for (qsizetype index = 0; index < entries.size(); ++index) {
        entries[index]->setChecked(m_shownIndices->contains(int(index)));
    }
}

void PopUpButton::showTitle(const QString &title)
{
    if (title != text()) {
        setText(title);
        setAccessibleName(u"%1: %2"_s.arg(m_title, title));
    }
}

QSize PopUpButton::sizeHint() const
{
    return FlatButton::sizeHint() + QSize(chevronGap + chevronSide, 0);
}

void PopUpButton::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
    case Qt::Key_Up:
    case Qt::Key_Down:
        showMenu();
        break;
    default:
        FlatButton::keyPressEvent(event);
    }
}

void PopUpButton::paintEvent(QPaintEvent *event)
{
    FlatButton::paintEvent(event);
    QPainter painter(this);
    QRect place(0, 0, chevronSide, chevronSide);
    place.moveCenter(rect().center());
    place.moveRight(width() - textMargin);
    icon().paint(&painter, place);
}
