// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/GitBase.h"

#include "GitRepository.h"

#include <QDirIterator>

using namespace Qt::StringLiterals;

namespace {

class GitBaseTest : public testing::Test, protected TestFolder {
protected:
    /// "-" for none.
    [[nodiscard]] std::string base(const QString &name, TextEncoding encoding = TextEncoding::utf8) const
    {
        const auto found = GitBase::read(path(name), encoding, std::nullopt, {});
        return found ? found->text.toString().toStdString() : "-";
    }
    /// All files of the repository and when they were written.
    [[nodiscard]] QStringList state() const
    {
        QStringList files;
        for (QDirIterator it(path(u"r"_s), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
             it.hasNext();) {
            it.next();
            files << it.filePath() + it.fileInfo().lastModified().toString(Qt::ISODateWithMs);
        }
        files.sort();
        return files;
    }
};

} // namespace

TEST_F(GitBaseTest, ReadsTheLastCommitAndWritesNothing)
{
    const GitRepository repository(path(u"r"_s));
    put(u"r/a.txt"_s, "first\n");
    put(u"r/deep/b.txt"_s, "one\r\ntwo\r\n");
    put(u"r/utf16.txt"_s, QByteArray("\xFF\xFE"
                                     "a\0\xE4\0",
                                     6));
    put(u"r/mark.txt"_s, "\xEF\xBB\xBFtext");
    put(u"r/kept.txt"_s, "\xC3\xA4");
    put(u"r/.gitattributes"_s, "kept.txt working-tree-encoding=ISO-8859-1\n");
    put(u"r/empty.txt"_s, "");
    put(u"r/\xFC.txt"_s, "name\n");
    repository.commit({"a.txt", "deep/b.txt", "utf16.txt", "mark.txt", "kept.txt", "empty.txt", "\xC3\xBC.txt"});
    put(u"r/a.txt"_s, "second\n");
    put(u"r/new.txt"_s, "new\n");
    QFile::link(path(u"r/a.txt"_s), path(u"link.txt"_s));
    const QStringList before = state();
    EXPECT_EQ(base(u"r/a.txt"_s), "first\n");
    EXPECT_EQ(base(u"link.txt"_s), "first\n") << "where the file is";
    EXPECT_EQ(base(u"r/deep/b.txt"_s), "one\ntwo\n") << "line ends do not count";
    EXPECT_EQ(base(u"r/utf16.txt"_s, TextEncoding::utf16LittleEndian), "aä");
    EXPECT_EQ(base(u"r/mark.txt"_s), "text") << "a mark is none of the text";
    EXPECT_EQ(base(u"r/kept.txt"_s, TextEncoding::isoLatin1), "ä") << "kept as UTF-8";
    EXPECT_EQ(base(u"r/empty.txt"_s), "");
    EXPECT_EQ(base(u"r/\xFC.txt"_s), "name\n");
    EXPECT_EQ(base(u"r/new.txt"_s), "-");
    EXPECT_EQ(base(u"r/missing.txt"_s), "-");
    EXPECT_EQ(state(), before);
    const auto known = GitBase::read(path(u"r/a.txt"_s), TextEncoding::utf8, GitBase{"other id", TextEncoding::utf8, Rope(u"other")}, {});
    ASSERT_TRUE(known);
    const auto again = GitBase::read(path(u"r/a.txt"_s), TextEncoding::utf8, GitBase{known->id, known->encoding, Rope(u"kept")}, {});
    ASSERT_TRUE(again);
    EXPECT_EQ(again->text, Rope(u"kept")) << "it is not read again";
    repository.commit({"a.txt"});
    EXPECT_EQ(base(u"r/a.txt"_s), "second\n");
}

TEST_F(GitBaseTest, FindsNothingInOddRepositories)
{
    put(u"none/a.txt"_s, "text\n");
    EXPECT_EQ(base(u"none/a.txt"_s), "-");
    const GitRepository bare(path(u"bare.git"_s), GitRepository::Kind::bare);
    put(u"bare.git/a.txt"_s, "text\n");
    EXPECT_EQ(base(u"bare.git/a.txt"_s), "-");

    const GitRepository repository(path(u"r"_s));
    put(u"r/a.txt"_s, "text\n");
    put(u"r/bytes.txt"_s, "\xFF\xFE\xFD");
    put(u"r/made.bin"_s, "text\n");
    put(u"r/.gitattributes"_s, "*.bin filter=packer\n");
    EXPECT_EQ(base(u"r/a.txt"_s), "-") << "no commit";
    repository.commit({"a.txt", "bytes.txt", "made.bin"});
    EXPECT_EQ(base(u"r/bytes.txt"_s), "-") << "not in the encoding of the file";
    EXPECT_EQ(base(u"r/made.bin"_s), "-") << "a program stands between the two";
    EXPECT_EQ(base(u"r/.git/HEAD"_s), "-");
    put(u"broken/.git"_s, "gitdir: /nowhere\n");
    put(u"broken/a.txt"_s, "text\n");
    EXPECT_EQ(base(u"broken/a.txt"_s), "-");
    EXPECT_EQ(base(u"r/a.txt"_s), "text\n");
    ASSERT_TRUE(QDir(path(u"r/.git/objects"_s)).removeRecursively());
    EXPECT_EQ(base(u"r/a.txt"_s), "-") << "nothing is left of it";
}

TEST_F(GitBaseTest, ReadsFromFurtherWorkTreesAndFormats)
{
    const GitRepository repository(path(u"r"_s));
    put(u"r/a.txt"_s, "text\n");
    repository.commit({"a.txt"});
    repository.addWorkTree("w", path(u"w"_s));
    put(u"r/a.txt"_s, "later\n");
    repository.commit({"a.txt"});
    EXPECT_EQ(base(u"w/a.txt"_s), "text\n") << "it has a last commit of its own";
    repository.set("core.repositoryformatversion", 1);
    repository.set("extensions.worktreeconfig", 1);
    EXPECT_EQ(base(u"r/a.txt"_s), "later\n");
    repository.set("extensions.unheardof", 1);
    EXPECT_EQ(base(u"r/a.txt"_s), "-");
}
