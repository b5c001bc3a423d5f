// Faults: rules that make the simulated provider fail or answer damaged data.
#pragma once

#include <quillet-simulator/Journal.h>

namespace quillet::simulator {

/// What a rule does to the call it hits.
enum class Effect {
    Fail,              ///< the call returns `code` and does nothing
    FailStatus,        ///< as Fail, but a call with a call result succeeds and its final status is `code`
    NullObject,        ///< success, but the object handed out is null
    Verdict,           ///< ExecMethod: the method does nothing and answers `verdict` as its "ReturnValue"
    NoOutParameters,   ///< ExecMethod succeeds without an out-parameter object
    NullValue,         ///< Get: the property is VT_NULL
    Absent,            ///< Get: the property does not exist (WBEM_E_NOT_FOUND)
    WrongType,         ///< Get: a VARIANT of type `vt` instead of the right one
    ShiftedArray,      ///< Get: the array with its lower bound at 5
    EmptyArray,        ///< Get: an array without elements (bounds 0..-1)
    NullArray,         ///< Get: the VARIANT says array, its pointer is null
    UnreadableElement, ///< Get: an array of which element `element` cannot be converted
    HugeString,        ///< Get: a text of `size` characters
    EndOfData,         ///< Next: the enumeration ends early
    PowerCut, ///< ExecMethod: the power fails halfway; nothing has changed, and the call returns `code`
    Delay     ///< the call takes `milliseconds` longer and is otherwise right
};

/// "Fail" and so on.
const wchar_t* EffectName(Effect effect) noexcept;
/// The effect of that name, without regard to case; nothing when there is none.
std::optional<Effect> EffectByName(std::wstring_view name) noexcept;
/// Whether an effect means something for an operation: NoOutParameters does for ExecMethod alone. The
/// effects on Get do for GetQualifier as well.
bool Applies(Effect effect, Operation operation) noexcept;

/// One rule. It looks at calls of `operation` whose target (and method) fits; of those it hits the
/// `nth` (from 1), and every later one too when `repeat` is set.
struct FaultRule {
    std::optional<Operation> operation = Operation::ExecMethod; ///< nothing: any provider call
    /// The target must be this, or name this class or property; without regard to case; empty: any.
    std::wstring target;
    std::wstring method;                   ///< ExecMethod and GetMethod only; empty: any
    unsigned nth = 1;                      ///< which of the calls that fit, from 1
    bool repeat = false;                   ///< whether the later ones are hit as well
    Effect effect = Effect::Fail;          ///< what happens
    HRESULT code = HRESULT(WBEM_E_FAILED); ///< Fail, FailStatus, PowerCut: the result
    VARTYPE vt = VT_UNKNOWN;               ///< WrongType: what comes instead
    LONG verdict = 1;                      ///< Verdict: the "ReturnValue"
    LONG element = 0;                      ///< UnreadableElement: its index
    std::size_t size = 1u << 20;           ///< HugeString: its characters
    unsigned milliseconds = 0;             ///< the call takes that much longer, whatever the effect
};

/// The rules of a machine. Safe for many threads.
class Faults {
  public:
    /// Throws std::invalid_argument when the effect means nothing for the operation, or `nth` is 0.
    void Add(FaultRule rule);
    /// Takes all rules away. Calls that were hit stay counted.
    void Clear();
    /// Counts a call and returns the rule that hits it, if any. When several do, the first that is more than
    /// a delay wins, and `milliseconds` is the sum of all that hit.
    /// @param target what the call is made on, as the journal shows it
    /// @param method the method of ExecMethod and GetMethod
    /// @param className the class of the object, where the target (a property) does not tell it
    std::optional<FaultRule> Hit(Operation operation, std::wstring_view target, std::wstring_view method = {},
                                 std::wstring_view className = {});
    /// How many calls any rule has hit so far.
    unsigned Hits() const;
    /// Whether there are rules at all, cheaply.
    bool Armed() const noexcept { return m_armed.load(std::memory_order_acquire); }

  private:
    struct Counted {
        FaultRule rule;
        unsigned seen = 0;
    };
    mutable std::mutex m_mutex;
    std::vector<Counted> m_rules;
    unsigned m_hits = 0;
    std::atomic<bool> m_armed{false};
};

} // namespace quillet::simulator
