// Files: includes beside the including file, cycles, what is missing.
#include "SmallSchema.h"

#include <fstream>

namespace quillet::tests {
namespace {

class MofInclude : public ::testing::Test {
  protected:
    void SetUp() override {
        const std::string name =
            std::string("quillet-mof-") + ::testing::UnitTest::GetInstance()->current_test_info()->name();
        m_folder = std::filesystem::temp_directory_path() / name;
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder / "sub");
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }

    void Write(const std::string& name, const std::string& text) {
        std::ofstream(m_folder / name, std::ios::binary) << text;
    }
    void ExpectError(const char* file, std::size_t line, const char* message) {
        try {
            CompileMofFile(m_repository, m_folder / "main.mof");
            FAIL() << "compiled";
        } catch (const MofError& error) {
            EXPECT_THAT(error.File(), ::testing::EndsWith(file)) << error.what();
            EXPECT_EQ(error.Line(), line) << error.what();
            EXPECT_THAT(error.what(), ::testing::HasSubstr(message));
        }
    }

    std::filesystem::path m_folder;
    Repository m_repository{L"HOST", L"ROOT\\Test"};
};

TEST_F(MofInclude, FindsFilesBesideTheIncludingOne) {
    Write("main.mof", "#pragma include (\"sub/a.mof\")\ninstance of B as $b { Id = \"1\"; };");
    Write("sub/a.mof", "#pragma include (\"b.mof\")\n#pragma include (\"..\\\\c.mof\")");
    Write("sub/b.mof", "class B { [Key] string Id; B REF Other; };");
    Write("c.mof", "instance of B { Id = \"2\"; Other = $b; };");
    CompileMofFile(m_repository, m_folder / "main.mof");
    EXPECT_EQ(m_repository.FindInstance(L"B='2'")->Text(L"Other"), L"B.Id=\"1\"");
}

TEST_F(MofInclude, TakesFileNamesBeyondAscii) {
    const std::string name = "gr\xC3\xB6\xC3\x9F"
                             "e.mof";
    Write("main.mof", "#pragma include (\"" + name + "\")");
    std::ofstream(m_folder / std::filesystem::path(std::u8string(name.begin(), name.end())))
        << "class B { };";
    CompileMofFile(m_repository, m_folder / "main.mof");
    EXPECT_TRUE(m_repository.FindClass(L"B"));
}

TEST_F(MofInclude, NamesTheIncludedFileInErrors) {
    Write("main.mof", "\n#pragma include (\"sub/a.mof\")");
    Write("sub/a.mof", "\n\n?");
    ExpectError("a.mof", 3, "no place");
}

TEST_F(MofInclude, NamesTheFileOfAnAliasThatIsNeverDefined) {
    Write("main.mof", "#pragma include (\"a.mof\")\nclass C { };");
    Write("a.mof", "class B { [Key] string Id; B REF Other; };\ninstance of B { Id = \"2\"; Other = $b; };");
    ExpectError("a.mof", 2, "unknown alias");
}

TEST_F(MofInclude, RefusesFilesThatIncludeThemselves) {
    Write("main.mof", "#pragma include (\"a.mof\")");
    Write("a.mof", "\n#pragma include (\"sub/../main.mof\")");
    ExpectError("a.mof", 2, "includes itself");
}

TEST_F(MofInclude, RefusesMissingFilesAndFolders) {
    Write("main.mof", "\n\n#pragma include (\"none.mof\")");
    ExpectError("main.mof", 3, "is not there");
    Write("main.mof", "#pragma include (\"sub\")");
    ExpectError("main.mof", 1, "is not there");
    std::filesystem::remove(m_folder / "main.mof");
    ExpectError("main.mof", 1, "cannot be read");
}

TEST_F(MofInclude, RefusesAFolderInPlaceOfAFile) {
    std::filesystem::create_directories(m_folder / "main.mof");
    ExpectError("main.mof", 1, "cannot be read");
}

TEST_F(MofInclude, RefusesEndlessDepth) {
    Write("main.mof", "#pragma include (\"0.mof\")");
    for (int i = 0; i < 40; ++i) {
        Write(std::to_string(i) + ".mof", "#pragma include (\"" + std::to_string(i + 1) + ".mof\")");
    }
    ExpectError("14.mof", 1, "too deeply");
}

} // namespace
} // namespace quillet::tests
