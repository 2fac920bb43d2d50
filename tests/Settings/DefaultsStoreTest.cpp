// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Settings/DefaultsStore.h"

#include "TestFolder.h"

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class DefaultsStoreTest : public testing::Test, protected TestFolder {
protected:
    const QString file = path(u"config/Quillet/Quillet.conf"_s);

    /// A store as a new start of the program has it.
    [[nodiscard]] std::unique_ptr<DefaultsStore> start()
    {
        auto store = std::make_unique<DefaultsStore>(file, scheduler);
        store->registerDefault("editor.tabWidth"_L1, 4);
        store->registerDefault("editor.fontSize"_L1, 13.0);
        store->registerDefault("editor.wrapLines"_L1, true);
        store->registerDefault("editor.fontName"_L1, u"Mono"_s);
        store->registerDefault("toolbar.items"_L1, QStringList({u"new"_s, u"open"_s}));
        return store;
    }

    ManualScheduler scheduler;
};

} // namespace

TEST_F(DefaultsStoreTest, RegisteredValuesAnswerAndAreNotWritten)
{
    {
        const auto store = start();
        EXPECT_EQ(store->integer("editor.tabWidth"_L1), 4);
        EXPECT_EQ(store->stringList("toolbar.items"_L1), QStringList({u"new"_s, u"open"_s}));
        EXPECT_EQ(store->string("io.panels.lastDirectory"_L1), QString());
        EXPECT_FALSE(store->isSet("editor.tabWidth"_L1));
    }
    EXPECT_FALSE(QFileInfo::exists(path(u"config"_s))) << "nothing was set, so nothing is made";

    start()->set("editor.tabWidth"_L1, 8);
    const QByteArray content = read(file);
    EXPECT_TRUE(content.contains("editor.tabWidth=8")) << content.constData();
    EXPECT_FALSE(content.contains("fontSize")) << content.constData();
    EXPECT_EQ(QFile::permissions(QFileInfo(file).path()) & 0x77, 0) << "nobody else looks in";
    EXPECT_EQ(QFile::permissions(file) & 0x77, 0);
    QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    start()->set("editor.tabWidth"_L1, 7);
    EXPECT_EQ(QFile::permissions(file) & 0x77, 0) << "nor into one that was open to all";

    const auto store = start();
    EXPECT_TRUE(store->isSet("editor.tabWidth"_L1));
    store->remove("editor.tabWidth"_L1);
    EXPECT_EQ(store->integer("editor.tabWidth"_L1), 4);
    EXPECT_TRUE(store->synchronize());
    EXPECT_FALSE(read(file).contains("tabWidth"));
}

TEST_F(DefaultsStoreTest, ValuesComeBackAsTheyWere)
{
    for (const QStringList &list : {QStringList(), {u"one"_s}, {u"a"_s, u"b,c"_s, u"d e"_s}, {u"@x"_s, u""_s}}) {
        start()->set("toolbar.items"_L1, list);
        EXPECT_EQ(start()->stringList("toolbar.items"_L1), list) << list.size();
    }
    for (const QString &text : {u""_s, u"@Invalid()"_s, u"a, b; \"c\" = d\\"_s, u"Grüße 😀"_s, u"true"_s, u" 12 "_s}) {
        start()->set("editor.fontName"_L1, text);
        EXPECT_EQ(start()->string("editor.fontName"_L1), text);
    }
    {
        const auto store = start();
        store->set("editor.fontSize"_L1, 0.1);
        store->set("editor.wrapLines"_L1, false);
        store->set("editor.tabWidth"_L1, -3);
        EXPECT_FALSE(store->boolean("editor.wrapLines"_L1)) << "also before it is written";
    }
    const auto store = start();
    EXPECT_EQ(store->real("editor.fontSize"_L1), 0.1);
    EXPECT_FALSE(store->boolean("editor.wrapLines"_L1));
    EXPECT_EQ(store->integer("editor.tabWidth"_L1), -3);
}

