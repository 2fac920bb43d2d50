// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/TextOrigin.h"

#include "Base/FilePath.h"
#include "Base/Translation.h"

#include <QFileInfo>

QString TextOrigin::shownName() const
{
    return path.isEmpty() ? localized(u"Untitled") : shownPath(QFileInfo(path).fileName());
}
