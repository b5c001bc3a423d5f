// The associations that join adapters to teams ("Zorel_TeamedMemberAdapter"), from either end.
#pragma once

#include "Provider/ProviderSession.h"
#include "Provider/Wql.h"

/// What trace lines call one of them, and an enumeration of them that breaks off.
inline constexpr const wchar_t* MEMBERSHIP_VARIABLE = L"pTeamedMemberAdapter";
inline constexpr const wchar_t* MEMBERSHIPS_BROKE_OFF = L"pEnumTeamedMemberAdapters -> Next";

/// Those of a team, or of an adapter, by its path. @param failure the trace text of a failed query.
inline ProviderEnum Memberships(const ProviderSession& session, const std::wstring& path,
                                const wchar_t* failure = L"ExecQuery -> BSTR_QUERY_REFERENCE") {
    return session.Query(Wql::References(path, L_CLASS_ZOREL_TEAMEDMEMBERADAPTER.name), failure);
}
