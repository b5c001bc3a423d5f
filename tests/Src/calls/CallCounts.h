// How many provider calls an operation makes, as a formula of the machine's size. On a real machine each one
// is a remote round trip, so a call too many is a defect even where the result is right.
#pragma once

#include "ProviderTest.h"
#include "Reads.h"

#include <map>

namespace quillet::tests {

/// Numbers of provider calls, by kind.
struct Count {
    unsigned objects = 0;      ///< GetObject: an instance or a class
    unsigned queries = 0;      ///< ExecQuery
    unsigned enumerations = 0; ///< CreateInstanceEnum
    unsigned nexts = 0;        ///< Next, the one that finds the end included
    unsigned methods = 0;      ///< ExecMethod
    unsigned puts = 0;         ///< PutInstance
    unsigned deletions = 0;    ///< DeleteInstance
    unsigned statuses = 0;     ///< GetCallStatus
    unsigned results = 0;      ///< GetResultObject

    friend bool operator==(const Count&, const Count&) = default;
};
inline Count operator+(const Count& left, const Count& right) {
    return {left.objects + right.objects,
            left.queries + right.queries,
            left.enumerations + right.enumerations,
            left.nexts + right.nexts,
            left.methods + right.methods,
            left.puts + right.puts,
            left.deletions + right.deletions,
            left.statuses + right.statuses,
            left.results + right.results};
}
inline Count operator*(unsigned times, const Count& each) {
    Count all;
    for (unsigned time = 0; time < times; ++time) {
        all = all + each;
    }
    return all;
}
void PrintTo(const Count& count, std::ostream* out);

// The shapes that operations are made of.

/// Instances come one at a time: one Next for each, and one that finds the end.
inline Count Query(unsigned found) {
    return {.queries = 1, .nexts = found + 1};
}
inline Count Enumeration(unsigned found) {
    return {.enumerations = 1, .nexts = found + 1};
}
/// A query of which only the first answer counts is not read to its end.
inline constexpr Count kFirstOfQuery{.queries = 1, .nexts = 1};
/// One object by its path.
inline constexpr Count kObject{.objects = 1};
/// A method: the class object, for the signature, and the execution.
inline constexpr Count kMethod{.objects = 1, .methods = 1};
/// An object that is in the client's hands goes back, and its final status is waited for.
inline constexpr Count kCommit{.puts = 1, .statuses = 1};

// The two formulas that do not depend on the machine and that many have.
constexpr auto kOneObject = [](unsigned) { return kObject; };
constexpr auto kOneMethod = [](unsigned) { return kMethod; };

/// One operation over a machine that is n times something.
struct Operation {
    const char* name;
    MachineSize (*machine)(unsigned n);
    HRESULT (*run)(CQuillet& quillet, unsigned n);
    Count (*calls)(unsigned n);
};

void PrintTo(const Operation& operation, std::ostream* out);

/// Runs each operation on machines of growing size and compares what the journal holds with the formula.
class CallCountsTest : public ProviderTest, public testing::WithParamInterface<Operation> {
  protected:
    CallCountsTest() : ProviderTest(kNetServiceMof) {}
};

// What the files have in common.

/// The path as the machine tells it; some operations compare paths that they were given with those that they
/// read.
inline std::wstring FullPath(const std::wstring& relative) {
    return LR"(\\TESTHOST\ROOT\MarloLUM2:)" + relative;
}
/// The first adapters of the machine, as a client passes them.
CAdapters FirstAdapters(unsigned count);
/// The members of the first team, read from the machine beforehand: from the first adapter on.
CTeamedAdapters FirstMembers(unsigned count);

} // namespace quillet::tests
