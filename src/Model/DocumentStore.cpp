// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/DocumentStore.h"

#include "Settings/Preferences.h"

DocumentStore::DocumentStore(const DocumentServices &services, AppearanceQuery appearance)
    : m_services(services), m_appearance(std::move(appearance))
{}

const Theme &DocumentStore::theme() const
{
    return Theme::resolved(m_services.preferences.value(Settings::themeName), m_appearance ? m_appearance() : std::nullopt);
}

TextDocument &DocumentStore::add(std::unique_ptr<TextDocument> document)
{
    TextDocument &added = *m_documents.emplace_back(std::move(document));
    added.attachHighlighter(theme());
    m_services.notifications.post(didChange, this);
    return added;
}

void DocumentStore::remove(const TextDocument &document)
{
    const auto place = std::find_if(m_documents.begin(), m_documents.end(), [&](const auto &open) { return open.get() == &document; });
    if (place == m_documents.end()) {
        return;
    }
    if (m_services.discardDraft) {
        m_services.discardDraft(document.id());
    }
    const std::shared_ptr<TextDocument> removed = *place;
    m_documents.erase(place);
    m_services.notifications.post(didChange, this);
    emit this->removed(*removed);
}

TextDocument *DocumentStore::documentAt(const QString &path) const
{
    const QString identity = TextDocument::identityOf(path);
    const auto found =
        std::ranges::find_if(m_documents, [&](const auto &open) { return !open->isUntitled() && open->identity() == identity; });
    return found == m_documents.end() ? nullptr : found->get();
}

void DocumentStore::refreshAppearance()
{
    const Theme &shown = theme();
    for (const auto &document : m_documents) {
        if (document->highlighter()) {
            document->highlighter()->setTheme(shown);
        }
    }
}
