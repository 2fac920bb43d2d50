// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// The helper itself, as pkexec would run it, with the rights of whoever runs the test.
#include "Helper/SaveHelper.h"

#include "Base/FilePath.h"
#include "Helper/PinnedFolder.h"
#include "TestFolder.h"

#include <QProcess>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using AdministratorProtocol::Answer;
using AdministratorProtocol::Request;

namespace {

const QByteArray oldText = "old\n";
const QByteArray newText = QByteArray("a new line\n").repeated(60'000);

class SaveHelperTest : public testing::Test, protected TestFolder {
protected:
    [[nodiscard]] QByteArray bytePath(const QString &name) const { return encodedPath(path(name)); }

    /// None when the helper does not answer.
    static std::optional<Answer> answerTo(const QByteArray &bytes, const QByteArray &consentName)
    {
        QProcess helper;
        helper.start(QStringLiteral(QUILLET_SAVE_HELPER), {decodedPath(consentName)});
        helper.write(bytes);
        helper.closeWriteChannel();
        EXPECT_TRUE(helper.waitForFinished());
        const QByteArray output = helper.readAllStandardOutput();
        const auto size = AdministratorProtocol::bodySize(output.left(AdministratorProtocol::frameHeadSize));
        return size ? AdministratorProtocol::decodedAnswer(output.mid(AdministratorProtocol::frameHeadSize)) : std::nullopt;
    }
    [[nodiscard]] static Answer answerTo(const Request &request, const QByteArray &text = newText)
    {
        return answerTo(AdministratorProtocol::encoded(request) + text, AdministratorProtocol::consentName(request.path))
            .value_or(Answer{.code = -1});
    }
    [[nodiscard]] Request request(const QString &name) const { return {.path = bytePath(name), .textSize = newText.size()}; }
    [[nodiscard]] struct stat status(const QString &name) const
    {
        struct stat status = {};
        EXPECT_EQ(::lstat(bytePath(name).constData(), &status), 0) << name.toStdString();
        return status;
    }
};

TEST_F(SaveHelperTest, SavesWhatIsAsItIsExpected)
{
    put(u"a"_s, oldText);
    ASSERT_EQ(::chmod(bytePath(u"a"_s).constData(), 0640), 0);
    Request wanted = request(u"a"_s);
    wanted.expected = AtomicFile::Expectation{FileState::of(status(u"a"_s), std::nullopt)};
    wanted.expected->state->isFresh = false;
    const Answer saved = answerTo(wanted);
    EXPECT_EQ(saved.code, 0);
    EXPECT_EQ(read(u"a"_s), newText);
    EXPECT_EQ(status(u"a"_s).st_mode & 07777, 0640U);
    ASSERT_TRUE(saved.state);
    EXPECT_EQ(saved.state->inode, status(u"a"_s).st_ino);

    const Answer changed = answerTo(wanted);
    EXPECT_EQ(changed.code, AtomicFile::changedError) << "it is another file now";
    ASSERT_TRUE(changed.state);
    EXPECT_EQ(changed.state->inode, status(u"a"_s).st_ino);
    EXPECT_FALSE(changed.state->hash) << "who may not read it is told nothing of its content";

    EXPECT_EQ(answerTo(request(u"new"_s)).code, 0);
    EXPECT_EQ(status(u"new"_s).st_mode & 07777, 0644U);
    EXPECT_EQ(names(), QStringList({u"a"_s, u"new"_s}));
}

TEST_F(SaveHelperTest, MakesTheFolderWhenThatIsWanted)
{
    Request wanted = request(u"none/below/a"_s);
    wanted.missingFolder = Administrator::MissingFolder::isMade;
    const QByteArray whole = AdministratorProtocol::encoded(wanted) + newText;
    for (const QByteArray &bytes : {whole.chopped(1), whole + 'x'}) {
        const auto answer = answerTo(bytes, AdministratorProtocol::consentName(wanted.path));
        EXPECT_EQ(answer ? answer->code : -1, AdministratorProtocol::malformed);
        EXPECT_EQ(names(), QStringList()) << "not for a text that is cut off";
    }
    EXPECT_EQ(answerTo(wanted).code, 0);
    EXPECT_EQ(read(u"none/below/a"_s), newText);
    EXPECT_EQ(status(u"none/below"_s).st_mode & 07777, 0755U);
    ASSERT_EQ(::symlink("none", bytePath(u"link"_s).constData()), 0);
    wanted.path = bytePath(u"link/other/a"_s);
    EXPECT_EQ(answerTo(wanted).code, AdministratorProtocol::isLink);
    EXPECT_EQ(names(u"none"_s), QStringList{u"below"_s});
}

TEST_F(SaveHelperTest, RefusesWhatIsCutOffOrHasSomethingBehindIt)
{
    put(u"a"_s, oldText);
    const QByteArray name = AdministratorProtocol::consentName(bytePath(u"a"_s));
    const QByteArray whole = AdministratorProtocol::encoded(request(u"a"_s)) + newText;
    std::vector<QByteArray> wrong = {{}, whole + 'x', "x" + whole, QByteArray(whole).replace(8, 4, "\xFF\xFF\xFF\xFF")};
    const qsizetype headSize = whole.size() - newText.size();
    for (qsizetype end = 1; end < headSize; end += 9) {
        wrong.push_back(whole.first(end));
    }
    wrong.push_back(whole.first(headSize));
    wrong.push_back(whole.first(headSize + 300'000));
    wrong.push_back(whole.chopped(1));
    for (const QByteArray &bytes : wrong) {
        const auto answer = answerTo(bytes, name);
        EXPECT_EQ(answer ? answer->code : -1, AdministratorProtocol::malformed) << bytes.size();
        EXPECT_EQ(read(u"a"_s), oldText);
    }
    EXPECT_EQ(answerTo(whole, AdministratorProtocol::consentName(bytePath(u"b"_s)))->code, AdministratorProtocol::malformed)
        << "the user was shown another name";
    EXPECT_EQ(names(), QStringList{u"a"_s});
}

TEST_F(SaveHelperTest, RefusesPathsThatMayLeadElsewhere)
{
    put(u"folder/a"_s, oldText);
    put(u"folder/several"_s, oldText);
    put(u"folder/set-id"_s, oldText);
    ASSERT_EQ(::link(bytePath(u"folder/several"_s).constData(), bytePath(u"folder/other"_s).constData()), 0);
    ASSERT_EQ(::chmod(bytePath(u"folder/set-id"_s).constData(), 04755), 0);
    ASSERT_EQ(::symlink("folder", bytePath(u"link"_s).constData()), 0);
    ASSERT_EQ(::symlink("a", bytePath(u"folder/link"_s).constData()), 0);
    ASSERT_EQ(::mkfifo(bytePath(u"folder/pipe"_s).constData(), 0600), 0);
    const QStringList before = names(u"folder"_s);
    const QByteArray folder = bytePath(u"folder"_s);
    const std::pair<QByteArray, int> cases[] = {
        {"folder/a", AdministratorProtocol::malformed},
        {folder + "/../folder/a", AdministratorProtocol::malformed},
        {folder + "/./a", AdministratorProtocol::malformed},
        {folder + "//a", AdministratorProtocol::malformed},
        {folder + "/a/", AdministratorProtocol::malformed},
        {folder + QByteArray("/a\0b", 4), AdministratorProtocol::malformed},
        {folder + '/' + QByteArray(5000, 'a'), AdministratorProtocol::malformed},
        {bytePath(u"link/a"_s), AdministratorProtocol::isLink},
        {folder + "/link", AdministratorProtocol::isLink},
        {folder + "/several", AdministratorProtocol::hasSeveralNames},
        {folder + "/set-id", AdministratorProtocol::hasOwnersRights},
        {folder + "/pipe", EINVAL},
        {bytePath(u"folder"_s), EISDIR},
        {folder + "/a/b", ENOTDIR},
        {folder + "/none/b", ENOENT},
    };
    for (const auto &[path, code] : cases) {
        EXPECT_EQ(answerTo({.path = path, .textSize = newText.size()}).code, code) << path.constData();
        EXPECT_EQ(read(u"folder/a"_s) + read(u"folder/several"_s) + read(u"folder/set-id"_s), oldText.repeated(3));
    }
    EXPECT_EQ(answerTo({.path = folder + "/a", .textSize = AdministratorProtocol::largestText + 1}).code, EFBIG);
    EXPECT_EQ(names(u"folder"_s), before) << "nothing is left behind";
}

TEST_F(SaveHelperTest, NewContentHasNoRightsOfTheOldOne)
{
    put(u"a"_s, oldText);
    const int file = ::open(bytePath(u"a"_s).constData(), O_RDWR | O_CLOEXEC);
    // cap_net_raw, which root could give.
    const QByteArray capability("\1\0\0\2\0\x20\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 20);
    EXPECT_NE(PinnedCalls().fsetxattr(file, "security.capability", capability.constData(), size_t(capability.size())), 0);
    ::close(file);
}

TEST_F(SaveHelperTest, PathsAreShownAsWhatTheyAre)
{
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"/etc/fstab", "/etc/fstab"},
        {"/srv/Müller & Söhne/a-b_c.txt", "/srv/Müller %26 Söhne/a-b_c.txt"},
        {"/a\n<b>$(user)%2F", "/a%0A%3Cb%3E%24%28user%29%252F"},
        {"/txt.\u202Eexe", "/txt.%E2%80%AEexe"},
        {"/\xFF", "/%FF"},
    };
    for (const auto &[path, shown] : cases) {
        EXPECT_EQ(AdministratorProtocol::consentName(path), shown);
    }
}

} // namespace
