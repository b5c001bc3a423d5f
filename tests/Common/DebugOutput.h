// What goes to the debugger while a test looks; one implementation per host.
#pragma once

#include <memory>
#include <string>
#include <vector>

class DebugOutput {
  public:
    DebugOutput();
    ~DebugOutput();
    DebugOutput(const DebugOutput&) = delete;
    DebugOutput& operator=(const DebugOutput&) = delete;

    std::vector<std::wstring> Texts() const;
};
