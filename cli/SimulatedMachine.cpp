// Loading and saving the simulated machine.
#include "SimulatedMachine.h"

#include "Console.h"
#include "Failure.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>

namespace quilletctl {

namespace {

using quillet::simulator::Machine;
using quillet::simulator::MofError;

std::filesystem::path PathOf(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

bool Exists(const std::string& file) {
    std::error_code ignored;
    return std::filesystem::exists(PathOf(file), ignored);
}

std::shared_ptr<Machine> FromFile(const std::string& file) {
    const std::filesystem::path path = PathOf(file);
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        throw UsageError(file + ": no such file");
    }
    if (!std::filesystem::is_regular_file(path, error)) {
        throw UsageError(file + ": not a file");
    }
    if (!std::ifstream(path, std::ios::binary)) {
        throw UsageError(file + ": cannot be read");
    }
    try {
        return Machine::FromFile(path);
    } catch (const MofError& mistake) {
        throw UsageError(mistake.what());
    }
}

/// A name beside the file that nobody can have taken in advance.
std::filesystem::path TemporaryNameBeside(const std::filesystem::path& file) {
    std::random_device random;
    std::filesystem::path name = file;
    name += ".";
    name += std::to_string(random());
    name += std::to_string(random());
    name += ".tmp";
    return name;
}

} // namespace

bool UsesSimulator(const GlobalOptions& options) noexcept {
    return options.simulate || !options.stateFile.empty() || !HostHasWmi();
}

std::shared_ptr<Machine> LoadMachine(const GlobalOptions& options) {
    if (!options.stateFile.empty() && Exists(options.stateFile)) {
        return FromFile(options.stateFile);
    }
    return options.machineFile.empty() ? Machine::BuiltIn() : FromFile(options.machineFile);
}

void SaveMachine(const Machine& machine, const std::string& stateFile) {
    const std::filesystem::path file = PathOf(stateFile);
    const std::filesystem::path temporary = TemporaryNameBeside(file);
    const std::string text = machine.Save();
    const auto give_up = [&](const std::string& why) {
        std::error_code ignored;
        std::filesystem::remove(temporary, ignored);
        throw UsageError(stateFile + ": cannot be written: " + why);
    };

    std::ofstream stream(temporary, std::ios::binary);
    if (!stream) {
        give_up("no file can be made in its folder");
    }
    // A machine holds credentials (iSCSI, link security), so the file is its owner's alone.
    std::error_code error;
    std::filesystem::permissions(
        temporary, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, error);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    if (!stream) {
        give_up("the disk is full or failing");
    }
    std::filesystem::rename(temporary, file, error);
    if (error) {
        give_up(error.message());
    }
}

} // namespace quilletctl
