// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/WidgetAlertPresenter.h"

#include "Base/Translation.h"
#include "Widgets/ChoiceDialog.h"
#include "Widgets/DialogGrid.h"
#include "Widgets/FilePanel.h"
#include "Widgets/FontDialog.h"
#include "Widgets/GroupsDialog.h"
#include "Widgets/Mnemonics.h"
#include "Widgets/SymbolIcon.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QWindow>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

struct StyleIcon {
    /// Has the desktop's icon, and its sound.
    QMessageBox::Icon icon;
    QLatin1StringView themeIcon;
    /// Where the desktop has none.
    QLatin1StringView symbol;
    QRgb color;
};

/// Has an icon, and its message stands out.
enum class Report { no, yes };

/// Logical pixels.
constexpr int narrowestTextField = 260;
constexpr int usualLine = 360;
constexpr int widestLine = 760;
/// What the toolkit leaves free beside a box, on screens that are wider than small ones.
constexpr int roomBesideBox = 480;
constexpr int smallScreen = 1024;

/// In the order of AlertStyle.
constexpr std::array styleIcons = {
    StyleIcon{QMessageBox::Information, "dialog-information"_L1, "info.circle"_L1, 0xFF2F7FD1},
    StyleIcon{QMessageBox::Warning, "dialog-warning"_L1, "exclamationmark.triangle"_L1, 0xFFD98E04},
    StyleIcon{QMessageBox::Critical, "dialog-error"_L1, "xmark.octagon"_L1, 0xFFC9302C},
};

void setStyle(QMessageBox &box, AlertStyle style, Report report)
{
    const StyleIcon &row = styleIcons[size_t(style)];
    box.setIcon(row.icon);
    if (report == Report::no) {
        box.setIconPixmap({});
        return;
    }
    if (!QIcon::hasThemeIcon(row.themeIcon)) {
        const int side = box.style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &box);
        box.setIconPixmap(symbolIcon(row.symbol, QColor::fromRgba(row.color)).pixmap({side, side}, box.devicePixelRatioF()));
    }
    if (auto *message = box.findChild<QLabel *>(u"qt_msgbox_label"_s)) {
        QFont font = message->font();
        font.setBold(true);
        message->setFont(font);
    }
}

QMessageBox::ButtonRole roleOf(AlertButtonRole role)
{
    switch (role) {
    case AlertButtonRole::normal:
        return QMessageBox::AcceptRole;
    case AlertButtonRole::cancel:
        return QMessageBox::RejectRole;
    case AlertButtonRole::destructive:
        return QMessageBox::DestructiveRole;
    }
    return QMessageBox::InvalidRole;
}

/// A file's name may hold anything; only its text is shown, never markup.
QString asPlainText(QString text)
{
    return text.remove(QChar(u'\0'));
}

/// Keeps the text from being broken after a few words; one that has lines of its own, such as a list, from being broken at all if that
/// can be helped.
void widenText(const QMessageBox &box)
{
    auto *text = box.findChild<QLabel *>(u"qt_msgbox_informativelabel"_s);
    if (!text) {
        return;
    }
    const bool hasLines = text->text().contains(u'\n');
    const int screen = box.screen()->availableSize().width();
    const int widest = std::min(hasLines ? widestLine : usualLine, screen * 3 / 4);
    text->setMinimumWidth(std::min(text->fontMetrics().size(0, text->text()).width() + 1, widest));
    // The box cuts off what would make it wider than it allows itself to be.
    const int excess = box.layout()->totalMinimumSize().width() - (screen > smallScreen ? screen - roomBesideBox : screen);
    text->setMinimumWidth(text->minimumWidth() - std::max(excess, 0));
}

/// Adds the buttons; answers with them in the order of the alert, which is not the order in which the desktop lays them out.
QList<QAbstractButton *> addButtons(QMessageBox &box, const Alert &alert)
{
    QList<QAbstractButton *> buttons;
    QStringList titles;
    std::ranges::transform(alert.buttons, std::back_inserter(titles), &AlertButton::title);
    QString taken;
    titles = withMnemonics(titles, taken);
    for (const AlertButton &button : alert.buttons) {
        QPushButton *added = box.addButton(titles.takeFirst(), roleOf(button.role));
        if (button.role == AlertButtonRole::cancel) {
            box.setEscapeButton(added);
        }
        buttons.append(added);
    }
    if (buttons.isEmpty()) {
        buttons.append(box.addButton(localized(u"OK"), QMessageBox::AcceptRole));
    }
    if (alert.buttons.isEmpty() || alert.buttons.first().role != AlertButtonRole::destructive) {
        box.setDefaultButton(qobject_cast<QPushButton *>(buttons.first()));
    } else if (auto *cancel = qobject_cast<QPushButton *>(box.escapeButton())) {
        box.setDefaultButton(cancel);
    }
    return buttons;
}

