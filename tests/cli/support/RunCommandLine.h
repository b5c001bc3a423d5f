// Runs a command line of quilletctl in this process and catches what it writes.
#pragma once

#include <Application.h>

#include <quillet-simulator/Machine.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace quillet::tests {

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

/// What stands at the other end of the output.
struct Screen {
    bool isTerminal = false;
    std::size_t width = 80;
    std::string answers = {}; ///< what a person types; none: nobody is there
};

inline Outcome RunCommandLine(const std::vector<std::string>& arguments, Screen screen = {}) {
    std::ostringstream out;
    std::ostringstream err;
    std::istringstream in(screen.answers);
    const quilletctl::Terminal terminal{out,
                                        err,
                                        screen.isTerminal,
                                        screen.isTerminal,
                                        screen.isTerminal,
                                        screen.isTerminal,
                                        screen.width,
                                        screen.answers.empty() ? nullptr : &in};
    const quilletctl::ExitStatus status = quilletctl::RunCommandLine(arguments, terminal);
    return {static_cast<int>(status), out.str(), err.str()};
}

inline std::string ReadFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void WriteFile(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

inline std::string Utf8(const std::filesystem::path& file) {
    const std::u8string name = file.u8string();
    return {name.begin(), name.end()};
}

/// A machine of tests/cli/machines.
inline std::string TestMachine(const std::string& name) {
    return QUILLET_SOURCE_DIR "/tests/cli/machines/" + name;
}

/// A folder of the test's own, and the check that the command left nothing alive behind.
class CommandLine : public testing::Test {
  protected:
    CommandLine() {
        std::random_device random;
        m_folder = std::filesystem::temp_directory_path() /
                   ("quilletctl-" + std::to_string(random()) + std::to_string(random()));
        std::filesystem::create_directories(m_folder);
    }
    ~CommandLine() override {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    void TearDown() override { EXPECT_EQ(quillet::simulator::Machine::LiveObjects(), 0); }

    std::filesystem::path InFolder(const std::string& name) const {
        return m_folder / std::u8string(name.begin(), name.end());
    }
    /// Writes a machine file: the empty machine and what is given here.
    std::string MachineFile(const std::string& mof) const {
        const std::filesystem::path file = InFolder("machine.mof");
        WriteFile(file, ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/empty.mof") + mof);
        return Utf8(file);
    }
    const std::filesystem::path& Folder() const noexcept { return m_folder; }

  private:
    std::filesystem::path m_folder;
};

} // namespace quillet::tests
