// The list of the areas.
#include "Operations.h"

const std::vector<PreparedOperation>& Operations() {
    static const std::vector<PreparedOperation> kAll = [] {
        std::vector<PreparedOperation> prepared;
        for (const OperationArea& area : {
                 LinkSecurityOperations(),
                 ReadingOperations(),
                 TeamOperations(),
                 BootOperations(),
                 VLANOperations(),
                 WritingOperations(),
             }) {
            for (const OperationCase& operation : area.operations) {
                prepared.push_back({operation, area.machine, area.changes});
            }
        }
        return prepared;
    }();
    return kAll;
}

void PrintTo(const PreparedOperation& prepared, std::ostream* out) {
    *out << prepared.operation.name;
}

std::string OperationTestName(const testing::TestParamInfo<PreparedOperation>& info) {
    return info.param.operation.name;
}

void OperationsTest::Renew() {
    // A session that ends lets go of its machine before the next one begins.
    if (QuilletTestAccess::ServiceCookie(quillet) != 0) {
        quillet.UninitQuillet();
    }
    UseText(GetParam().machine);
    Connect();
}

void OperationsTest::RenewAfterChange() {
    if (GetParam().changes) {
        Renew();
    }
}
