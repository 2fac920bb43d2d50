// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QTranslator>

class QLocale;

/// The texts that Qt itself shows, those of its dialogs and the names of keys, in the language of the interface. Qt brings the
/// translations; where they are not installed its texts stay English. Main thread only; needs the application object.
class ToolkitTexts final {
public:
    /// Every widget is notified of it as a change of language.
    void use(const QLocale &locale);

private:
    QTranslator m_translator;
};
