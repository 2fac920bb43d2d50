// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/ChangePanel.h"

#include "Base/Translation.h"
#include "Editor/BarColors.h"
#include "Editor/ChangeMarks.h"
#include "Widgets/AccessibleRole.h"
#include "Widgets/ElidedLabel.h"
#include "Widgets/FlatButton.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>

#include <algorithm>

namespace {

constexpr int margin = 8;
constexpr int symbolSide = 12;
/// Below the last row.
constexpr int slack = 4;

} // namespace

ChangePanel::ChangePanel(const TextView::Services &services, const QFont &font, QWidget *parent)
    : QFrame(parent), m_undoManager(m_storage, [&scheduler = services.scheduler] { return scheduler.now(); }), m_header(new QWidget(this)),
      m_title(new ElidedLabel(Qt::ElideRight, m_header)), m_restore(new QPushButton(localized(u"Restore"), m_header)),
      m_close(new FlatButton(m_header)), m_lines(new NumberedTextView(m_storage, m_undoManager, services, font, this)),
      m_theme(&Theme::light())
{
    setAccessibleRole(*this, QAccessible::Grouping);
    becomeNotice(*m_title);
    setFrameShape(QFrame::Box);
    setFrameShadow(QFrame::Plain);
    setAutoFillBackground(true);
    m_close->setSymbol(QStringLiteral("xmark"), symbolSide);
    m_close->setToolTip(localized(u"Close"));
    m_close->setAccessibleName(localized(u"Close"));
    m_close->setFocusPolicy(Qt::StrongFocus);
    m_header->setAutoFillBackground(true);
    auto *row = new QHBoxLayout(m_header);
    row->setContentsMargins(margin, margin / 2, margin / 2, margin / 2);
    row->addWidget(m_title, 1);
    row->addWidget(m_restore);
    row->addWidget(m_close);
    auto *stack = new QVBoxLayout(this);
    stack->setContentsMargins(1, 1, 1, 1);
    stack->setSpacing(0);
    stack->addWidget(m_header);
    stack->addWidget(m_lines, 1);
    m_lines->setFrameShape(QFrame::NoFrame);
    m_lines->setAccess(TextView::Access::readOnly);
    m_lines->setAccessibleName(localized(u"Lines as they were"));
    m_lines->ruler().setEditorFont(font);
    connect(m_restore, &QPushButton::clicked, this, &ChangePanel::restoreWanted);
    connect(m_close, &FlatButton::clicked, this, &ChangePanel::closeWanted);
    connect(new QShortcut(Qt::Key_Escape, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut), &QShortcut::activated, this,
            &ChangePanel::closeWanted);
}

ChangePanel::~ChangePanel()
{
    delete m_lines; // before the storage that it shows
}

void ChangePanel::setChange(const QString &title, LineChange::Kind kind, const Rope &base, TextRange lines)
{
    m_kind = kind;
    m_title->setText(title);
    setAccessibleName(title);
    // The break of the last line would show as an empty one.
    const bool hasBreak = lines.length > 0 && base.at(lines.end() - 1) == u'\n';
    const Rope shown = base.slice({lines.location, lines.length - (hasBreak ? 1 : 0)});
    {
        const UndoManager::Pause pause(m_undoManager);
        m_storage.apply({{0, m_storage.length()}, shown});
    }
    const qsizetype first = base.lineAt(lines.location);
    const auto last = numberOfLine(first + shown.lineCount() - 1);
    m_lines->ruler().setExplicitNumbers(
        LineNumberRulerView::Numbers{[first](qsizetype line) { return std::optional(numberOfLine(first + line)); }, last});
    m_lines->setSelection(TextSelection::at(0));
    m_lines->setScrollOffset(0);
    m_lines->setVisible(!lines.isEmpty());
    applyTheme(*m_theme);
}

void ChangePanel::setRestorable(bool isRestorable)
{
    m_restore->setEnabled(isRestorable);
}

void ChangePanel::applyTheme(const Theme &theme)
{
    m_theme = &theme;
    const BarColors bar = BarColors::of(theme);
    const quint32 color = changeColor(theme, m_kind);
    QPalette frame;
    frame.setColor(QPalette::WindowText, QColor::fromRgb(color));
    frame.setColor(QPalette::Window, QColor::fromRgb(theme.background));
    setPalette(frame);
    QPalette chrome;
    chrome.setColor(QPalette::Window, QColor::fromRgb(bar.ground));
    chrome.setColor(QPalette::WindowText, QColor::fromRgb(theme.foreground));
    chrome.setColor(QPalette::ButtonText, QColor::fromRgb(theme.foreground));
    m_title->setPalette(chrome);
    m_close->setPalette(chrome);
    m_header->setPalette(chrome);
    m_restore->setPalette(QPalette());
    m_lines->setPalette(chrome); // its scroll bars would have the frame's colour
    m_lines->setTheme(theme, NumberedTextView::CurrentLine::plain);
}

void ChangePanel::setFocusToButtons()
{
    QWidget *wanted = m_restore->isEnabled() ? static_cast<QWidget *>(m_restore) : m_close;
    wanted->setFocus(Qt::OtherFocusReason);
}

int ChangePanel::wantedHeight(int width) const
{
    const int header = m_header->sizeHint().height() + 2;
    if (m_lines->isHidden()) {
        return header;
    }
    const qsizetype rows = std::clamp<qsizetype>(m_storage.text().lineCount(), 1, mostRows);
    const double insets = 2 * m_lines->textViewport().insets().vertical;
    // The bar below long lines may not make one at the side needed.
    const double longest = double(m_storage.text().longestLine()) * m_lines->layoutManager().cellWidth();
    const bool mayScroll = longest > width - 2 * m_lines->ruler().thickness();
    const int bar = mayScroll ? m_lines->horizontalScrollBar()->sizeHint().height() : 0;
    return header + bar + slack + int(std::ceil(double(rows) * m_lines->layoutManager().rowHeight() + insets));
}

void ChangePanel::keyPressEvent(QKeyEvent *event)
{
    // Nothing that is pressed here is for the text behind.
    event->accept();
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && m_restore->hasFocus()) {
        m_restore->click();
    }
}

void ChangePanel::wheelEvent(QWheelEvent *event)
{
    event->accept();
}
