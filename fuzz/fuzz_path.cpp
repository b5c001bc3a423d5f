// Object paths: what parses is written as text that parses to the same.
#include "FuzzSupport.h"

#include <quillet-wmi/Mof.h>

using namespace quillet::simulator;
using namespace quillet::simulator::fuzz;

namespace {

constexpr const char* kSchema = R"(
    class D { [Key] string Id; };
    class F : D { };
    class N { [Key] uint32 Number; [Key] boolean Flag; [Key] char16 Letter; };
    [Association] class M { [Key] D REF Group; [Key] M REF Part; };
    [Singleton] class S { };
    instance of F { Id = "1"; };
    instance of S { };
)";

const Repository& Sample() {
    static const std::unique_ptr<Repository> repository = [] {
        auto made = std::make_unique<Repository>(L"HOST", L"ROOT\\Test");
        CompileMof(*made, kSchema, "schema");
        return made;
    }();
    return *repository;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring text = WideInput(data, size);
    std::wstring error;
    const std::optional<ObjectPath> path = ObjectPath::Parse(text, &error);
    Require(path.has_value() == error.empty(), "a path or a reason");
    Require(Sample().SameObject(text, text), "a path names what it names");
    if (!path) {
        return 0;
    }
    const std::wstring written = path->Text();
    const std::optional<ObjectPath> again = ObjectPath::Parse(written);
    Require(again.has_value(), "a written path parses");
    Require(*again == *path, "a written path is the same path");
    Require(again->Text() == written, "writing is stable");
    Require(Sample().SameObject(text, written), "a written path names the same object");
    const InstancePtr instance = Sample().FindInstance(*path);
    Require(!instance || Sample().SameObject(Sample().FullPath(*instance), Sample().ReferenceText(text)),
            "an instance is where its path says");
    return 0;
}
