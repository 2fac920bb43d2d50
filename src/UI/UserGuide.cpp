// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/UserGuide.h"

#include "Base/Localization.h"

#include <QFile>

using namespace Qt::StringLiterals;

// Without the call the linker would leave the guide out of programs, as nothing else refers to it.
static void registerGuide()
{
    Q_INIT_RESOURCE(guide);
}

QString UserGuide::markdown()
{
    registerGuide();
    const bool isGerman = Localization::current().locale().language() == QLocale::German;
    QFile file(isGerman ? u":/guide/guide.de.md"_s : u":/guide/guide.md"_s);
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning("%s is missing.", qPrintable(file.fileName()));
    }
    return QString::fromUtf8(file.readAll());
}
