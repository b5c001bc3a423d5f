// Faults: rules that make the simulated provider fail or answer damaged data.
#pragma once

#include <quillet-simulator/Journal.h>

namespace quillet::simulator {

/// What a rule does to the call it hits.
enum class Effect {
    Fail,               ///< the call returns `code` and does nothing
    NullObject,         ///< success, but the object handed out is null
    NoOutParameters,    ///< ExecMethod succeeds without an out-parameter object
    NullValue,          ///< Get: the property is VT_NULL
    Absent,             ///< Get: the property does not exist (WBEM_E_NOT_FOUND)
    WrongType,          ///< Get: a VARIANT of type `vt` instead of the right one
    ShiftedArray,       ///< Get: the array with its lower bound at 5
    EmptyArray,         ///< Get: an array without elements (bounds 0..-1)
    NullArray,          ///< Get: the VARIANT says array, its pointer is null
    UnreadableElement,  ///< Get: an array of which element `element` cannot be converted
    HugeString,         ///< Get: a text of `size` characters
    EndOfData,          ///< Next: the enumeration ends early
    Delay               ///< the call takes `milliseconds` longer and is otherwise right
};

/// One rule. It looks at calls of `operation` whose target (and method) fits; of those it hits the
/// `nth` (from 1), and every later one too when `repeat` is set.
struct FaultRule {
    Operation operation = Operation::ExecMethod;
    /// The target must be this, or name this class or property; without regard to case; empty: any.
    std::wstring target;
    std::wstring method; ///< ExecMethod and GetMethod only; empty: any
    unsigned nth = 1;
    bool repeat = false;
    Effect effect = Effect::Fail;
    HRESULT code = WBEM_E_FAILED;
    VARTYPE vt = VT_UNKNOWN;
    LONG element = 0;
    std::size_t size = 1u << 20;
    unsigned milliseconds = 0;
};

/// The rules of a machine. Safe for many threads.
class Faults {
  public:
    void Add(FaultRule rule);
    void Clear();
    /// Counts a call and returns the rule that hits it, if any.
    std::optional<FaultRule> Hit(Operation operation, std::wstring_view target,
                                 std::wstring_view method = {});
    /// How many calls any rule has hit so far.
    unsigned Hits() const;

  private:
    struct Armed {
        FaultRule rule;
        unsigned seen = 0;
    };
    mutable std::mutex m_mutex;
    std::vector<Armed> m_rules;
    unsigned m_hits = 0;
};

} // namespace quillet::simulator
