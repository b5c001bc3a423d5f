// The deep copies of whole collections, which are null for a null collection.
#include <quillet/Records.h>

// Compilers take it that `this` is not null, and drop a test of it when they optimise. What they read from a
// volatile object they cannot know. The sanitizer of undefined behaviour, which stops at the head of a member
// function that is called so, is told that it is meant.
#ifdef __GNUC__
#define QUILLET_CALLED_FOR_NULL __attribute__((no_sanitize("undefined")))
#else
#define QUILLET_CALLED_FOR_NULL
#endif

namespace {

template <class TCollection>
TCollection* CopyUnlessNull(const TCollection* pCollection) {
    const TCollection* const volatile pUnknown = pCollection;
    const TCollection* const pSource = pUnknown;
    return pSource == nullptr ? nullptr : new TCollection(*pSource);
}

} // namespace

QUILLET_CALLED_FOR_NULL CAdapters* CAdapters::Copy() const {
    return CopyUnlessNull(this);
}

QUILLET_CALLED_FOR_NULL CTeamedAdapters* CTeamedAdapters::Copy() const {
    return CopyUnlessNull(this);
}

QUILLET_CALLED_FOR_NULL CTeamWizTeamModes* CTeamWizTeamModes::Copy() const {
    return CopyUnlessNull(this);
}

QUILLET_CALLED_FOR_NULL CSettings* CSettings::Copy() const {
    return CopyUnlessNull(this);
}

QUILLET_CALLED_FOR_NULL CPerformanceProfiles* CPerformanceProfiles::Copy() const {
    return CopyUnlessNull(this);
}
