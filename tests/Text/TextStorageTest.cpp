// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextStorage.h"
#include "TextScript.h"

#include <gtest/gtest.h>

namespace {

TEST(TextStorage, RandomScriptsDoToItWhatTheyDoToVectors)
{
    for (quint32 seed = 1; seed <= 60; ++seed) {
        Random random(seed);
        TextScript script(random);
        for (int step = 0; step < 200; ++step) {
            requirementContext = "seed " + std::to_string(seed) + " step " + std::to_string(step);
            script.step();
        }
        script.end();
    }
}

TEST(TextStorage, NothingIsNoChange)
{
    TextStorage storage;
    storage.apply({{0, 0}, u"text"});
    const quint64 revision = storage.revision();
    QObject::connect(&storage, &TextStorage::didProcessEditing, [] { ADD_FAILURE(); });
    QObject::connect(&storage, &TextStorage::stylesChanged, [] { ADD_FAILURE(); });
    storage.apply({{2, 0}, Rope()});
    storage.setStyle({0, 4}, plainStyle);
    EXPECT_EQ(storage.revision(), revision);
}

} // namespace
