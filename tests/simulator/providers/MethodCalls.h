// A machine whose methods are called without COM.
#pragma once

#include "machine/Dispatcher.h"
#include "machine/MachineState.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace quillet::simulator::tests {

class MethodCalls : public testing::Test {
  protected:
    using Parameters = std::vector<std::pair<std::wstring, Value>>;

    void Use(const std::string& mof, MachineOptions options = {}) {
        machine = Machine::FromText(mof, "test.mof", std::move(options));
    }
    /// Calls a method of an instance. @return its out-parameters; null when it failed
    InstancePtr Call(const std::wstring& path, const wchar_t* method, const Parameters& parameters,
                     std::optional<HRESULT> powerCut = {}) {
        const auto instance = machine->Store().FindInstance(path);
        EXPECT_NE(instance, nullptr);
        Instance in(InSignature(*instance->definition->FindMethod(method)));
        for (const auto& [name, value] : parameters) {
            EXPECT_TRUE(in.Set(name, value));
        }
        Request request(*machine, CallContext());
        if (powerCut) {
            request.CutPower(*powerCut);
        }
        InstancePtr out;
        result =
            Dispatcher(*machine).ExecMethod(request, path, method, parameters.empty() ? nullptr : &in, out);
        return out;
    }
    InstancePtr Find(const std::wstring& path) { return machine->Store().FindInstance(path); }

    std::shared_ptr<Machine> machine;
    HRESULT result = S_OK; ///< of the last call
};

} // namespace quillet::simulator::tests
