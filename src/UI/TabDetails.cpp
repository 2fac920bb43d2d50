// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TabDetails.h"

#include "Base/FilePath.h"
#include "Base/FoldersApart.h"
#include "Model/FirstLine.h"
#include "Model/TextDocument.h"

TabDetails tabDetailsOf(const PaneLayout::Documents &documents)
{
    QStringList paths;
    for (const auto &document : documents) {
        paths << document->path();
    }
    const QStringList folders = foldersApart(paths);
    TabDetails details;
    for (size_t index = 0; index < documents.size(); ++index) {
        const TextDocument &document = *documents[index];
        const bool isNameless = document.isUntitled() && !document.isGenerated() && !document.origin;
        const QString line = isNameless ? firstLineOf(document.storage().text()) : QString();
        const QString detail = isNameless && line != document.displayName() ? line : shownPath(folders[qsizetype(index)]);
        if (!detail.isEmpty()) {
            details.emplace(&document, detail);
        }
    }
    return details;
}
