// MOF: what compiles is written back as text that compiles to the same.
#include "FuzzSupport.h"

#include <quillet-wmi/Mof.h>

#include <algorithm>

using namespace quillet::simulator;
using namespace quillet::simulator::fuzz;

namespace {

bool Compiles(Repository& repository, std::string_view text) {
    try {
        CompileMof(repository, text, "input");
        return true;
    } catch (const MofError& error) {
        const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
        Require(error.Line() >= 1 && error.Line() <= lines, "an error has a line of the text");
        Require(error.Column() >= 1 && error.Column() <= text.size() + 1,
                "an error has a column of the text");
        return false;
    }
}

void RequireCompiles(Repository& repository, const std::string& text) {
    try {
        CompileMof(repository, text, "written");
    } catch (const MofError& error) {
        std::fprintf(stderr, "%s\n%s\n", text.c_str(), error.what());
        Require(false, "what is written compiles");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    Repository repository(L"HOST", L"ROOT\\Test");
    if (!Compiles(repository, text)) {
        return 0;
    }
    Repository again(L"HOST", L"ROOT\\Test");
    for (const QualifierDeclaration& declaration : repository.QualifierDeclarations()) {
        Require(again.DeclareQualifier(declaration) == 0,
                "a qualifier can be declared in another repository");
    }
    // All classes in one text: their references may go forwards.
    std::string classes;
    for (const ClassPtr& definition : repository.Classes()) {
        classes += quillet::wmi::ToUtf8(ObjectText(*definition));
    }
    RequireCompiles(again, classes);
    const std::string instances = WriteInstancesAsMof(repository.AllInstances());
    RequireCompiles(again, instances);

    const std::vector<ClassPtr> definitions = repository.Classes();
    const std::vector<ClassPtr> definitionsAgain = again.Classes();
    Require(definitions.size() == definitionsAgain.size(), "as many classes as before");
    for (std::size_t i = 0; i < definitions.size(); ++i) {
        Require(ObjectText(*definitions[i]) == ObjectText(*definitionsAgain[i]), "the same classes");
    }
    const std::vector<InstancePtr> before = repository.AllInstances();
    const std::vector<InstancePtr> after = again.AllInstances();
    Require(before.size() == after.size(), "as many instances as before");
    for (std::size_t i = 0; i < before.size(); ++i) {
        Require(before[i]->definition->name == after[i]->definition->name, "instances of the same classes");
        Require(before[i]->values == after[i]->values, "instances with the same values");
        Require(repository.FindInstance(repository.FullPath(*before[i])) == before[i],
                "an instance is found by its path");
    }
    Require(WriteInstancesAsMof(again.AllInstances()) == instances, "writing is stable");
    return 0;
}
