// The network service: client sets, and the warnings of the whole machine.
#include "providers/ClassProvider.h"
#include "machine/MachineState.h"

namespace quillet::simulator {

namespace {

class NetServiceProvider final : public ClassProvider {
  public:
    HRESULT ExecMethod(MethodCall& call) override {
        if (SameName(call.method.name, L"BeginApply")) {
            return BeginApply(call);
        }
        if (SameName(call.method.name, L"Apply")) {
            return Apply(call);
        }
        if (SameName(call.method.name, L"GetKavlorWarnings")) {
            return GetKavlorWarnings(call);
        }
        return ClassProvider::ExecMethod(call);
    }

  private:
    static ClientSets& Sets(const MethodCall& call) { return call.request.Target().Internals().sets; }

    static HRESULT BeginApply(MethodCall& call) {
        call.Answer(L"ClientSetHandle", Sets(call).Open());
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }

    static HRESULT Apply(MethodCall& call) {
        const auto handle = static_cast<LONG>(call.in.Number(L"ClientSetHandle"));
        if (!Sets(call).IsOpen(handle)) {
            if (call.request.Target().Internals().strict) {
                return HRESULT(WBEM_E_INVALID_PARAMETER);
            }
            call.request.Note(L"client set " + std::to_wstring(handle) + L" is not open");
        }
        call.Answer(L"FollowupAction", Sets(call).Close(handle));
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }

    static HRESULT GetKavlorWarnings(MethodCall& call) {
        // Called on the class, the method still means the one service of the machine.
        InstancePtr service = call.instance;
        if (service == nullptr) {
            const auto services = call.request.Target().Store().Instances(call.definition->name);
            service = services.empty() ? nullptr : services.front();
        }
        const Value* warnings = service != nullptr ? service->Find(L"Warnings") : nullptr;
        if (warnings != nullptr) {
            call.out.Set(L"Warnings", *warnings);
        }
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }
};

} // namespace

std::unique_ptr<ClassProvider> MakeNetServiceProvider() {
    return std::make_unique<NetServiceProvider>();
}

} // namespace quillet::simulator
