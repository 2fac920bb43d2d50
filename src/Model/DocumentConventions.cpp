// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/DocumentConventions.h"

#include "Highlighting/Language.h"
#include "Settings/Preferences.h"
#include "Text/TextStorage.h"

void DocumentConventions::choose(std::optional<Indentation> indentation)
{
    m_chosen = indentation;
    m_services.changed();
}

void DocumentConventions::noteText()
{
    m_ofText = indentationOf(m_services.storage.text());
}

/// A language with an indentation of its own goes before what the user has set for all.
DocumentConventions::Found DocumentConventions::usual() const
{
    const Preferences &preferences = m_services.preferences;
    const auto ofLanguage = m_services.language.defaultInsertSpaces();
    const bool usesSpaces = ofLanguage.value_or(preferences.value(Settings::insertSpaces));
    return {.indentation = {.width = m_services.language.defaultIndentWidth().value_or(preferences.value(Settings::tabWidth)),
                            .unit = usesSpaces ? Indentation::Unit::spaces : Indentation::Unit::tab},
            .source = ofLanguage ? Source::language : Source::preference};
}

DocumentConventions::Found DocumentConventions::found() const
{
    if (m_chosen) {
        return {*m_chosen, Source::user};
    }
    const Found usual = this->usual();
    if (m_services.language.needsTabs() || !m_ofText || !m_services.preferences.value(Settings::detectIndentation)) {
        return usual;
    }
    const int width = m_ofText->width > 0 ? m_ofText->width : usual.indentation.width;
    return {.indentation = {.width = width, .unit = m_ofText->unit}, .source = Source::text};
}
