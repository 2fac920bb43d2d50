// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/DocumentConventions.h"

#include "Highlighting/Language.h"
#include "Settings/Preferences.h"
#include "Text/TextStorage.h"

#include <algorithm>

namespace {

bool isAscii(const Rope &text)
{
    bool isSo = true;
    text.forEachChunk({0, text.length()}, [&isSo](const Rope::Chunk &chunk) {
        constexpr char16_t end = 0x80;
        if (chunk.narrow) {
            isSo = std::all_of(chunk.narrow, chunk.narrow + chunk.length, [](uchar unit) { return unit < end; });
        } else {
            isSo = std::all_of(chunk.wide, chunk.wide + chunk.length, [](char16_t unit) { return unit < end; });
        }
        return isSo;
    });
    return isSo;
}

} // namespace

void DocumentConventions::choose(std::optional<Indentation> indentation)
{
    m_chosen = indentation;
    m_services.changed();
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

DocumentConventions::Found DocumentConventions::ofText() const
{
    const Found usual = this->usual();
    if (m_services.language.needsTabs() || !m_services.preferences.value(Settings::detectIndentation)) {
        return usual;
    }
    if (!m_ofText) {
        m_ofText = indentationOf(m_services.storage.text());
    }
    const std::optional<TextIndentation> own = *m_ofText;
    if (!own) {
        return usual;
    }
    return {.indentation = {.width = own->width > 0 ? own->width : usual.indentation.width, .unit = own->unit}, .source = Source::text};
}

DocumentConventions::Found DocumentConventions::found() const
{
    if (m_chosen) {
        return {*m_chosen, Source::user};
    }
    const EditorConfig &config = m_editorConfig;
    const Found otherwise = ofText();
    const bool saysNothing = !config.indentStyle && !config.indentSize && !config.tabWidth;
    const bool isForbidden = m_services.language.needsTabs() && config.indentStyle == Indentation::Unit::spaces;
    if (saysNothing || isForbidden) {
        return otherwise;
    }
    Indentation indentation = otherwise.indentation;
    indentation.unit = config.indentStyle.value_or(indentation.unit);
    if (indentation.unit == Indentation::Unit::tab) {
        indentation.width = config.tabWidth.value_or(config.indentSize.value_or(indentation.width));
        return {indentation, Source::editorConfig};
    }
    if (const auto width = config.indentSize ? config.indentSize : config.tabWidth) {
        indentation.width = *width;
        indentation.otherTabStops = config.tabWidth && *config.tabWidth != *width ? *config.tabWidth : 0;
    }
    return {indentation, Source::editorConfig};
}

void DocumentConventions::take(const EditorConfig &config)
{
    if (!config.problem.isEmpty() && config.problem != m_editorConfig.problem) {
        m_problem = config.problem;
    }
    m_editorConfig = config;
}

TextFile::Contents DocumentConventions::filledIn(TextFile::Contents contents) const
{
    const EditorConfig &config = m_editorConfig;
    if (contents.form.lineEndings.count() == 0) {
        contents.lineEnding = config.lineEnding.value_or(contents.lineEnding);
    }
    const bool mayBeOther = config.charset && contents.encoding == TextEncoding::utf8 && !contents.form.hasByteOrderMark;
    if (mayBeOther && contents.text.isEmpty()) {
        contents.encoding = config.charset->encoding;
        contents.form.hasByteOrderMark = config.charset->hasByteOrderMark;
    } else if (mayBeOther && config.charset->encoding == TextEncoding::isoLatin1 && isAscii(contents.text)) {
        contents.encoding = TextEncoding::isoLatin1;
    }
    return contents;
}

void DocumentConventions::refresh()
{
    // One that waits for a share whose server is gone is enough.
    if (m_services.path.isEmpty() || m_looking.isPending()) {
        return;
    }
    m_looking = BackgroundTask::start(
        m_services.workers,
        [path = m_services.path, &files = m_services.files](const std::stop_token & /*stop*/) {
            return std::pair(path, EditorConfig::of(path, files));
        },
        [this](const std::pair<QString, EditorConfig> &found) {
            if (found.first == m_services.path && found.second != m_editorConfig) {
                take(found.second);
                m_services.changed();
            }
        });
}

SaveOptions DocumentConventions::saveOptions() const
{
    const Preferences &preferences = m_services.preferences;
    return {.trimmed =
                preferences.value(Settings::trimTrailingWhitespaceOnSave) ? SaveOptions::Trimmed::lastLine : SaveOptions::Trimmed::nothing,
            .ensuresTrailingNewline = preferences.value(Settings::ensureTrailingNewlineOnSave)};
}
