// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <optional>
#include <stop_token>

class Rope;

/// The 64-bit FNV-1a hash of the text as UTF-8, by which a document knows whether its text is the one that was last read or written.
/// Surrogates without their other half count as U+FFFD, which is what a file gets for them: a text and its file never hash differently.
///
/// O(n) without a copy, bound by one multiplication a byte. Any thread, of a rope that does not change meanwhile.
[[nodiscard]] quint64 textHash(const Rope &text);
/// The same for a worker; none soon after a stop was requested.
[[nodiscard]] std::optional<quint64> textHash(const Rope &text, const std::stop_token &stop);
/// Of a longer text, `added` being what comes behind one with the hash `before`. No pair of surrogates may be parted between them.
[[nodiscard]] std::optional<quint64> textHash(const Rope &added, const std::stop_token &stop, quint64 before);
