// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/FileRequests.h"

void FileRequests::cancel(Kind kind)
{
    of(kind).task.cancel();
    end(kind);
}

void FileRequests::end(Kind kind)
{
    Request &request = of(kind);
    request.slow.cancel();
    if (std::exchange(request.isSlow, false)) {
        m_changed();
    }
}

FileRequests::Activity FileRequests::activity() const
{
    const auto isSlow = [this](Kind kind) { return m_requests[size_t(kind)].isSlow; };
    if (isSlow(Kind::authorizedWriting)) {
        return Activity::authorizing;
    }
    if (isSlow(Kind::writing) || isSlow(Kind::copying)) {
        return Activity::saving;
    }
    return isSlow(Kind::arrival) || isSlow(Kind::reading) || isSlow(Kind::comparison) ? Activity::opening : Activity::none;
}
