// What the command line says.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillet::serving {

/// The command line, or a file that it names, cannot be used.
class Mistake : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct TlsOption {
    std::string certificate;
    std::string key;
};

struct Options {
    std::vector<std::string> machines; ///< files; "builtin": the one that ships
    std::string address;
    int port = 0;
    std::optional<TlsOption> tls;
    std::string user;
    std::string passwordFile;
    std::optional<int> passwordDescriptor;
    std::string usersFile;
    std::string journalFile;
    std::string stateFile;
    bool isQuiet = false;
};

/// Reads it. Nothing: it asked for help or the version, and has it. Throws Mistake, also for an address that
/// others can reach without both TLS and a password.
std::optional<Options> ReadOptions(int argumentCount, const char* const* arguments);

} // namespace quillet::serving
