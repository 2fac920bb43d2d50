// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What .editorconfig files, the text, its language and the settings have to say of how a document is written.
#include "DocumentSurroundings.h"
#include "FileAnswers.h"
#include "TestFolder.h"

using namespace Qt::StringLiterals;

namespace {

using Source = DocumentConventions::Source;

class ConventionsTest : public testing::Test {
protected:
    void configure(const QByteArray &properties) { folder.put(u".editorconfig"_s, "root = true\n[*]\n" + properties); }
    [[nodiscard]] std::shared_ptr<TextDocument> open(const QString &name)
    {
        return store.open({folder.path(name)}, {}, TextDocument::MissingFile::isMade).front()->document;
    }

    TestFolder folder;
    DocumentSurroundings surroundings;
    DocumentStore store{surroundings.services, {}};
};

} // namespace

TEST_F(ConventionsTest, WhoSaysSomethingFirstSaysHowATextIsIndented)
{
    constexpr auto tab = Indentation::Unit::tab;
    constexpr auto spaces = Indentation::Unit::spaces;
    const QByteArray tabbed = QByteArray("\tx\n").repeated(5);
    const QByteArray two = QByteArray("  x\n").repeated(5);
    struct Case {
        const char *properties;
        QString name;
        QByteArray text;
        Indentation indentation;
        Source source;
    };
    const Case cases[] = {
        {"", u"a.txt"_s, "x\n", {4, spaces}, Source::preference},
        {"", u"a.yml"_s, "x\n", {2, spaces}, Source::language},
        {"", u"a.yml"_s, tabbed, {2, tab}, Source::text},
        {"indent_style=space\nindent_size=3", u"a.c"_s, tabbed, {3, spaces}, Source::editorConfig},
        {"indent_style=tab\nindent_size=4\ntab_width=8", u"a.c"_s, two, {8, tab}, Source::editorConfig},
        {"indent_style=space\nindent_size=2\ntab_width=8", u"a.c"_s, "", {2, spaces, 8}, Source::editorConfig},
        {"indent_style=space\ntab_width=3", u"a.c"_s, "", {3, spaces}, Source::editorConfig},
        {"indent_style=space", u"a.c"_s, two, {2, spaces}, Source::editorConfig},
        {"indent_size=5", u"a.c"_s, tabbed, {5, tab}, Source::editorConfig},
        {"indent_size=0\nindent_style=both", u"a.c"_s, two, {2, spaces}, Source::text},
        {"charset=utf-8", u"a.c"_s, "", {4, spaces}, Source::language},
        {"indent_style=space\nindent_size=2", u"Makefile"_s, two, {4, tab}, Source::language},
        {"tab_width=8", u"Makefile"_s, two, {8, tab}, Source::editorConfig},
    };
    for (const Case &one : cases) {
        configure(one.properties);
        folder.put(one.name, one.text);
        const auto document = open(one.name);
        EXPECT_EQ(document->conventions.source(), one.source) << one.properties << one.name.toStdString();
        const Indentation found = document->conventions.indentation();
        EXPECT_TRUE(found == one.indentation) << one.properties << one.name.toStdString() << found.width;
        store.remove(*document);
    }
}

TEST_F(ConventionsTest, SavingTrimsAndEndsTheTextAsItsFileWants)
{
    surroundings.preferences.set(Settings::ensureTrailingNewlineOnSave, true);
    configure("trim_trailing_whitespace=true\ninsert_final_newline=false");
    folder.put(u"a.txt"_s, "a \n b\t\nc");
    const auto document = open(u"a.txt"_s);
    document->storage().apply({{0, 0}, u"x  \n"_s});
    document->save(document->path(), {}, {.occasion = DocumentFile::Occasion::byItself});
    EXPECT_EQ(folder.read(u"a.txt"_s), "x  \na \n b\t\nc") << "nobody asked for it";
    ASSERT_TRUE(saved(*document, document->path()));
    EXPECT_EQ(folder.read(u"a.txt"_s), "x\na\n b\nc");
    EXPECT_EQ(document->storage().string(), u"x\na\n b\nc"_s);
    EXPECT_FALSE(document->isDirty());
    surroundings.settle();
    EXPECT_FALSE(document->isDirty());
    document->undoManager().undo();
    EXPECT_EQ(document->storage().string(), u"x  \na \n b\t\nc"_s) << "a step of its own";
    EXPECT_TRUE(document->isDirty());

    configure("insert_final_newline=true");
    surroundings.preferences.set(Settings::ensureTrailingNewlineOnSave, false);
    ASSERT_TRUE(saved(*document, document->path()));
    EXPECT_EQ(folder.read(u"a.txt"_s), "x  \na \n b\t\nc\n") << "as the file says by now";
}

TEST_F(ConventionsTest, ACaretBehindBlanksThatAreTrimmedStaysInItsLine)
{
    configure("trim_trailing_whitespace=true\ninsert_final_newline=true");
    folder.put(u"a.txt"_s, "one  \ntwo ");
    const auto document = open(u"a.txt"_s);
    TextSelection caret = TextSelection::at(document->storage().length());
    QObject::connect(&document->storage(), &TextStorage::changed, [&caret](const TextChange &change) { caret = change.mapped(caret); });
    document->storage().apply({{0, 0}, u"x"_s});
    ASSERT_TRUE(saved(*document, document->path()));
    EXPECT_EQ(document->storage().string(), u"xone\ntwo\n"_s);
    EXPECT_EQ(caret.caret, 8);
    document->undoManager().undo();
    EXPECT_EQ(document->storage().string(), u"xone  \ntwo "_s) << "one step";
}

