// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

/// Puts right what whoever started the process may have left it with. To be called before anything else is done, on the only thread.
///
/// A closed standard descriptor would be given to the next file or socket that is opened, the display's for instance, and what is read from
/// the standard input or printed would go there: it leads to the null device, and the standard input to an error. A file that grows
/// beyond the user's limit is an error of the write, not the end of the program. All threads allocate from one heap.
void setUpProcess();
