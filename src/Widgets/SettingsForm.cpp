// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/SettingsForm.h"

#include "Desktop/PaletteBlend.h"
#include "Widgets/DialogGrid.h"
#include "Widgets/InterfaceFont.h"
#include "Widgets/Mnemonics.h"

#include <QAbstractButton>
#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QScrollBar>
#include <QStyle>
#include <QWheelEvent>

#include <algorithm>

namespace {

// Logical pixels.
using DialogGrid::columnSpacing;
using DialogGrid::margin;
using DialogGrid::rowSpacing;
constexpr int spaceAboveNote = 2;
constexpr int spaceBelowNote = 4;
constexpr int leastHeight = 160;
/// Of a page, in letters: what is longer makes it wider.
constexpr int usualWidth = 76;
/// How much of the text's colour notes have.
constexpr double noteShare = 0.72;

/// Wrapped, smaller and fainter than the rest.
class NoteLabel final : public QLabel {
public:
    explicit NoteLabel(const QString &text) : QLabel(text)
    {
        setTextFormat(Qt::PlainText);
        setWordWrap(true);
        applyLook();
    }

protected:
    bool event(QEvent *event) override
    {
        const QEvent::Type type = event->type();
        if (type == QEvent::PaletteChange || type == QEvent::ApplicationFontChange) {
            applyLook();
        }
        return QLabel::event(event);
    }

private:
    void applyLook()
    {
        setFont(scaledFont(QApplication::font("QLabel"), TextSize::status));
        const QPalette desktop = QApplication::palette("QLabel");
        const QColor color = blended(desktop.color(QPalette::Window), desktop.color(QPalette::WindowText), noteShare);
        // Setting it reports a change again.
        if (palette().color(QPalette::WindowText) != color) {
            QPalette own;
            own.setColor(QPalette::WindowText, color);
            setPalette(own);
        }
    }
};

} // namespace

FormPopUp::FormPopUp(QWidget *parent) : QComboBox(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
}

void FormPopUp::keyPressEvent(QKeyEvent *event)
{
    if (!event->text().isEmpty() && (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))) {
        event->ignore();
        return;
    }
    QComboBox::keyPressEvent(event);
}

void FormPopUp::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

SettingsForm::SettingsForm(QWidget *parent) : QWidget(parent), m_grid(new QGridLayout(this))
{
    m_grid->setContentsMargins(margin, margin - rowSpacing, margin, margin);
    m_grid->setHorizontalSpacing(columnSpacing);
    // Every row has its own above it: a note is nearer to its control than the next control is.
    m_grid->setVerticalSpacing(0);
    m_grid->setColumnStretch(1, 1);
}

int SettingsForm::indentOf(Level level) const
{
    const int step = style()->pixelMetric(QStyle::PM_IndicatorWidth) + style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing);
    return level == Level::below ? step : 0;
}

void SettingsForm::addRow(const QString &label, QWidget &control)
{
    auto *row = new QHBoxLayout;
    row->addWidget(&control);
    row->addStretch();
    addRow(label, *row, control);
}

void SettingsForm::addRow(const QString &label, QLayout &row, QWidget &control)
{
    auto *title = new QLabel(label);
    title->setBuddy(&control);
    row.setContentsMargins(0, rowSpacing, 0, 0);
    row.setSpacing(columnSpacing);
    title->setContentsMargins(0, rowSpacing, 0, 0);
    m_grid->addWidget(title, m_row, 0, Qt::AlignRight | Qt::AlignVCenter);
    m_grid->addLayout(&row, m_row, 1);
    ++m_row;
}

void SettingsForm::addControl(QWidget &control, Level level)
{
    auto *row = new QHBoxLayout;
    row->setContentsMargins(indentOf(level), rowSpacing, 0, 0);
    row->addWidget(&control);
    row->addStretch();
    m_grid->addLayout(row, m_row++, 1);
}

QLabel &SettingsForm::addNote(const QString &text, QWidget &control, Level level)
{
    const bool isBox = qobject_cast<QAbstractButton *>(&control) && static_cast<QAbstractButton &>(control).isCheckable();
    auto *note = new NoteLabel(text);
    note->setContentsMargins(indentOf(level) + (isBox ? indentOf(Level::below) : 0), spaceAboveNote, 0, spaceBelowNote);
    m_grid->addWidget(note, m_row++, 1);
    control.setAccessibleDescription(text);
    return *note;
}

void SettingsForm::addWideNote(const QString &text, QWidget &widget)
{
    m_grid->addWidget(new NoteLabel(text), m_row++, 0, 1, 2);
    widget.setAccessibleDescription(text);
}

void SettingsForm::addWide(QWidget &widget)
{
    m_grid->setRowMinimumHeight(m_row++, rowSpacing);
    m_grid->addWidget(&widget, m_row, 0, 1, 2);
    m_grid->setRowStretch(m_row++, 1);
    m_hasTallRow = true;
}

void SettingsForm::addWide(QLayout &row)
{
    row.setContentsMargins(0, rowSpacing, 0, 0);
    row.setSpacing(columnSpacing);
    m_grid->addLayout(&row, m_row++, 0, 1, 2);
}

void SettingsForm::addGap()
{
    m_grid->setRowMinimumHeight(m_row++, DialogGrid::groupSpacing);
}

void SettingsForm::finish()
{
    if (!m_hasTallRow) {
        m_grid->setRowStretch(m_row, 1);
    }
}

void SettingsForm::markTitles(QString taken)
{
    std::vector<QLabel *> labels;
    std::vector<QAbstractButton *> buttons;
    QStringList titles;
    for (QLabel *label : findChildren<QLabel *>()) {
        if (label->buddy()) {
            labels.push_back(label);
            titles << label->text();
        }
    }
    for (QAbstractButton *button : findChildren<QAbstractButton *>()) {
        if (!button->text().isEmpty()) {
            buttons.push_back(button);
            titles << button->text();
        }
    }
    titles = withMnemonics(titles, taken);
    for (QLabel *label : labels) {
        label->setText(titles.takeFirst());
    }
    for (QAbstractButton *button : buttons) {
        button->setText(titles.takeFirst());
    }
}

SettingsPage::SettingsPage(SettingsForm &form) : m_form(form)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setWidget(&form);
    // The ground is that of the tabs.
    viewport()->setAutoFillBackground(false);
    form.setAutoFillBackground(false);
}

QSize SettingsPage::sizeHint() const
{
    const int width = std::max(fontMetrics().averageCharWidth() * usualWidth, m_form.minimumSizeHint().width());
    const QLayout &layout = *m_form.layout();
    return {width, layout.hasHeightForWidth() ? layout.totalHeightForWidth(width) : layout.totalSizeHint().height()};
}

QSize SettingsPage::minimumSizeHint() const
{
    return {m_form.minimumSizeHint().width() + verticalScrollBar()->sizeHint().width(), leastHeight};
}
