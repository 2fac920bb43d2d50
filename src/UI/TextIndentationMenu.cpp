// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TextIndentationMenu.h"

#include "Base/Translation.h"
#include "Highlighting/Language.h"

#include <QActionGroup>

#include <algorithm>
#include <vector>

using Unit = Indentation::Unit;

namespace {

struct SourceRow {
    DocumentConventions::Source source;
    QStringView title;
};
constexpr auto sources = std::to_array<SourceRow>({
    {DocumentConventions::Source::user, u"Chosen for this text"},
    {DocumentConventions::Source::editorConfig, u"From .editorconfig"},
    {DocumentConventions::Source::text, u"Found in this text"},
    {DocumentConventions::Source::language, u"Usual for %@"},
    {DocumentConventions::Source::preference, u"From the settings"},
});
static_assert(std::ranges::all_of(sources, [](const SourceRow &row) { return &sources[size_t(row.source)] == &row; }));

struct ConversionRow {
    Unit unit;
    QStringView title;
};
constexpr auto conversions = std::to_array<ConversionRow>({
    {Unit::spaces, u"Convert to Spaces"},
    {Unit::tab, u"Convert to Tabs"},
});

} // namespace

QString titleOf(Indentation indentation)
{
    return formatted(localized(indentation.unit == Unit::spaces ? u"Spaces: %d" : u"Tabs: %d"), indentation.width);
}

QString titleOf(DocumentConventions::Source source, const Language &language)
{
    const QString title = localized(sources[size_t(source)].title);
    return source == DocumentConventions::Source::language ? formatted(title, language.name()) : title;
}

TextIndentationMenu::TextIndentationMenu(QWidget *parent) : QMenu(parent)
{
    retranslate();
}

void TextIndentationMenu::setChosen(std::optional<Indentation> indentation)
{
    if (m_chosen != indentation) {
        m_chosen = indentation;
        retranslate();
    }
}

void TextIndentationMenu::retranslate()
{
    setTitle(localized(u"This Text"));
    menuAction()->setData(title());
    clear();
    auto *group = new QActionGroup(this);
    std::vector<std::optional<Indentation>> offered{std::nullopt};
    offered.insert(offered.end(), indentationChoices.begin(), indentationChoices.end());
    if (std::ranges::find(offered, m_chosen) == offered.end()) {
        offered.push_back(m_chosen);
    }
    for (const std::optional<Indentation> choice : offered) {
        QAction *entry = addAction(choice ? titleOf(*choice) : localized(u"Automatic"), this, [this, choice] { emit chosen(choice); });
        entry->setCheckable(true);
        entry->setActionGroup(group);
        entry->setChecked(choice == m_chosen);
    }
    addSeparator();
    for (const ConversionRow &row : conversions) {
        addAction(localized(row.title), this, [this, unit = row.unit] { emit conversionChosen(unit); });
    }
}
