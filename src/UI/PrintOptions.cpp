// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/PrintOptions.h"

#include "Base/Translation.h"
#include "Settings/Preferences.h"

#include <QCheckBox>
#include <QLocale>
#include <QPageSize>

#include <array>
#include <set>

using namespace Qt::StringLiterals;

namespace {

/// Millimetres.
constexpr double margin = 15;

struct PaperRow {
    QPageSize::PageSizeId id;
    const char16_t *title;
};
constexpr auto papers = std::to_array<PaperRow>({
    {QPageSize::A3, u"A3"},
    {QPageSize::A4, u"A4"},
    {QPageSize::A5, u"A5"},
    {QPageSize::Letter, u"US Letter"},
    {QPageSize::Legal, u"US Legal"},
});

/// Where people print on other paper than A4.
constexpr auto letterCountries =
    std::to_array({QLocale::UnitedStates, QLocale::Canada, QLocale::Mexico, QLocale::Belize, QLocale::Chile, QLocale::Colombia,
                   QLocale::CostaRica, QLocale::ElSalvador, QLocale::Guatemala, QLocale::Nicaragua, QLocale::Panama, QLocale::Philippines,
                   QLocale::PuertoRico, QLocale::Venezuela});

QPageSize::PageSizeId usualPaper()
{
    const QLocale locale = QLocale::system();
    // Without a language and country the toolkit takes the United States.
    const bool isLetter =
        locale.language() != QLocale::C && std::ranges::find(letterCountries, locale.territory()) != letterCountries.end();
    return isLetter ? QPageSize::Letter : QPageSize::A4;
}

const PaperRow *paperRow(QPageSize::PageSizeId id)
{
    const auto *const row = std::ranges::find(papers, id, &PaperRow::id);
    return row == papers.end() ? nullptr : row;
}

std::vector<SettingControls::Choice> paperChoices()
{
    std::vector<SettingControls::Choice> choices{
        {formatted(localized(u"Automatic (%@)"), localized(paperRow(usualPaper())->title)), QString()}};
    for (const PaperRow &row : papers) {
        choices.push_back({localized(row.title), QPageSize::key(row.id)});
    }
    return choices;
}

/// What a form of that purpose leaves out.
std::set<const AnySetting *> leftOut(PrintOptionsForm::Purpose purpose)
{
    switch (purpose) {
    case PrintOptionsForm::Purpose::pages:
        return {};
    case PrintOptionsForm::Purpose::webPage:
        return {&Settings::printPaper, &Settings::printLandscape, &Settings::printFontSize, &Settings::printHeader};
    case PrintOptionsForm::Purpose::printer:
        return {&Settings::printPaper, &Settings::printLandscape};
    }
    Q_UNREACHABLE();
}

} // namespace

PrintStyle printStyle(const Preferences &preferences)
{
    return {.fontSize = preferences.value(Settings::printFontSize),
            .hasLineNumbers = preferences.value(Settings::printLineNumbers),
            .hasHeader = preferences.value(Settings::printHeader),
            .hasColors = preferences.value(Settings::printColors)};
}

QPageLayout printPaper(const Preferences &preferences)
{
    const QString key = preferences.value(Settings::printPaper);
    const auto *const row = std::ranges::find(papers, key, [](const PaperRow &paper) { return QPageSize::key(paper.id); });
    return {QPageSize(row == papers.end() ? usualPaper() : row->id),
            preferences.value(Settings::printLandscape) ? QPageLayout::Landscape : QPageLayout::Portrait,
            QMarginsF(margin, margin, margin, margin), QPageLayout::Millimeter};
}

void rememberPaper(const QPageLayout &paper, Preferences &preferences)
{
    const QPageLayout before = printPaper(preferences);
    if (paper.orientation() != before.orientation()) {
        preferences.set(Settings::printLandscape, paper.orientation() == QPageLayout::Landscape);
    }
    const QPageSize::PageSizeId id = paper.pageSize().id();
    if (id != before.pageSize().id() && paperRow(id)) {
        preferences.set(Settings::printPaper, id == usualPaper() ? QString() : QPageSize::key(id));
    }
}

PrintOptionsForm::PrintOptionsForm(Preferences &preferences, NotificationCenter &notifications, Purpose purpose, const PrintSource &source,
                                   QWidget *parent)
    : SettingsForm(parent), m_source(source), m_controls(preferences, {})
{
    const std::set<const AnySetting *> absent = leftOut(purpose);
    for (const SettingRow &row : Settings::paperRows) {
        if (&row.setting == &Settings::printPaper && !absent.contains(&row.setting)) {
            m_controls.addChoices(*this, row, paperChoices());
        } else if (!absent.contains(&row.setting)) {
            m_controls.add(*this, row);
        }
    }
    if (purpose != Purpose::printer && !source.selection.isEmpty()) {
        addGap();
        m_selectionOnly = new QCheckBox(localized(u"Only the selection"));
        m_selectionOnly->setObjectName(u"selectionOnly"_s);
        connect(m_selectionOnly, &QCheckBox::toggled, this, &PrintOptionsForm::selectionToggled);
        addControl(*m_selectionOnly);
    }
    finish();
    m_controls.refresh();
    m_observer = notifications.observe(Preferences::didChange, nullptr, [this] { m_controls.refresh(); });
}

PrintedText PrintOptionsForm::text() const
{
    return m_selectionOnly && m_selectionOnly->isChecked() ? m_source.selected() : m_source.text;
}
