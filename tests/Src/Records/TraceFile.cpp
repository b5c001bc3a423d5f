// The trace log, directed into a file of the test's own.
#include "TraceFile.h"

#include "LumDebug.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>

namespace {

// One file for the process: the log is process-wide, and configuring it again is not this test's subject.
class LogFile {
  public:
    LogFile() {
        const std::string name = "quillet-records-" + std::to_string(std::random_device()()) + ".txt";
        m_path = std::filesystem::temp_directory_path() / name;
        // The process "RvSetup" may name a whole path; level 3 asks no registry.
        if (LumTrace().Configure(L"RvSetup", m_path.wstring().c_str(), 3, false, 0) != 0) {
            throw std::runtime_error("the trace log can not be configured");
        }
    }
    ~LogFile() {
        std::error_code ignored; // the log may still be open, and then Windows keeps the file
        std::filesystem::remove(m_path, ignored);
    }
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    std::vector<std::string> Lines() const {
        std::ifstream file(m_path);
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) {
            std::size_t start = 0;
            for (int headField = 0; headField < 5; ++headField) {
                start = line.find('\t', start) + 1;
            }
            lines.push_back(line.substr(start));
        }
        return lines;
    }

  private:
    std::filesystem::path m_path;
};

const LogFile& Log() {
    static const LogFile log;
    return log;
}

} // namespace

TraceFile::TraceFile() : m_seen(Log().Lines().size()) {}

std::vector<std::string> TraceFile::NewLines() {
    std::vector<std::string> lines = Log().Lines();
    std::vector<std::string> fresh(lines.begin() + static_cast<std::ptrdiff_t>(m_seen), lines.end());
    m_seen = lines.size();
    return fresh;
}