TEST_F(DefaultsStoreTest, ValuesOfTheWrongTypeCountAsNotSet)
{
    put(file, "[General]\neditor.tabWidth=99999999999\neditor.fontSize=nan\neditor.wrapLines=maybe\neditor.fontName=Deja, "
              "Mono\ntoolbar.items=save\n");
    auto store = start();
    EXPECT_EQ(store->integer("editor.tabWidth"_L1), 4);
    EXPECT_EQ(store->real("editor.fontSize"_L1), 13.0);
    EXPECT_TRUE(store->boolean("editor.wrapLines"_L1));
    EXPECT_EQ(store->string("editor.fontName"_L1), u"Deja, Mono"_s);
    EXPECT_EQ(store->stringList("toolbar.items"_L1), QStringList(u"save"_s));
}

TEST_F(DefaultsStoreTest, WritesAMomentAfterTheFirstChange)
{
    const auto store = start();
    store->set("editor.tabWidth"_L1, 2);
    EXPECT_FALSE(QFileInfo::exists(file));
    scheduler.advance(400ms);
    store->set("editor.tabWidth"_L1, 3);
    scheduler.advance(200ms);
    EXPECT_TRUE(read(file).contains("editor.tabWidth=3")) << "more changes must not put it off";
    EXPECT_EQ(scheduler.pendingCount(), 0);

    // Somebody edits the file meanwhile: only what changed here is written.
    put(file, "[General]\neditor.tabWidth=7\neditor.fontSize=20\n");
    store->set("editor.wrapLines"_L1, false);
    scheduler.advance(500ms);
    const QByteArray content = read(file);
    EXPECT_TRUE(content.contains("editor.tabWidth=7") && content.contains("fontSize=20") && content.contains("wrapLines=false"))
        << content.constData();
}

TEST_F(DefaultsStoreTest, APipeInItsPlaceIsNotWaitedFor)
{
    put(file, "");
    QFile::remove(file);
    ASSERT_EQ(::mkfifo(QFile::encodeName(file).constData(), 0600), 0);
    const auto store = start();
    EXPECT_EQ(store->integer("editor.tabWidth"_L1), 4);
    store->set("editor.tabWidth"_L1, 8);
    EXPECT_FALSE(store->synchronize());
    EXPECT_EQ(store->integer("editor.tabWidth"_L1), 8);
    QFile::remove(file);
    EXPECT_TRUE(store->synchronize());
}

TEST_F(DefaultsStoreTest, ADamagedFileIsUsedAsFarAsItGoesAndKept)
{
    const QByteArray damaged("[General]\neditor.tabWidth=6\n\x00\x01\xff garbage\n[unclosed\neditor.fontSize=20\n", 63);
    put(file, damaged);
    {
        const auto store = start();
        EXPECT_EQ(store->integer("editor.tabWidth"_L1), 6);
        EXPECT_TRUE(store->synchronize());
        EXPECT_EQ(read(file), damaged) << "reading changes nothing";
        store->set("editor.wrapLines"_L1, false);
    }
    EXPECT_EQ(read(file + u".damaged"_s), damaged);
    const auto store = start();
    EXPECT_EQ(store->integer("editor.tabWidth"_L1), 6);
    EXPECT_FALSE(store->boolean("editor.wrapLines"_L1));
}

TEST_F(DefaultsStoreTest, WhatCannotBeWrittenStaysInMemory)
{
    // A file where the folder should be stops every user, root too.
    put(u"config"_s, "");
    const auto store = start();
    store->set("editor.tabWidth"_L1, 2);
    EXPECT_FALSE(store->synchronize());
    EXPECT_EQ(store->integer("editor.tabWidth"_L1), 2);
    ASSERT_TRUE(QFile::remove(path(u"config"_s)));
    EXPECT_TRUE(store->synchronize());
    EXPECT_TRUE(read(file).contains("editor.tabWidth=2"));
}
