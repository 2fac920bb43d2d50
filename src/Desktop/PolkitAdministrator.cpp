// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/PolkitAdministrator.h"

#include "Base/AdministratorProtocol.h"
#include "Base/FilePath.h"
#include "Base/Translation.h"
#include "Desktop/ProgramRun.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <array>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

using WriteError = AtomicFile::WriteError;

// Exit codes of pkexec.
constexpr int dismissed = 126;
constexpr int notAuthorized = 127;

QString nameOf(const QString &path)
{
    return shownPath(QFileInfo(path).fileName());
}

/// What pkexec prints, which it says in English only, when nobody was asked.
struct Complaint {
    const char *printed;
    QStringView sentence;
};
constexpr auto complaints = std::to_array<Complaint>({
    {"No authentication agent",
     u"“%@” could not be saved as administrator, because no authentication agent is running, which would ask for "
     u"the password."},
    {"Error getting authority",
     u"“%@” could not be saved as administrator, because polkit does not answer, which would give the permission."},
});

struct RefusalRow {
    int code;
    QStringView sentence;
};
constexpr auto refusals = std::to_array<RefusalRow>({
    {AdministratorProtocol::isLink, u"“%@” could not be saved as administrator, because a symbolic link leads to it."},
    {AdministratorProtocol::hasSeveralNames,
     u"“%@” could not be saved as administrator, because it has other names (hard links), which would keep the old text."},
    {AdministratorProtocol::hasOwnersRights,
     u"“%@” could not be saved as administrator, because it is a program that runs with the rights of its owner."},
    {AdministratorProtocol::malformed, u"“%@” could not be saved as administrator, because the helper program refused it."},
});

tl::unexpected<WriteError> failed(QStringView sentence, const QString &path, int code)
{
    return tl::make_unexpected(WriteError{{formatted(localized(sentence), nameOf(path)), code}});
}

Result<FileState, WriteError> resultOf(const AdministratorProtocol::Answer &answer, const QString &path)
{
    if (answer.code == 0 && answer.state) {
        return *answer.state;
    }
    if (answer.code == AtomicFile::changedError) {
        return tl::make_unexpected(
            WriteError{{localized(u"Not saved: the file was changed by another program"), answer.code}, answer.state});
    }
    if (const auto row = std::ranges::find(refusals, answer.code, &RefusalRow::code); row != refusals.end()) {
        return failed(row->sentence, path, answer.code);
    }
    return tl::make_unexpected(WriteError{saveError(path, answer.code)});
}

/// Of a helper that was not run, or did not come to its end.
Result<FileState, WriteError> resultOf(const ProgramRun &run, const QString &path, const std::stop_token &stop)
{
    if (run.status == dismissed || stop.stop_requested()) {
        return tl::make_unexpected(WriteError{{localized(u"Not saved"), Administrator::dismissedError}});
    }
    if (run.status != notAuthorized) {
        return failed(u"“%@” could not be saved as administrator, because the helper program ended without an answer.", path, EPROTO);
    }
    for (const auto &[printed, sentence] : complaints) {
        if (run.errors.contains(printed)) {
            return failed(sentence, path, EPERM);
        }
    }
    return failed(u"“%@” was not saved, because you are not authorized to save files as administrator.", path, EPERM);
}

} // namespace

PolkitAdministrator::Programs PolkitAdministrator::Programs::standard()
{
    return {.pkexec = u"/usr/bin/pkexec"_s,
            .helper = QDir::cleanPath(QCoreApplication::applicationDirPath() + u"/../libexec/quillet-save-file"_s)};
}

bool PolkitAdministrator::isAvailable() const
{
    const auto isProgram = [](const QString &path) { return ::access(encodedPath(path).constData(), X_OK) == 0; };
    return ::geteuid() != 0 && isProgram(m_programs.pkexec) && isProgram(m_programs.helper);
}

Result<FileState, WriteError> PolkitAdministrator::write(const Request &request, QByteArrayView text, const std::stop_token &stop)
{
    namespace Protocol = AdministratorProtocol;
    const QByteArray path = encodedPath(request.path);
    const QByteArray head = Protocol::encoded(Protocol::Request{.path = path,
                                                                .textSize = text.size(),
                                                                .newFile = request.newFile,
                                                                .expected = request.expected,
                                                                .missingFolder = request.missingFolder});
    // Nobody but the desktop's own agent asks: not on the terminal that the program was started from.
    const QList<QByteArray> command = {encodedPath(m_programs.pkexec), "--disable-internal-agent", encodedPath(m_programs.helper),
                                       Protocol::consentName(path)};
    const std::array<QByteArrayView, 2> input = {head, text};
    const auto run = ProgramRun::run(command, input, stop);
    if (!run) {
        return tl::make_unexpected(WriteError{
            {formatted(localized(u"“%@” could not be saved as administrator: %@."), nameOf(request.path), qt_error_string(run.error())),
             run.error()}});
    }
    const auto size = Protocol::bodySize(QByteArrayView(run->output).first(std::min(run->output.size(), Protocol::frameHeadSize)));
    const auto answer = size ? Protocol::decodedAnswer(run->output.sliced(Protocol::frameHeadSize)) : std::nullopt;
    return answer ? resultOf(*answer, request.path) : resultOf(*run, request.path, stop);
}
