// Diagnostic tests: starting and stopping them.
#include "providers/ClassProvider.h"
#include "machine/MachineState.h"

#include <algorithm>

namespace quillet::simulator {

namespace {

using Verdict = DiagnosticRuns::Verdict;

class DiagTestProvider final : public ClassProvider {
  public:
    HRESULT ExecMethod(MethodCall& call) override {
        const bool starts = SameName(call.method.name, L"RunTest");
        if (!starts && !SameName(call.method.name, L"DiscontinueTest")) {
            return ClassProvider::ExecMethod(call);
        }
        if (call.instance == nullptr) {
            return HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
        }
        const Verdict verdict = !IsOffered(call) ? Verdict::NotOfThisAdapter
                                : starts         ? Start(call)
                                                 : Stop(call);
        if (!starts) {
            call.Answer(L"TestingStopped", verdict == Verdict::Done);
        }
        call.Answer(L"ReturnValue", static_cast<std::int64_t>(verdict));
        return S_OK;
    }

  private:
    static Machine::State& State(const MethodCall& call) { return call.request.Target().Internals(); }

    /// Whether the adapter that the call names offers the test.
    static bool IsOffered(const MethodCall& call) {
        const auto& store = call.request.Target().Store();
        const auto query = ParseWql(L"REFERENCES OF {" + RelativePath(*call.instance) +
                                    L"} WHERE ResultClass = Zorel_DiagTestForAdapter");
        std::vector<InstancePtr> offers;
        if (!query || FAILED(store.Associations(*query, offers))) {
            return false;
        }
        const std::wstring adapter = call.in.Text(L"SystemElement");
        return std::any_of(offers.begin(), offers.end(), [&](const InstancePtr& offer) {
            return store.SameObject(offer->Text(L"Dependent"), adapter);
        });
    }

    static Verdict Start(const MethodCall& call) {
        return State(call).diagnostics.Start(State(call).store, call.instance->Text(L"Name"),
                                             State(call).clock.Now());
    }

    static Verdict Stop(const MethodCall& call) {
        const std::wstring test = call.instance->Text(L"Name");
        const auto result = State(call).store.FindInstance(call.in.Text(L"Result"));
        if (result == nullptr || !result->definition->IsA(L"Zorel_DiagResult") ||
            result->Text(L"DiagnosticName") != test) {
            return Verdict::NotItsResult;
        }
        return State(call).diagnostics.Stop(State(call).store, test, State(call).clock.Now());
    }
};

} // namespace

std::unique_ptr<ClassProvider> MakeDiagTestProvider() {
    return std::make_unique<DiagTestProvider>();
}

} // namespace quillet::simulator
