// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/MissingCharactersPanel.h"

#include "Base/Translation.h"
#include "Editor/EditorViewController.h"
#include "Files/CharacterSet.h"
#include "Model/TextDocument.h"
#include "Text/CharacterName.h"
#include "Text/LineIndex.h"
#include "Widgets/Mnemonics.h"
#include "Widgets/WindowSize.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize startSize(560, 320);
enum Column { lineColumn, columnColumn, characterColumn, nameColumn };
constexpr int rangeStart = Qt::UserRole;
constexpr int rangeLength = Qt::UserRole + 1;

char32_t characterIn(const Rope &text, TextRange range)
{
    const QString character = text.toString(range);
    const QList<uint> codePoints = character.toUcs4();
    return codePoints.isEmpty() ? 0 : codePoints.front();
}

} // namespace

std::vector<MissingCharacter> missingCharactersOf(const Rope &text, const CharacterSet &characters, size_t most)
{
    std::vector<MissingCharacter> all;
    for (const TextRange range : characters.missingIn(text, {0, text.length()}, most)) {
        const LineNumber line = LineIndex::lineNumber(range.location, text);
        all.push_back({.range = range,
                       .line = line,
                       .column = range.location - LineIndex::startOfLine(line, text) + 1,
                       .character = characterIn(text, range)});
    }
    return all;
}

MissingCharactersPanel::MissingCharactersPanel(Scheduler &scheduler, NotificationCenter &notifications, QWidget *window)
    : QDialog(window), m_scheduler(scheduler), m_notifications(notifications), m_summary(new QLabel(this)), m_list(new QTreeWidget(this))
{
    setWindowTitle(localized(u"Characters That Cannot Be Saved"));
    m_summary->setTextFormat(Qt::PlainText);
    m_summary->setWordWrap(true);
    m_list->setHeaderLabels({localized(u"Line"), localized(u"Column"), localized(u"Character"), localized(u"Name")});
    m_list->setAccessibleName(windowTitle());
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAllColumnsShowFocus(true);
    auto *buttons = new QDialogButtonBox(this);
    QString taken;
    const QStringList titles = withMnemonics({localized(u"Go to Text"), localized(u"Close")}, taken);
    QPushButton *show = buttons->addButton(titles[0], QDialogButtonBox::ActionRole);
    buttons->addButton(titles[1], QDialogButtonBox::RejectRole);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_summary);
    layout->addWidget(m_list, 1);
    layout->addWidget(buttons);
    resize(sizeOnScreen(*this, startSize));
    show->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(show, &QPushButton::clicked, this, &MissingCharactersPanel::goToText);
    connect(m_list, &QTreeWidget::currentItemChanged, this, [this](const QTreeWidgetItem *item) { goTo(item); });
    connect(m_list, &QTreeWidget::itemClicked, this, [this](const QTreeWidgetItem *item) { goTo(item); });
    connect(m_list, &QTreeWidget::itemActivated, this, &MissingCharactersPanel::goToText);
}

MissingCharactersPanel::~MissingCharactersPanel() = default;

void MissingCharactersPanel::showFor(EditorViewController &editor)
{
    if (m_editor != &editor) {
        if (m_editor) {
            disconnect(m_editor, nullptr, this, nullptr);
        }
        m_editor = &editor;
        connect(&editor, &QObject::destroyed, this, &QDialog::reject);
        m_observer = m_notifications.observe(TextDocument::didChangeMetadata, &editor.document(),
                                             [this] { m_updating = m_scheduler.after(updateDelay, [this] { update(); }); });
        disconnect(m_edits);
        m_edits = connect(&editor.document().storage(), &TextStorage::didProcessEditing, this,
                          [this] { m_updating = m_scheduler.after(updateDelay, [this] { update(); }); });
    }
    update();
    show();
    raise();
    activateWindow();
    m_list->setFocus();
    m_list->setCurrentItem(m_list->topLevelItem(0));
    goTo(m_list->topLevelItem(0));
}

void MissingCharactersPanel::update()
{
    m_updating.cancel();
    if (!m_editor || (isVisible() && !m_editor->document().encodingDetails().missing().characters())) {
        reject();
        return;
    }
    const TextDocument &document = m_editor->document();
    const CharacterSet *characters = document.encodingDetails().missing().characters();
    const auto found =
        characters ? missingCharactersOf(document.storage().text(), *characters, mostListed) : std::vector<MissingCharacter>();
    const QScopedValueRollback updating(m_isUpdating, true);
    const int current = m_list->indexOfTopLevelItem(m_list->currentItem());
    m_list->clear();
    for (const MissingCharacter &missing : found) {
        auto *item = new QTreeWidgetItem(m_list);
        item->setText(lineColumn, QString::number(qsizetype(missing.line)));
        item->setText(columnColumn, QString::number(missing.column));
        item->setText(characterColumn, document.storage().string(missing.range));
        item->setText(nameColumn, u"%1 %2"_s.arg(codePointName(missing.character), characterName(missing.character)));
        item->setData(lineColumn, rangeStart, missing.range.location);
        item->setData(lineColumn, rangeLength, missing.range.length);
    }
    for (const int column : {lineColumn, columnColumn, characterColumn}) {
        m_list->resizeColumnToContents(column);
    }
    m_list->setCurrentItem(m_list->topLevelItem(std::clamp(current, 0, std::max(m_list->topLevelItemCount() - 1, 0))));
    const qsizetype count = document.encodingDetails().missing().count().value_or(qsizetype(found.size()));
    m_summary->setText(
        formatted(localized(qsizetype(found.size()) < count ? u"“%@” has %d characters that %@ does not have. These are the first ones."
                                                            : u"“%@” has %d characters that %@ does not have."),
                  document.displayName(), count, displayName(document.encoding())));
}

void MissingCharactersPanel::goTo(const QTreeWidgetItem *item)
{
    if (!item || !m_editor || m_isUpdating) {
        return;
    }
    const qsizetype start = item->data(lineColumn, rangeStart).toLongLong();
    m_editor->textView().setSelection({start, start + item->data(lineColumn, rangeLength).toLongLong()}, TextView::Reveal::center);
}

void MissingCharactersPanel::goToText()
{
    if (!m_editor) {
        return;
    }
    goTo(m_list->currentItem());
    m_editor->window()->activateWindow();
    m_editor->textView().setFocus();
}
