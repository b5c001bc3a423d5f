// A file that is there and cannot be read. Not even its owner's rights keep root from reading, but the system
// has a file that nobody can read from its beginning.
#include "SmallSchema.h"

#include <fstream>

namespace quillet::tests {
namespace {

TEST(MofUnreadable, AnIncludedFileThatFailsWhileItIsRead_IsNamed) {
    const auto main = std::filesystem::temp_directory_path() / "quillet-mof-unreadable.mof";
    std::ofstream(main) << "\n#pragma include (\"/proc/self/mem\")";
    Repository repository(L"HOST", L"ROOT\\Test");
    try {
        CompileMofFile(repository, main);
        ADD_FAILURE() << "compiled";
    } catch (const MofError& error) {
        EXPECT_EQ(error.Line(), 2u);
        EXPECT_THAT(error.what(), ::testing::HasSubstr("'/proc/self/mem' cannot be read"));
    }
    std::filesystem::remove(main);
}

} // namespace
} // namespace quillet::tests
