// The comparison of journal and formula.
#include "CallCounts.h"

#include <ostream>

namespace quillet::tests {

namespace {

/// Without anything, with one, some, and as many as a parent has VLANs at most.
constexpr unsigned kSizes[] = {0, 1, 2, 7, 64};

Count Counted(const std::vector<JournalEntry>& journal) {
    using quillet::simulator::Operation;
    Count count;
    const std::map<Operation, unsigned*> kinds = {
        {Operation::GetObject, &count.objects},
        {Operation::ExecQuery, &count.queries},
        {Operation::CreateInstanceEnum, &count.enumerations},
        {Operation::Next, &count.nexts},
        {Operation::ExecMethod, &count.methods},
        {Operation::PutInstance, &count.puts},
        {Operation::DeleteInstance, &count.deletions},
        {Operation::GetCallStatus, &count.statuses},
        {Operation::GetResultObject, &count.results},
    };
    for (const JournalEntry& entry : journal) {
        const auto kind = kinds.find(entry.operation);
        if (kind == kinds.end()) {
            ADD_FAILURE() << "a call of another kind: " << Narrow(entry.Line());
        } else {
            ++*kind->second;
        }
    }
    return count;
}

/// Records that name the adapters from the first on.
template <class Records, class Record>
Records First(unsigned count) {
    Records records;
    for (unsigned number = 1; number <= count; ++number) {
        records.m_vecItems.push_back(new Record);
        records.m_vecItems.back()->m_wsAdapterID = AdapterId(number);
    }
    return records;
}

} // namespace

void PrintTo(const Count& count, std::ostream* out) {
    *out << "GetObject " << count.objects << ", ExecQuery " << count.queries << ", CreateInstanceEnum "
         << count.enumerations << ", Next " << count.nexts << ", ExecMethod " << count.methods
         << ", PutInstance " << count.puts << ", DeleteInstance " << count.deletions << ", GetCallStatus "
         << count.statuses << ", GetResultObject " << count.results;
}

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

CAdapters FirstAdapters(unsigned count) {
    return First<CAdapters, CAdapter>(count);
}

CTeamedAdapters FirstMembers(unsigned count) {
    return First<CTeamedAdapters, CTeamedAdapter>(count);
}

TEST_P(CallCountsTest, OnMachinesOfAnySize_AreAsManyAsTheFormulaSays) {
    const Operation& operation = GetParam();
    for (const unsigned n : kSizes) {
        SCOPED_TRACE(n);
        UseText(MachineText(operation.machine(n)));
        Connect();
        EXPECT_EQ(Code(operation.run(quillet, n)), "0x00000000");
        EXPECT_EQ(Counted(Calls()), operation.calls(n));
    }
}

} // namespace quillet::tests
