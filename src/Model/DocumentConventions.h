// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Files/EditorConfig.h"
#include "Files/TextFile.h"
#include "Model/SaveTransformation.h"
#include "Text/TextIndentation.h"

#include <functional>
#include <optional>
#include <utility>

class Language;
class Preferences;
class TextStorage;

/// How a document's text is written. What it is indented with is said by the user for this text alone, by .editorconfig files, by the text
/// itself, by its language, or by the settings, whoever is the first to say something. Main thread only.
class DocumentConventions final {
public:
    /// What it uses; must outlive it.
    struct Services {
        const TextStorage &storage;
        /// Of the document, now and later.
        const Language &language;
        const Preferences &preferences;
        Workers &workers;
        FileCalls &files;
        /// Of the document's file, now and later.
        const QString &path;
        /// Something here is another.
        std::function<void()> changed;
    };
    enum class Source { user, editorConfig, text, language, preference };

    explicit DocumentConventions(Services services) : m_services(std::move(services)) {}

    [[nodiscard]] Indentation indentation() const { return found().indentation; }
    [[nodiscard]] Source source() const { return found().source; }

    /// By the user, for this text; none where it is found out.
    [[nodiscard]] std::optional<Indentation> chosen() const { return m_chosen; }
    void choose(std::optional<Indentation> indentation);
    /// What .editorconfig files say of the document's file.
    [[nodiscard]] const EditorConfig &editorConfig() const { return m_editorConfig; }
    void take(const EditorConfig &config);
    /// They may be others since they were looked at: a worker looks again.
    void refresh();
    /// What is wrong with these, if nobody has been told yet; empty for nothing.
    [[nodiscard]] QString takeProblem() { return std::exchange(m_problem, {}); }
    /// What was read from the file; what that itself does not tell is as .editorconfig files want it.
    [[nodiscard]] TextFile::Contents filledIn(TextFile::Contents contents) const;
    /// What the settings want done when it is saved.
    [[nodiscard]] SaveOptions saveOptions() const;
    /// The user has named the encoding or the line ending of a text without a file, which then is none that .editorconfig files decide.
    bool isEncodingChosen = false;
    bool isLineEndingChosen = false;

    /// The text is another one: what it is indented with is found out when it is asked for.
    void noteText() { m_ofText.reset(); }

private:
    struct Found {
        Indentation indentation;
        Source source;
    };
    [[nodiscard]] Found found() const;
    [[nodiscard]] Found usual() const;
    [[nodiscard]] Found ofText() const;

    Services m_services;
    std::optional<Indentation> m_chosen;
    /// None while nobody has asked.
    mutable std::optional<std::optional<TextIndentation>> m_ofText;
    EditorConfig m_editorConfig;
    QString m_problem;
    BackgroundTask m_looking;
};
