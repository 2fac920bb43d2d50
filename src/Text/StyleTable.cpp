// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/StyleTable.h"

#include <limits>

size_t qHash(const TextAttributes &attributes, size_t seed)
{
    const int flags = (attributes.isBold ? 1 : 0) | (attributes.isItalic ? 2 : 0) | (attributes.isUnderlined ? 4 : 0) |
                      (attributes.foreground ? 8 : 0) | (attributes.background ? 16 : 0);
    return qHashMulti(seed, attributes.foreground.value_or(0), attributes.background.value_or(0), flags);
}

StyleId StyleTable::intern(const TextAttributes &attributes)
{
    if (attributes == TextAttributes())
        return plainStyle;
    if (const auto known = m_ids.constFind(attributes); known != m_ids.cend())
        return *known;
    if (m_attributes.size() > std::numeric_limits<StyleId>::max())
        return plainStyle;
    const auto style = StyleId(m_attributes.size());
    m_attributes.push_back(attributes);
    m_ids.insert(attributes, style);
    return style;
}