/// Puts a line to fill in below the texts.
QLineEdit *addTextField(QMessageBox &box, const Alert::TextField &field)
{
    auto *edit = new QLineEdit(field.text, &box);
    edit->setPlaceholderText(field.placeholder);
    edit->setAccessibleName(field.placeholder);
    edit->setMinimumWidth(narrowestTextField);
    edit->selectAll();
    auto *grid = qobject_cast<QGridLayout *>(box.layout());
    const int buttonRow = grid->rowCount() - 1;
    QLayoutItem *buttons = nullptr;
    for (int index = 0; index < grid->count(); ++index) {
        int row = 0;
        int column = 0;
        int rows = 0;
        int columns = 0;
        grid->getItemPosition(index, &row, &column, &rows, &columns);
        if (row == buttonRow) {
            buttons = grid->takeAt(index);
            break;
        }
    }
    // Above the field that it names, not where it would stand beside a picture.
    if (auto *message = box.findChild<QLabel *>(u"qt_msgbox_label"_s)) {
        message->setBuddy(edit);
        message->setIndent(0);
        message->setContentsMargins({});
        grid->removeWidget(message);
        grid->addWidget(message, 0, 0, 1, grid->columnCount());
    }
    grid->addWidget(edit, buttonRow, 0, 1, grid->columnCount());
    if (buttons) {
        grid->addItem(buttons, buttonRow + 1, 0, 1, grid->columnCount());
    }
    edit->setFocus();
    return edit;
}

