// Debugger output of our own platform layer.
#include "DebugOutput.h"

#include <quillet-platform/TestHooks.h>

namespace {
std::vector<std::wstring> texts;
}

DebugOutput::DebugOutput() {
    texts.clear();
    quillet::platform::SetDebugOutput([](const std::wstring& text) { texts.push_back(text); });
}

DebugOutput::~DebugOutput() {
    quillet::platform::SetDebugOutput({});
}

std::vector<std::wstring> DebugOutput::Texts() const {
    return texts;
}
