// Performance profiles.
#include <quillet/PerformanceProfile.h>

CPerformanceProfile::~CPerformanceProfile() = default;

CPerformanceProfile* CPerformanceProfile::Copy() const {
    return new CPerformanceProfile(*this);
}