TEST_F(ConventionsTest, WhatIsTypedWhileItIsSavedStays)
{
    configure("trim_trailing_whitespace=true");
    folder.put(u"a.txt"_s, "a");
    const auto document = open(u"a.txt"_s);
    document->storage().apply({{1, 0}, u"  "_s});
    surroundings.workers.isHeld = true;
    document->save(document->path());
    document->storage().apply({{3, 0}, u"b"_s});
    surroundings.workers.isHeld = false;
    surroundings.workers.finish();
    surroundings.settle();
    EXPECT_EQ(document->storage().string(), u"a  b"_s);
    EXPECT_EQ(folder.read(u"a.txt"_s), "a");
    EXPECT_TRUE(document->isDirty());
}

TEST_F(ConventionsTest, EncodingAndLineEndsAreThoseOfTheFileWhereItHasSome)
{
    configure("end_of_line=crlf\ncharset=latin1");
    folder.put(u"unix"_s, "\xC3\xA9\nb\n");
    folder.put(u"short"_s, "a");
    folder.put(u"empty"_s, "");
    struct Case {
        QString name;
        QByteArray after;
    };
    for (const Case &one :
         {Case{u"unix"_s, "x\n\xC3\xA9\nb\n"}, Case{u"short"_s, "\xE9\r\na"}, Case{u"empty"_s, "\xE9\r\n"}, Case{u"new"_s, "\xE9\r\n"}}) {
        const auto document = open(one.name);
        document->storage().apply({{}, one.name == u"unix"_s ? u"x\n"_s : u"é\n"_s});
        ASSERT_TRUE(saved(*document, document->path())) << one.name.toStdString();
        EXPECT_EQ(folder.read(one.name), one.after) << one.name.toStdString();
    }
    configure("charset=utf-8-bom");
    const auto marked = open(u"marked"_s);
    for (const char16_t *typed : {u"a", u"b"}) {
        marked->storage().apply({{}, QString::fromUtf16(typed)});
        ASSERT_TRUE(saved(*marked, marked->path()));
    }
    EXPECT_EQ(folder.read(u"marked"_s), "\xEF\xBB\xBF"
                                        "ba")
        << "it keeps its mark";
}

TEST_F(ConventionsTest, ATextWithoutAFileGetsWhatItsFirstFileWantsUnlessTheUserHasChosen)
{
    configure("end_of_line=crlf\ncharset=latin1\nindent_size=3");
    const auto untitled = [this](const QString &text) {
        auto &document = store.add(std::make_unique<TextDocument>(surroundings.services, QString(), std::nullopt));
        document.storage().apply({{}, text});
        return document.shared_from_this();
    };
    const auto first = untitled(u"é\n"_s);
    ASSERT_TRUE(saved(*first, folder.path(u"first"_s)));
    EXPECT_EQ(folder.read(u"first"_s), "\xE9\r\n");
    EXPECT_EQ(first->encoding(), TextEncoding::isoLatin1);
    EXPECT_EQ(first->conventions.indentation().width, 3);
    EXPECT_FALSE(first->isDirty());

    const auto lacking = untitled(u"€"_s);
    EXPECT_EQ(saved(*lacking, folder.path(u"lacking"_s)).error().code, TextFile::missingCharactersError);
    EXPECT_EQ(lacking->encoding(), TextEncoding::isoLatin1) << "whose lack is told about";
    EXPECT_FALSE(QFileInfo::exists(folder.path(u"lacking"_s)));
    lacking->setEncoding(TextEncoding::utf8);
    lacking->setLineEnding(LineEnding::lf);
    ASSERT_TRUE(saved(*lacking, folder.path(u"lacking"_s)));
    EXPECT_EQ(folder.read(u"lacking"_s), "\xE2\x82\xAC");
}

TEST_F(ConventionsTest, ChangesOfTheFilesAreFollowedAndProblemsToldOnce)
{
    configure("indent_size=3\nmax_line_length=80");
    folder.put(u"a.txt"_s, "a");
    const auto document = open(u"a.txt"_s);
    DocumentConventions &conventions = document->conventions;
    EXPECT_EQ(std::pair(conventions.indentation().width, conventions.editorConfig().longestLine), std::pair(3, std::optional(80)));
    configure("indent_size=5");
    ASSERT_TRUE(isReverted(*document));
    EXPECT_EQ(conventions.indentation().width, 5);
    folder.put(u"other/.editorconfig"_s, "[*]\nindent_size=6\n");
    ASSERT_TRUE(saved(*document, folder.path(u"other/b.txt"_s)));
    EXPECT_EQ(conventions.indentation().width, 6);
    EXPECT_EQ(conventions.takeProblem(), QString());
    folder.put(u"other/.editorconfig"_s, "[*]\nindent_size=7\n");
    int changes = 0;
    const auto token = surroundings.notifications.observe(TextDocument::didChangeMetadata, document.get(), [&changes] { ++changes; });
    conventions.refresh();
    surroundings.settle();
    EXPECT_EQ(conventions.indentation().width, 7);
    conventions.refresh();
    surroundings.settle();
    EXPECT_EQ(changes, 1) << "nothing is new";
    folder.put(u"other/.editorconfig"_s, "nonsense\n");
    ASSERT_TRUE(isReverted(*document));
    EXPECT_EQ(conventions.indentation().width, 4);
    EXPECT_TRUE(conventions.takeProblem().contains(u"line 1 of"_s));
    ASSERT_TRUE(isReverted(*document));
    EXPECT_EQ(conventions.takeProblem(), QString());
}
