// Loading and saving a simulated machine.
#include "files/KeptMachine.h"

#include "ending/Failure.h"
#include "files/Files.h"
#include "files/HostFiles.h"

#include <system_error>

namespace quilletctl {

namespace {

using quillet::simulator::LeadingComments;
using quillet::simulator::MofError;

/// Loads a machine, and tells what stands at the head of its file.
std::shared_ptr<quillet::simulator::Machine> FromFile(const std::string& file, std::string& comments) {
    const auto stays = KeepInPlace(FilePath(file));
    CheckReadable(file);
    try {
        auto machine = quillet::simulator::Machine::FromFile(FilePath(file));
        const auto head = LeadingComments(FilePath(file));
        if (!head) {
            throw UsageError(file + ": the file is empty, and describes no machine");
        }
        comments = *head;
        return machine;
    } catch (const MofError& mistake) {
        throw UsageError(mistake.what());
    }
}

std::optional<std::filesystem::file_time_type> TimeOf(const std::string& file) {
    std::error_code error;
    const auto time = std::filesystem::last_write_time(FilePath(file), error);
    return error ? std::nullopt : std::optional(time);
}

} // namespace

KeptMachine::KeptMachine(const std::string& machineFile, const std::string& stateFile, bool mayChange)
    : m_readFile(stateFile), m_written(TimeOf(stateFile)),
      m_stateFile(mayChange ? stateFile : std::string()) {
    if (!m_stateFile.empty()) {
        try {
            m_lock.emplace(FollowLinks(FilePath(m_stateFile)));
        } catch (const std::system_error& failure) {
            throw UsageError(m_stateFile + ": cannot be written: " + failure.code().message());
        }
        // What cannot be kept is not to be done.
        CheckReplaceable(m_stateFile);
    }
    const bool goesOn = !stateFile.empty() && FileExists(stateFile);
    const std::string& file = goesOn ? stateFile : machineFile;
    std::string comments;
    m_machine = file.empty() ? quillet::simulator::Machine::BuiltIn() : FromFile(file, comments);
    if (goesOn) {
        m_comments = std::move(comments);
        m_generation = m_machine->Store().Generation();
    }
    // Whoever sits before it waits for tests and flash memories as before a real one.
    m_machine->FollowRealTime(true);
}

bool KeptMachine::IsOutdated() const {
    return !m_readFile.empty() && TimeOf(m_readFile) != m_written;
}

void KeptMachine::Save() {
    if (m_stateFile.empty()) {
        return;
    }
    // What goes on in the machine is brought up to date by this, and counts.
    const std::string text = m_comments + m_machine->Save();
    const std::uint64_t generation = m_machine->Store().Generation();
    if (m_generation != generation) {
        // A machine holds credentials (iSCSI, link security), so a new file is its owner's alone.
        ReplaceWholeFile(m_stateFile, text, Access::OwnerOnly);
        m_generation = generation;
    }
}

} // namespace quilletctl
