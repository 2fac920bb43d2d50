// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextIndentation.h"

#include <functional>
#include <optional>

class Language;
class Preferences;
class TextStorage;

/// What a document's text is indented with, and who says so: the user of this text alone, the text itself, its language, or the settings,
/// whoever is the first to say something. Main thread only.
class DocumentConventions final {
public:
    /// What it uses; must outlive it.
    struct Services {
        const TextStorage &storage;
        /// Of the document, now and later.
        const Language &language;
        const Preferences &preferences;
        /// Something here is another.
        std::function<void()> changed;
    };
    enum class Source { user, text, language, preference };

    explicit DocumentConventions(Services services) : m_services(std::move(services)) {}

    [[nodiscard]] Indentation indentation() const { return found().indentation; }
    [[nodiscard]] Source source() const { return found().source; }

    /// By the user, for this text; none where it is found out.
    [[nodiscard]] std::optional<Indentation> chosen() const { return m_chosen; }
    void choose(std::optional<Indentation> indentation);
    /// The text is another one: what it is indented with is found out.
    void noteText();

private:
    struct Found {
        Indentation indentation;
        Source source;
    };
    [[nodiscard]] Found found() const;
    [[nodiscard]] Found usual() const;

    Services m_services;
    std::optional<Indentation> m_chosen;
    std::optional<TextIndentation> m_ofText;
};
