// WQL: a query has one answer, whether indexes serve it or not.
#include "FuzzSupport.h"

#include <quillet-wmi/Mof.h>

using namespace quillet::simulator;
using namespace quillet::simulator::fuzz;

namespace {

constexpr const char* kSchema = R"(
    class D
    {
        [Key] string Id; uint32 U; sint8 S; uint64 Q; boolean B; datetime T; real64 R; char16 C; string A[];
        D REF P;
    };
    class F : D { };
    [Association] class M { [Key] D REF Group; [Key] D REF Part; };
    instance of D { Id = "1"; U = 1; S = -1; Q = 18446744073709551615; B = TRUE; R = 1.5; C = 'x'; A = {"a"}; };
    instance of D { Id = "a"; U = 10; T = "20240131235959.123456+060"; P = "D='1'"; };
    instance of F { Id = "%"; B = FALSE; T = "00000007120000.000000:000"; P = "\\\\H\\ROOT\\Test:F.Id=\"%\""; };
    instance of F { Id = ""; U = 0; Q = 0; R = 0.0; P = "D='a'"; };
    instance of M { Group = "D='1'"; Part = "D='a'"; };
    instance of M { Group = "D='1'"; Part = "F='%'"; };
)";

const Repository& Sample() {
    static const std::unique_ptr<Repository> repository = [] {
        auto made = std::make_unique<Repository>(L"H", L"ROOT\\Test");
        CompileMof(*made, kSchema, "schema");
        return made;
    }();
    return *repository;
}

/// The same condition in a form that no index serves.
WqlCondition Unindexed(WqlCondition condition) {
    WqlCondition inner;
    inner.kind = WqlCondition::Kind::Not;
    inner.operands.push_back(std::move(condition));
    WqlCondition outer;
    outer.kind = WqlCondition::Kind::Not;
    outer.operands.push_back(std::move(inner));
    return outer;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring text = WideInput(data, size);
    WqlError error;
    std::optional<WqlQuery> query = ParseWql(text, &error);
    if (!query) {
        Require(error.position <= text.size(), "an error has a place inside the text");
        Require(!error.message.empty(), "an error has a message");
        return 0;
    }
    std::vector<InstancePtr> found;
    if (query->kind != WqlQuery::Kind::Select) {
        Sample().Associations(*query, found);
        return 0;
    }
    const HRESULT result = Sample().Select(*query, found);
    if (query->where) {
        std::vector<InstancePtr> scanned;
        query->where = Unindexed(std::move(*query->where));
        Require(Sample().Select(*query, scanned) == result, "the result does not depend on indexes");
        Require(found == scanned, "the answer does not depend on indexes");
    }
    return 0;
}