/// Calls `action` from the event loop when `window` has been painted.
class FirstPaint final : public QObject {
public:
    FirstPaint(QWidget *window, std::function<void()> action) : QObject(window), m_action(std::move(action))
    {
        window->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            watched->removeEventFilter(this);
            QMetaObject::invokeMethod(
                this, [this] { finish(); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    void finish()
    {
        m_action();
        deleteLater();
    }

    std::function<void()> m_action;
};

bool isOnScreen(const QWidget *window)
{
    const QWindow *handle = window->window()->windowHandle();
    return handle && handle->isExposed();
}

} // namespace

void WidgetAlertPresenter::present(const Alert &alert, QWidget *window, AlertCompletion completion)
{
    if (!alert.groups.empty()) {
        auto *dialog = new GroupsDialog(alert, window);
        QObject::connect(dialog, &QDialog::finished, &m_context, [completion = std::move(completion)] {
            if (completion) {
                completion({});
            }
        });
        enqueue(dialog, window);
        return;
    }
    auto *box = new QMessageBox(window);
    // What asks for a line to fill in reports nothing; it is called by what it does, and says beside the line what to fill in.
    const bool hasFieldTitle = alert.textField && !alert.informativeText.isEmpty();
    setStyle(*box, alert.style, alert.textField ? Report::no : Report::yes);
    if (alert.textField) {
        box->setWindowTitle(asPlainText(alert.messageText));
    }
    box->setText(asPlainText(hasFieldTitle ? alert.informativeText : alert.messageText));
    box->setInformativeText(hasFieldTitle ? QString() : asPlainText(alert.informativeText));
    // The box itself would have it for the first text only.
    for (QLabel *label : box->findChildren<QLabel *>()) {
        label->setTextFormat(Qt::PlainText);
    }
    widenText(*box);
    const QList<QAbstractButton *> buttons = addButtons(*box, alert);
    const QLineEdit *edit = alert.textField ? addTextField(*box, *alert.textField) : nullptr;
    box->layout()->setContentsMargins(DialogGrid::margin, DialogGrid::margin, DialogGrid::margin, DialogGrid::margin);
    const int cancelAnswer = alert.cancelAnswer();
    QObject::connect(box, &QDialog::finished, &m_context, [box, buttons, edit, cancelAnswer, completion = std::move(completion)] {
        // Closed by the window manager, there is no button.
        const qsizetype place = buttons.indexOf(box->clickedButton());
        const int answer = place < 0 ? cancelAnswer : AlertReply::firstButton + int(place);
        if (completion) {
            completion({.button = answer, .text = edit ? edit->text() : QString()});
        }
    });
    enqueue(box, window);
}

void WidgetAlertPresenter::present(const OpenPanel &panel, QWidget *window, OpenCompletion completion)
{
    auto *dialog = new FilePanel(*this, m_portal, window, panel.title, QFileDialog::AcceptOpen);
    switch (panel.choice) {
    case OpenPanel::Choice::file:
        dialog->setFileMode(QFileDialog::ExistingFile);
        break;
    case OpenPanel::Choice::files:
        dialog->setFileMode(QFileDialog::ExistingFiles);
        break;
    case OpenPanel::Choice::folder:
        dialog->setFileMode(QFileDialog::Directory);
        dialog->setOption(QFileDialog::ShowDirsOnly);
        break;
    }
    dialog->setStartFolder(panel.startFolder);
    dialog->setPrompt(panel.prompt);
    QObject::connect(dialog, &QDialog::finished, &m_context, [dialog, completion = std::move(completion)](int result) {
        completion(result == QDialog::Accepted ? dialog->chosenPaths() : QStringList());
    });
    enqueue(dialog, window);
}

void WidgetAlertPresenter::present(const SavePanel &panel, QWidget *window, SaveCompletion completion)
{
    auto *dialog = new FilePanel(*this, m_portal, window, panel.title, QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setStartFolder(panel.startFolder);
    dialog->setSuggestedName(panel.suggestedName);
    QObject::connect(dialog, &QDialog::finished, &m_context, [dialog, completion = std::move(completion)](int result) {
        const QStringList paths = dialog->chosenPaths();
        completion(result == QDialog::Accepted && !paths.isEmpty() ? std::optional(paths.first()) : std::nullopt);
    });
    enqueue(dialog, window);
}

void WidgetAlertPresenter::present(const FontPanel &panel, QWidget *window, FontCompletion completion)
{
    auto *dialog = new FontDialog(panel, window);
    QObject::connect(dialog, &QDialog::finished, &m_context, [dialog, completion = std::move(completion)](int result) {
        completion(result == QDialog::Accepted ? std::optional(dialog->chosen()) : std::nullopt);
    });
    enqueue(dialog, window);
}

void WidgetAlertPresenter::present(const ChoicePanel &panel, QWidget *window, ChoiceCompletion completion)
{
    auto *dialog = new ChoiceDialog(panel, window);
    QObject::connect(dialog, &QDialog::finished, &m_context,
                     [dialog, completion = std::move(completion)] { completion(dialog->chosen()); });
    enqueue(dialog, window);
}

void WidgetAlertPresenter::beep()
{
    QApplication::beep();
}

void WidgetAlertPresenter::enqueue(QDialog *dialog, QWidget *window)
{
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    if (!window) {
        dialog->setWindowModality(Qt::NonModal);
        dialog->show();
        return;
    }
    dialog->setWindowModality(Qt::WindowModal);
    QObject::connect(dialog, &QDialog::finished, &m_context, [this, window] { openNext(window); });
    if (!m_queues.contains(window)) {
        QObject::connect(window, &QObject::destroyed, &m_context, [this, window] { m_queues.remove(window); });
    }
    QList<QDialog *> &queue = m_queues[window];
    queue.append(dialog);
    if (queue.size() == 1) {
        openFirst(window);
    }
}

void WidgetAlertPresenter::openFirst(QWidget *window)
{
    const QList<QDialog *> queue = m_queues.value(window);
    if (queue.isEmpty()) {
        return;
    }
    if (isOnScreen(window)) {
        queue.first()->open();
        return;
    }
    // Where a dialog belongs is known when its window has its place.
    new FirstPaint(window, [this, window, context = QPointer(&m_context)] {
        if (context) {
            openFirst(window);
        }
    });
}

void WidgetAlertPresenter::openNext(QWidget *window)
{
    if (const auto queue = m_queues.find(window); queue != m_queues.end() && !queue->isEmpty()) {
        queue->removeFirst();
        openFirst(window);
    }
}
