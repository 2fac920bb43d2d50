// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/DesktopFont.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QStringList>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double usualSize = 10;

std::optional<DesktopFont> checked(const QString &family, const QString &size, const FamilyQuery &isFamily)
{
    bool isNumber = false;
    const double points = size.toDouble(&isNumber);
    const bool isSize = isNumber && std::isfinite(points) && points > 0;
    return isSize && !family.isEmpty() && isFamily(family) ? std::optional(DesktopFont{family, points}) : std::nullopt;
}

} // namespace

std::optional<DesktopFont> fontOfDescription(const QString &description, const FamilyQuery &isFamily)
{
    QStringList words = description.simplified().split(u' ');
    const QString size = words.takeLast();
    // Which words are the style's is told by the families there are.
    for (; !words.isEmpty(); words.removeLast()) {
        QString family = words.join(u' ');
        while (family.endsWith(u',')) {
            family.chop(1);
        }
        if (const auto font = checked(family, size, isFamily)) {
            return font;
        }
    }
    return std::nullopt;
}

std::optional<DesktopFont> fontOfList(const QString &list, const FamilyQuery &isFamily)
{
    const QStringList parts = list.split(u',');
    return parts.size() < 2 ? std::nullopt : checked(parts[0].trimmed(), parts[1].trimmed(), isFamily);
}

DesktopFont plainFixedFont()
{
    return {.family = QFontInfo(QFontDatabase::systemFont(QFontDatabase::FixedFont)).family(), .pointSize = usualSize};
}
