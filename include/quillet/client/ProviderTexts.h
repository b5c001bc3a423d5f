// What the provider itself calls a number for which nobody else has a word.
#pragma once

#include <quillet/client/Adapter.h>
#include <quillet/client/Boot.h>
#include <quillet/client/Team.h>

#include <cstdint>
#include <memory>
#include <string>

namespace quillet {

class Session;

/// The property of the provider's that has the texts of an enumeration.
struct ValueSource {
    const wchar_t* className = nullptr; ///< null: there is none
    const wchar_t* property = nullptr;
};

/// Where the provider keeps the texts of an enumeration.
template <class Number>
inline constexpr ValueSource kValueSource{};
/// @name Those that it has texts for
/// @{
template <>
inline constexpr ValueSource kValueSource<StatusInfo>{L"Zorel_PhysicalEthernetAdapter", L"StatusInfo"};
template <>
inline constexpr ValueSource kValueSource<Availability>{L"Zorel_PhysicalEthernetAdapter", L"Availability"};
template <>
inline constexpr ValueSource kValueSource<HardwareStatus>{L"Zorel_PhysicalEthernetAdapter",
                                                          L"HardwareStatus"};
template <>
inline constexpr ValueSource kValueSource<LinkSecurityStatus>{L"Zorel_PhysicalEthernetAdapter",
                                                              L"LinkSecStatus"};
template <>
inline constexpr ValueSource kValueSource<Capability>{L"Zorel_PhysicalEthernetAdapter", L"Capabilities"};
template <>
inline constexpr ValueSource kValueSource<TeamMode>{L"Zorel_TeamOfAdapters", L"TeamingMode"};
template <>
inline constexpr ValueSource kValueSource<MemberRole>{L"Zorel_TeamedMemberAdapter", L"AdapterFunction"};
template <>
inline constexpr ValueSource kValueSource<MemberStatus>{L"Zorel_TeamedMemberAdapter", L"AdapterStatus"};
template <>
inline constexpr ValueSource kValueSource<IscsiStatus>{L"Zorel_NetworkBoot", L"iSCSI_Status"};
/// @}

/// The provider's texts of a session. Each class is fetched once, when a text of it is first wanted. For one
/// thread.
class ProviderTexts {
  public:
    /// Asks nothing yet.
    explicit ProviderTexts(Session& session);
    /// Before the session ends.
    ~ProviderTexts();
    ProviderTexts(const ProviderTexts&) = delete;
    ProviderTexts& operator=(const ProviderTexts&) = delete;

    /// The provider's text of a number; empty where it has none, or does not tell.
    std::wstring Of(const ValueSource& source, std::int32_t number);

  private:
    struct State;

    const std::unique_ptr<State> m_state;
};

} // namespace quillet
