// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// A script of edits, styles, undo and redo that the fuzzer makes up.
#include "Text/TextScript.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Random random(std::span(data, size));
    TextScript script(random);
    while (!random.isUsedUp()) {
        script.step();
    }
    script.end();
    return 0;
}
