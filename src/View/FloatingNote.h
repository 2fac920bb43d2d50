// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "View/TextViewPainter.h"

/// The ground and the border of a note that floats over a text, in the colours of that.
void paintFloatingNote(QPainter &painter, const QRect &rect, const TextLooks::Colors &colors);
