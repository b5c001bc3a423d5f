// Performance profiles: the predefined tunings that an adapter offers.
#pragma once

#include <windows.h>

#include <quillet/Export.h>
#include <quillet/PointerArray.h>

#include <string>

/// A profile's number, as the values of the setting "PerformanceProfile" have it. Other numbers are the
/// provider's own tunings and are carried unchanged.
enum ePERFORMANCE_PROFILE : LONG {
    PERFORMANCE_PROFILE_NOT_SUPPORTED = 0, ///< as the first of a list: the adapter has no profiles
    PERFORMANCE_PROFILE_CUSTOM = 1,        ///< the settings were changed by hand
    PERFORMANCE_PROFILE_HYPERV = 5         ///< for hosts of virtual machines
};

/// One profile that an adapter offers.
class QUILLET_API CPerformanceProfile {
  public:
    /// The profile's number.
    ePERFORMANCE_PROFILE m_eProfile = PERFORMANCE_PROFILE_NOT_SUPPORTED;
    /// The profile's display text.
    std::wstring m_wsDescription;
    /// Travels with the record; no operation reads or sets it.
    LONG m_lReserved = 0;
    /// Whether this is the adapter's profile now.
    bool m_bIsCurrent = false;

    CPerformanceProfile() = default;
    CPerformanceProfile(const CPerformanceProfile&) = default;
    CPerformanceProfile& operator=(const CPerformanceProfile&) = default;
    virtual ~CPerformanceProfile();
    /// A new copy that the caller owns.
    virtual CPerformanceProfile* Copy() const;
};

/// The profiles that an adapter offers.
class QUILLET_API CPerformanceProfiles : public CPointerArray<CPerformanceProfile*> {
  public:
    /// A new deep copy that the caller owns; null for a null collection (see `CPointerArray`).
    CPerformanceProfiles* Copy() const;
};
