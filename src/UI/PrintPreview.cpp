// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/PrintPreview.h"

#include "Base/Translation.h"
#include "Settings/Preferences.h"
#include "Widgets/Mnemonics.h"
#include "Widgets/SymbolIcon.h"
#include "Widgets/WindowSize.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QToolButton>

#include <array>

using namespace Qt::StringLiterals;

namespace {

// Logical pixels.
constexpr QSize startSize(980, 760);
constexpr double pointsPerInch = 72;

struct ZoomRow {
    const char16_t *title;
    PageView::Fit fit;
    double factor = 1;
};
constexpr auto zooms = std::to_array<ZoomRow>({
    {u"Whole Page", PageView::Fit::page},
    {u"Page Width", PageView::Fit::width},
    {u"75 %", PageView::Fit::factor, 0.75},
    {u"100 %", PageView::Fit::factor, 1},
    {u"150 %", PageView::Fit::factor, 1.5},
    {u"200 %", PageView::Fit::factor, 2},
});

QSizeF dots(const QSizeF &points)
{
    return points * PageLayout::dotsPerInch / pointsPerInch;
}

} // namespace

PrintPreview::PrintPreview(Preferences &preferences, NotificationCenter &notifications, Workers &workers, const PrintSource &source,
                           QWidget *window)
    : QDialog(window), m_preferences(preferences), m_workers(workers),
      m_options(new PrintOptionsForm(preferences, notifications, PrintOptionsForm::Purpose::pages, source)), m_view(new PageView),
      m_previous(new QToolButton), m_next(new QToolButton), m_number(new QSpinBox), m_count(new QLabel)
{
    setObjectName(u"printPreview"_s);
    setWindowTitle(formatted(localized(u"Print Preview – %@"), source.text.title));
    setAttribute(Qt::WA_DeleteOnClose);
    arrange();
    connect(m_options, &PrintOptionsForm::selectionToggled, this, &PrintPreview::rebuild);
    m_view->onStep = [this](PageView::Step wanted) { return step(wanted); };
    connect(m_number, &QSpinBox::valueChanged, this, &PrintPreview::show);
    m_observer = notifications.observe(Preferences::didChange, nullptr, [this] { rebuild(); });
    rebuild();
    resize(sizeOnScreen(*this, startSize));
    m_view->setFocus();
}

void PrintPreview::arrange()
{
    auto *page = new QVBoxLayout;
    page->addWidget(m_view, 1);
    page->addLayout(makePageBar());
    auto *middle = new QHBoxLayout;
    m_options->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    middle->addWidget(m_options);
    middle->addLayout(page, 1);
    auto *stack = new QVBoxLayout(this);
    stack->addLayout(middle, 1);
    stack->addLayout(makeButtons());
}

QLayout *PrintPreview::makePageBar()
{
    struct StepRow {
        QToolButton *button;
        QLatin1StringView symbol;
        const char16_t *title;
        PageView::Step step;
    };
    for (const StepRow &row : {StepRow{m_previous, "chevron.left"_L1, u"Previous Page", PageView::Step::previous},
                               StepRow{m_next, "chevron.right"_L1, u"Next Page", PageView::Step::next}}) {
        row.button->setIcon(symbolIcon(row.symbol));
        row.button->setAutoRaise(true);
        row.button->setFocusPolicy(Qt::StrongFocus);
        row.button->setToolTip(localized(row.title));
        row.button->setAccessibleName(localized(row.title));
        connect(row.button, &QToolButton::clicked, this, [this, wanted = row.step] { step(wanted); });
    }
    m_number->setObjectName(u"pageNumber"_s);
    m_number->setKeyboardTracking(false);
    m_number->setButtonSymbols(QAbstractSpinBox::NoButtons);
    m_number->setAlignment(Qt::AlignRight);
    m_number->setAccessibleName(localized(u"Page"));
    auto *zoom = new FormPopUp;
    zoom->setObjectName(u"zoomPopUp"_s);
    zoom->setAccessibleName(localized(u"Size of the page"));
    for (const ZoomRow &row : zooms) {
        zoom->addItem(localized(row.title));
    }
    connect(zoom, &QComboBox::currentIndexChanged, this,
            [this](int index) { m_view->setFit(zooms[size_t(index)].fit, zooms[size_t(index)].factor); });
    auto *bar = new QHBoxLayout;
    bar->addStretch(1);
    bar->addWidget(m_previous);
    bar->addWidget(new QLabel(localized(u"Page")));
    bar->addWidget(m_number);
    bar->addWidget(m_count);
    bar->addWidget(m_next);
    bar->addStretch(1);
    bar->addWidget(zoom);
    return bar;
}

