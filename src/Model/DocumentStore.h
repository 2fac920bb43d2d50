// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Appearance.h"
#include "Model/TextDocument.h"

#include <QObject>

#include <memory>
#include <vector>

/// All open documents. It owns them, gives each its highlighter, and keeps their colours those of the chosen theme. Main thread only.
class DocumentStore final : public QObject {
    Q_OBJECT

public:
    /// A document was added or removed; about the store.
    static constexpr NotificationName didChange = "QLT.DocumentStoreDidChange";
    /// Light or dark, as the desktop is now; none when that is not known.
    using AppearanceQuery = std::function<std::optional<Appearance>()>;

    DocumentStore(const DocumentServices &services, AppearanceQuery appearance);
    Q_DISABLE_COPY_MOVE(DocumentStore)

    [[nodiscard]] const DocumentServices &services() const { return m_services; }
    /// In the order in which they came.
    [[nodiscard]] const std::vector<std::shared_ptr<TextDocument>> &documents() const { return m_documents; }

    /// Takes the document; it is coloured when a view asks.
    TextDocument &add(std::unique_ptr<TextDocument> document);
    /// The same for one that was here before, and whose file, if it has one, no document here has. What became of that is found out.
    void takeBack(const std::shared_ptr<TextDocument> &document);
    /// What became of a path that was to be opened.
    struct Opened {
        std::shared_ptr<TextDocument> document;
        bool isNew = false;
        /// Its text was kept by an earlier program, unsaved.
        bool isBroughtBack = false;
    };
    using OpenResult = Result<Opened, TextFile::ReadError>;
    /// The documents of files, which are read where they are not open yet, nor kept unsaved; one for each of `paths`, which are absolute.
    /// Files that are not read within `timeout` still are waiting.
    [[nodiscard]] std::vector<OpenResult> open(const QStringList &paths, std::chrono::milliseconds timeout,
                                               TextDocument::MissingFile missingFile = TextDocument::MissingFile::isError);
    /// Gives the document up, and what was kept of it elsewhere. Nothing happens when it is not here.
    void remove(const TextDocument &document);
    /// The document that was opened by the name `path`, which is absolute, or whose file has that as its identity; null when there is none.
    [[nodiscard]] std::shared_ptr<TextDocument> documentAt(const QString &path) const;
    /// The one that the user chose, as the desktop's appearance wants it.
    [[nodiscard]] const Theme &theme() const { return *m_theme; }
    /// The desktop's appearance may be another.
    void refreshAppearance();
    /// The desktop wants all to stand out, or does not any more.
    void setHighContrast(bool isWanted);

signals:
    /// All texts have the colours of another theme.
    void themeChanged();
    /// It is not here any more; whoever shows it has to let it go.
    void removed(const TextDocument &document);

private:
    [[nodiscard]] OpenResult takeOpened(const QString &path, std::unique_ptr<TextDocument> read);
    [[nodiscard]] std::shared_ptr<TextDocument> otherOfFile(const QString &identity, const TextDocument &asking) const;
    [[nodiscard]] const Theme &resolvedTheme() const;

    DocumentServices m_services;
    AppearanceQuery m_appearance;
    bool m_hasHighContrast = false;
    const Theme *m_theme;
    NotificationCenter::Token m_preferencesObserver;
    std::vector<std::shared_ptr<TextDocument>> m_documents;
};
