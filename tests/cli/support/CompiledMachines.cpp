// A machine's text is compiled once in a test program. Each command makes its machine anew from a file, and
// compiling the few files that the tests use took most of their time. The linker (--wrap) lets those calls
// come here first.
#include <quillet-simulator/Machine.h>

#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

namespace quillet::tests {

using simulator::Machine;
using simulator::MachineOptions;

std::shared_ptr<Machine> Compiled(const std::filesystem::path& file,
                                  const MachineOptions& options) asm("__real_" QUILLET_MACHINE_FROM_FILE);
std::shared_ptr<Machine> CompiledOnce(const std::filesystem::path& file,
                                      const MachineOptions& options) asm("__wrap_" QUILLET_MACHINE_FROM_FILE);

/// A copy of what the same file made when it had the same contents. Only for machines without options.
std::shared_ptr<Machine> CompiledOnce(const std::filesystem::path& file, const MachineOptions& options) {
    static std::map<std::pair<std::filesystem::path, std::string>, std::shared_ptr<Machine>> fresh;
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    if (!(text << stream.rdbuf())) {
        return Compiled(file, options); // which says what is wrong with it
    }
    const auto key = std::make_pair(file, text.str());
    auto found = fresh.find(key);
    if (found == fresh.end()) {
        constexpr std::size_t kKept = 8;
        std::shared_ptr<Machine> machine = Compiled(file, options);
        if (fresh.size() == kKept) {
            fresh.clear();
        }
        found = fresh.emplace(key, std::move(machine)).first;
    }
    return found->second->Copy();
}

} // namespace quillet::tests
