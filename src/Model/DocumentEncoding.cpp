// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/DocumentEncoding.h"

#include "Files/CharacterSet.h"
#include "Model/EncodingMemory.h"
#include "Text/UndoManager.h"

void DocumentEncoding::set(TextEncoding encoding)
{
    m_value = encoding;
    m_isWanted = true;
    m_suggested.reset();
    m_missing.setEncoding(encoding);
    m_services.changed();
}

void DocumentEncoding::take(TextEncoding encoding, std::optional<TextEncoding> suggested)
{
    m_value = encoding;
    m_isWanted = false;
    m_missing.setEncoding(encoding);
    const bool isSettled = m_services.memory && m_services.memory->knows(m_services.path);
    m_suggested = isSettled ? std::nullopt : suggested;
}

void DocumentEncoding::keep()
{
    if (m_services.memory) {
        m_services.memory->note(m_services.path, std::nullopt);
    }
    m_suggested.reset();
    m_services.changed();
}

std::optional<TextEncoding> DocumentEncoding::remembered() const
{
    return m_services.memory ? m_services.memory->encodingOf(m_services.path) : std::nullopt;
}

void DocumentEncoding::remember(TextEncoding encoding)
{
    if (m_services.memory) {
        m_services.memory->note(m_services.path, encoding);
    }
}

void DocumentEncoding::noteWritten(const QString &path, TextEncoding encoding)
{
    if (!m_services.memory) {
        return;
    }
    const auto known = remembered();
    const bool isNew = known ? *known != encoding || path != m_services.path : m_isWanted && encoding != TextEncoding::utf8;
    if (isNew) {
        m_services.memory->note(path, encoding == TextEncoding::utf8 ? std::nullopt : std::optional(encoding));
    }
}

void DocumentEncoding::replaceMissing()
{
    if (const CharacterSet *characters = m_missing.characters()) {
        TextEdits edits;
        for (const TextRange missing : characters->missingIn(m_services.storage.text(), {0, m_services.storage.length()})) {
            edits.add(missing, Rope(u"?"));
        }
        m_services.undoManager.breakCoalescing();
        m_services.storage.apply(edits);
        m_services.undoManager.breakCoalescing();
    }
}
