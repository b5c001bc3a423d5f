// One process at a time with one file. One implementation file per host.
#pragma once

#include <filesystem>
#include <memory>

namespace quilletctl {

/// While it lives, everybody else who makes one for the same file waits. The file need not be there, and may
/// be replaced meanwhile. Nothing is left in the file system, also of a process that was killed.
class FileLock {
  public:
    /// Waits its turn. The path leads through no symbolic link. Throws std::system_error.
    explicit FileLock(const std::filesystem::path& file);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace quilletctl