QLayout *PrintPreview::makeButtons()
{
    QString taken;
    const QStringList titles = withMnemonics({localized(u"Close"), localized(u"Export as PDF…"), localized(u"Print…")}, taken);
    auto *close = new QPushButton(titles[0]);
    auto *exporting = new QPushButton(titles[1]);
    auto *printing = new QPushButton(titles[2]);
    printing->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    connect(exporting, &QPushButton::clicked, this, &PrintPreview::exportRequested);
    connect(printing, &QPushButton::clicked, this, &PrintPreview::printRequested);
    m_options->markTitles(taken);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    for (QPushButton *button : {close, exporting, printing}) {
        buttons->addWidget(button);
    }
    return buttons;
}

/// With the place in the text that is seen, where that is among the pages found at once.
void PrintPreview::rebuild()
{
    const qsizetype place = m_starts.empty() ? 0 : m_starts[size_t(m_page - 1)];
    const PrintStyle style = printStyle(m_preferences);
    m_paper = printPaper(m_preferences);
    const QSizeF area = dots(m_paper.paintRect(QPageLayout::Point).size());
    m_painter = std::make_unique<PagePainter>(text(), style, area, PaperColors::Slab::pages);
    findPages(style, area);
    const auto behind = std::ranges::upper_bound(m_starts, place);
    const bool isFound = m_areAllKnown || behind != m_starts.end();
    show(isFound ? std::max(1, int(behind - m_starts.begin())) : 1);
}

void PrintPreview::findPages(const PrintStyle &style, QSizeF area)
{
    m_counting.cancel();
    const PageLayout &layout = m_painter->layout();
    m_starts = {layout.start()};
    qsizetype next = layout.page(layout.start()).next;
    for (; next < layout.end() && m_starts.size() < pagesAtOnce; next = layout.page(next).next) {
        m_starts.push_back(next);
    }
    m_areAllKnown = next >= layout.end();
    if (m_areAllKnown) {
        return;
    }
    std::vector<qsizetype> known = m_starts;
    known.push_back(next);
    // A layout of its own: fonts are not to be used by two threads.
    const auto find = [text = text(), style, area, known = std::move(known)](const std::stop_token &stop) {
        PrintProgress unseen;
        return pageStarts(PageLayout(text, style, area), stop, unseen, 0, known).value_or(std::vector<qsizetype>());
    };
    m_counting = BackgroundTask::start(m_workers, find, [this](const std::vector<qsizetype> &starts) {
        m_starts = starts;
        m_areAllKnown = true;
        show(m_page);
    });
}

bool PrintPreview::show(int page)
{
    const int before = m_page;
    m_page = std::clamp(page, 1, int(m_starts.size()));
    const auto count = m_areAllKnown ? std::optional(int(m_starts.size())) : std::nullopt;
    const QString name = count ? formatted(localized(u"Page %1$d of %2$d"), m_page, *count) : formatted(localized(u"Page %d"), m_page);
    m_view->setPage(
        m_paper,
        [this, count](QPainter &painter) {
            constexpr double scale = pointsPerInch / PageLayout::dotsPerInch;
            painter.scale(scale, scale);
            m_painter->paint(painter, m_starts[size_t(m_page - 1)], m_page, count);
        },
        name);
    updateBar();
    return m_page != before;
}

void PrintPreview::updateBar()
{
    const int known = int(m_starts.size());
    const QSignalBlocker blocker(m_number);
    m_number->setRange(1, known);
    m_number->setValue(m_page);
    m_count->setText(m_areAllKnown ? formatted(localized(u"of %d"), known) : localized(u"of …"));
    m_previous->setEnabled(m_page > 1);
    m_next->setEnabled(m_page < known);
}

bool PrintPreview::step(PageView::Step step)
{
    switch (step) {
    case PageView::Step::previous:
        return show(m_page - 1);
    case PageView::Step::next:
        return show(m_page + 1);
    case PageView::Step::first:
        return show(1);
    case PageView::Step::last:
        return show(int(m_starts.size()));
    }
    Q_UNREACHABLE();
}
