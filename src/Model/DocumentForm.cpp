// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/DocumentForm.h"

#include "Settings/Preferences.h"
#include "Text/UndoManager.h"

std::optional<FileForm> DocumentForm::kept() const
{
    return m_preferences.value(Settings::keepFileForm) ? std::optional(m_value) : std::nullopt;
}

void DocumentForm::set(const FileForm &form)
{
    m_value = form;
    m_states.clear();
    remember();
}

void DocumentForm::setUniform(LineEnding ending)
{
    m_value.lineEndings = LineEndings::uniform(ending, m_value.lineEndings.count());
    m_states.clear();
}

void DocumentForm::setNormal(LineEnding ending)
{
    setUniform(ending);
    m_value.hasByteOrderMark = false;
    m_value.utf16Order.reset();
}

void DocumentForm::noteEdit(const TextChange &change, LineEnding fallback)
{
    const auto known = m_undoManager.isReplaying() ? m_states.find(m_undoManager.state()) : m_states.end();
    if (known != m_states.end()) {
        m_value.lineEndings = known->second;
        return;
    }
    m_value.lineEndings.apply(change, fallback);
    remember();
}

void DocumentForm::remember()
{
    if (m_states.empty() && !m_value.lineEndings.isMixed()) {
        return;
    }
    m_states.insert_or_assign(m_undoManager.state(), m_value.lineEndings);
    if (m_states.size() > mostRemembered) {
        m_states.erase(m_states.begin());
    }
}
