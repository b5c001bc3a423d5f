// Loading and saving the simulated machine.
#include "app/SimulatedMachine.h"

#include "ending/Failure.h"
#include "files/Files.h"
#include "files/HostFiles.h"
#include "terminal/Console.h"

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

} // namespace

bool AsksForSimulator(const GlobalOptions& options) noexcept {
    return options.simulate || !options.stateFile.empty();
}

bool UsesSimulator(const GlobalOptions& options) noexcept {
    return AsksForSimulator(options) || (!HostHasWmi() && options.machine.empty());
}

SimulatedMachine::SimulatedMachine(const GlobalOptions& options, bool mayChange)
    : m_stateFile(mayChange ? options.stateFile : std::string()) {
    if (!m_stateFile.empty()) {
        try {
            m_lock.emplace(FollowLinks(FilePath(m_stateFile)));
        } catch (const std::system_error& failure) {
            throw UsageError(m_stateFile + ": cannot be written: " + failure.code().message());
        }
        // What cannot be kept is not to be done.
        CheckReplaceable(m_stateFile);
    }
    const bool goesOn = !options.stateFile.empty() && FileExists(options.stateFile);
    const std::string& file = goesOn ? options.stateFile : options.machineFile;
    std::string comments;
    m_machine = file.empty() ? quillet::simulator::Machine::BuiltIn() : FromFile(file, comments);
    if (goesOn) {
        m_comments = std::move(comments);
        m_generation = m_machine->Store().Generation();
    }
    // Whoever sits before it waits for tests and flash memories as before a real one.
    m_machine->FollowRealTime(true);
}

void SimulatedMachine::Save() const {
    if (m_stateFile.empty()) {
        return;
    }
    // What goes on in the machine is brought up to date by this, and counts.
    const std::string text = m_comments + m_machine->Save();
    if (m_generation != m_machine->Store().Generation()) {
        // A machine holds credentials (iSCSI, link security), so a new file is its owner's alone.
        ReplaceFile(m_stateFile, text, Access::OwnerOnly);
    }
}

} // namespace quilletctl
