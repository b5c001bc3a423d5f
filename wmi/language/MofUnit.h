// One compilation: what its files share.
#pragma once

#include "language/MofFiles.h"

#include <map>
#include <unordered_set>

namespace quillet::wmi {

/// What all files of one compilation share.
struct MofUnit {
    MofUnit(MofTarget& into, InstanceCheck each) : target(into), check(std::move(each)) {}

    struct Alias {
        ClassPtr definition;
        std::optional<std::wstring> path; ///< unknown until the instance's keys are
    };
    struct AliasUse {
        std::size_t property = 0;
        std::wstring alias;
        MofPlace place;
    };
    /// An instance that refers to instances which come later in the text.
    struct Waiting {
        Instance instance;
        std::vector<AliasUse> uses;
        std::wstring alias;
        MofPlace place;
    };
    struct ClassUse {
        std::wstring name;
        MofPlace place;
    };

    MofTarget& target;
    InstanceCheck check;
    std::map<std::wstring, Alias, NameLess> aliases;
    std::vector<Waiting> waiting;
    std::vector<ClassUse> referencedClasses;
    std::unordered_set<InstancePtr> stored; ///< what this compilation stored
    MofFiles files;

    /// Stores a whole instance. Throws MofError.
    void Store(Instance instance, const MofPlace& place);
    /// Throws MofError when this compilation has stored an instance of the same path.
    void RefuseSecond(const Instance& instance, const MofPlace& place) const;
    /// Replaces the aliases that are known by paths; true when none is left.
    bool Resolve(Waiting& entry);
    /// Stores the instances that still wait. Throws MofError.
    void Finish();
};

} // namespace quillet::wmi
