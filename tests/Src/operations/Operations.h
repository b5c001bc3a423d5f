// The operations that go through every anomaly: one file per area, one entry per operation.
#pragma once

#include "ProviderTest.h"

#include <sstream>
#include <type_traits>

/// What an operation left in its outputs, as the golden files show it: "adapters=2 current=17".
class Outputs {
  public:
    template <class Value>
    Outputs& operator()(const char* name, const Value& value) {
        m_text << ' ' << name << '=';
        if constexpr (std::is_convertible_v<const Value&, std::wstring_view>) {
            m_text << '"' << Narrow(value) << '"';
        } else {
            m_text << value;
        }
        return *this;
    }
    /// A collection by its size.
    template <class Item>
    Outputs& operator()(const char* name, const std::vector<Item>& items) {
        return (*this)(name, items.size());
    }
    std::string Text() const { return m_text.str(); }

  private:
    std::ostringstream m_text;
};

/// One operation of the library.
struct OperationCase {
    const char* name;
    /// Runs it with fresh outputs and tells what they hold afterwards, whatever the result.
    std::function<HRESULT(CQuillet&, Outputs&)> run;
    /// What comes back when this call fails with `code`, where it is not the code itself.
    std::function<HRESULT(const JournalEntry& failed, HRESULT code)> documented = {};
    /// Whether the operation is to go on with other provider calls after this one failed, or may: where it
    /// makes the same call for two reasons, the golden file tells which failure ends it.
    std::function<bool(const JournalEntry& failed)> goesOn = {};
    /// An operation without a result code, which answers whatever happens.
    bool neverFails = false;
    /// What comes back depends on where in the operation a call stands: the golden file alone says it.
    bool differs = false;
    /// Whether the operation is meant to succeed although this of its calls failed, where the call alone does
    /// not tell.
    std::function<bool(const std::vector<JournalEntry>& calls, std::size_t failed)> ignores = {};
};

/// Operations that share a machine.
struct OperationArea {
    /// MOF instances: the smallest machine in which each operation passes every one of its steps.
    const char* machine;
    /// Whether the operations change the machine, so that each run needs a new one.
    bool changes;
    std::vector<OperationCase> operations;
};

// The areas; each is listed in Operations.cpp.
OperationArea BootOperations();
OperationArea LinkSecurityOperations();
OperationArea ReadingOperations();
OperationArea TeamOperations();
OperationArea VLANOperations();
OperationArea WritingOperations();

/// An operation with the machine of its area.
struct PreparedOperation {
    OperationCase operation;
    const char* machine;
    bool changes;
};

/// All operations of all areas.
const std::vector<PreparedOperation>& Operations();

void PrintTo(const PreparedOperation& prepared, std::ostream* out);
std::string OperationTestName(const testing::TestParamInfo<PreparedOperation>& info);

/// A connected session with the machine of the operation.
class OperationsTest : public ProviderTest, public testing::WithParamInterface<PreparedOperation> {
  protected:
    void SetUp() override { Renew(); }
    /// A new machine and a new session with it, where the operation may have changed the last one.
    void RenewAfterChange();
    HRESULT Run(Outputs& outputs) { return GetParam().operation.run(quillet, outputs); }

  private:
    void Renew();
};
