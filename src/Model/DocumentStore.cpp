// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/DocumentStore.h"

#include "Settings/Preferences.h"

#include <QDir>

#include <set>

DocumentStore::DocumentStore(const DocumentServices &services, AppearanceQuery appearance)
    : m_services(services), m_appearance(std::move(appearance)), m_theme(&resolvedTheme()),
      m_preferencesObserver(m_services.notifications.observe(Preferences::didChange, nullptr, [this] { refreshAppearance(); }))
{
    m_services.otherOfFile = [this](const QString &identity, const TextDocument &asking) { return otherOfFile(identity, asking); };
}

const Theme &DocumentStore::resolvedTheme() const
{
    const Preferences &preferences = m_services.preferences;
    const Theme &chosen = Theme::resolved(preferences.value(Settings::themeName), m_appearance ? m_appearance() : std::nullopt);
    const Contrast ofUser = preferences.value(Settings::strengthenColors) ? Contrast::legible : Contrast::own;
    return Theme::shown(chosen, m_hasHighContrast ? Contrast::high : ofUser);
}

TextDocument &DocumentStore::add(std::unique_ptr<TextDocument> document)
{
    TextDocument &added = *m_documents.emplace_back(std::move(document));
    added.attachHighlighter(theme());
    m_services.notifications.post(didChange, this);
    return added;
}

void DocumentStore::takeBack(const std::shared_ptr<TextDocument> &document)
{
    document->attachHighlighter(theme());
    document->setAwaited(TextDocument::Awaited::no);
    m_documents.push_back(document);
    document->setFollowingFile(true);
    m_services.notifications.post(didChange, this);
}

std::vector<DocumentStore::OpenResult> DocumentStore::open(const QStringList &paths, std::chrono::milliseconds timeout,
                                                           TextDocument::MissingFile missingFile)
{
    // Each has a thread while it is read.
    constexpr qsizetype mostAtOnce = 16;
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    std::vector<OpenResult> all;
    std::set<const TextDocument *> broughtBack;
    for (const QString &path : paths) {
        if (m_services.bringBack && !documentAt(path)) {
            m_services.bringBack(path);
            broughtBack.insert(documentAt(path).get());
        }
    }
    for (qsizetype first = 0; first < paths.size(); first += mostAtOnce) {
        const QStringList portion = paths.mid(first, mostAtOnce);
        std::vector<std::unique_ptr<TextDocument>> readings;
        for (const QString &path : portion) {
            readings.push_back(documentAt(path) ? nullptr
                                                : TextDocument::awaiting(m_services, path, TextEncoding::utf8, LineEnding::lf,
                                                                         QUuid::createUuid(), missingFile));
        }
        for (qsizetype index = 0; index < portion.size(); ++index) {
            auto &reading = readings[size_t(index)];
            if (reading) {
                std::ignore = reading->requests().waitUntil(FileRequests::Kind::arrival, deadline);
            }
            all.push_back(takeOpened(portion[index], std::move(reading)).map([&](Opened opened) {
                opened.isBroughtBack = broughtBack.contains(opened.document.get());
                return opened;
            }));
        }
    }
    return all;
}

DocumentStore::OpenResult DocumentStore::takeOpened(const QString &path, std::unique_ptr<TextDocument> read)
{
    if (auto open = documentAt(path)) {
        return Opened{.document = std::move(open)};
    }
    if (read->arrival().failure().error) {
        return tl::make_unexpected(*read->arrival().failure().error);
    }
    // Those before it may have come meanwhile.
    if (auto open = otherOfFile(read->file().identity(), *read)) {
        return Opened{.document = std::move(open)};
    }
    return Opened{.document = add(std::move(read)).shared_from_this(), .isNew = true};
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

std::shared_ptr<TextDocument> DocumentStore::documentAt(const QString &path) const
{
    const QString clean = QDir::cleanPath(path);
    const auto found = std::ranges::find_if(
        m_documents, [&](const auto &open) { return !open->isUntitled() && (open->path() == clean || open->file().identity() == clean); });
    return found == m_documents.end() ? nullptr : *found;
}

std::shared_ptr<TextDocument> DocumentStore::otherOfFile(const QString &identity, const TextDocument &asking) const
{
    const auto found = std::ranges::find_if(
        m_documents, [&](const auto &open) { return open.get() != &asking && !open->isUntitled() && open->file().identity() == identity; });
    return found == m_documents.end() ? nullptr : *found;
}

void DocumentStore::setHighContrast(bool isWanted)
{
    m_hasHighContrast = isWanted;
    refreshAppearance();
}

void DocumentStore::refreshAppearance()
{
    const Theme &resolved = resolvedTheme();
    if (&resolved == m_theme) {
        return;
    }
    m_theme = &resolved;
    for (const auto &document : m_documents) {
        if (document->highlighter()) {
            document->highlighter()->setTheme(resolved);
        }
    }
    emit themeChanged();
}
