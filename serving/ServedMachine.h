// A machine with its way to the clients.
#pragma once

#include <files/KeptMachine.h>
#include <server/Service.h>

#include <cstdint>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>

namespace quillet::serving {

/// Where the calls to the providers of all machines are written down. Safe for many threads.
class CallLog {
  public:
    /// @param file empty: none. Throws Mistake where it cannot be written.
    explicit CallLog(const std::string& file);
    /// Writes what a machine was called since the last time; it forgets it.
    void Write(simulator::Machine& machine, const std::string& prefix);

  private:
    std::mutex m_mutex;
    std::ofstream m_stream;
};

class ServedMachine {
  public:
    /// Loads it. Throws Mistake. @param file "builtin": the machine that ships @param prefix of its lines in
    /// the log of calls
    ServedMachine(const std::string& file, const std::string& stateFile, CallLog& calls, std::string prefix);

    /// Its computer's name.
    std::string Name() const;
    /// Answers a request; the calls that it led to are in the log before the answer is out.
    wsman::Reply Answer(std::string request, const std::string& user);
    /// Writes it into its state file where it has changed. Throws Mistake.
    void Save();

  private:
    quilletctl::KeptMachine m_kept;
    CallLog& m_calls;
    const std::string m_prefix;
    std::shared_ptr<wmi::Connection> m_connection;
    std::unique_ptr<wsman::Service> m_service;
    std::uint64_t m_saved = 0; ///< the machine's generation then
};

} // namespace quillet::serving
