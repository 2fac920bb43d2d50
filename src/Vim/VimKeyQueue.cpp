// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimKeyQueue.h"

VimKeyQueue::Key VimKeyQueue::take()
{
    const Key key = m_keys.front();
    m_keys.pop_front();
    return key;
}

void VimKeyQueue::putFirst(QStringView keys, qsizetype unmapped)
{
    for (qsizetype at = keys.size(); at-- > 0;) {
        m_keys.push_front({VimKey::stroke(keys[at].unicode()), at >= unmapped});
    }
}

bool VimKeyQueue::put(const VimKeymap::Fed &fed)
{
    if (++m_depth > deepest) {
        clear();
        return false;
    }
    for (auto stroke = fed.rest.rbegin(); stroke != fed.rest.rend(); ++stroke) {
        m_keys.push_front({*stroke, true});
    }
    putFirst(fed.keys, fed.unmapped);
    return true;
}
