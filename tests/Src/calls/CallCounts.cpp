// The comparison of journal and formula.
#include "CallCounts.h"

#include <ostream>

namespace calls {

namespace {

/// Without anything, with one, some, and as many as a parent has VLANs at most.
constexpr unsigned SIZES[] = {0, 1, 2, 7, 64};

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
    CAdapters adapters;
    for (unsigned number = 1; number <= count; ++number) {
        adapters.m_vecItems.push_back(new CAdapter);
        adapters.m_vecItems.back()->m_wsAdapterID = AdapterId(number);
    }
    return adapters;
}

CTeamedAdapters FirstMembers(unsigned count) {
    CTeamedAdapters members;
    for (unsigned number = 1; number <= count; ++number) {
        members.m_vecItems.push_back(new CTeamedAdapter);
        members.m_vecItems.back()->m_wsAdapterID = AdapterId(number);
    }
    return members;
}

TEST_P(CallCountsTest, OnMachinesOfAnySize_AreAsManyAsTheFormulaSays) {
    const Operation& operation = GetParam();
    for (const unsigned n : SIZES) {
        SCOPED_TRACE(n);
        UseText(quillet::test::MachineText(operation.machine(n)));
        Connect();
        EXPECT_EQ(Code(operation.run(quillet, n)), "0x00000000");
        EXPECT_EQ(Counted(Calls()), operation.calls(n));
    }
}

} // namespace calls
