// Team records. Their destructors are here, so that each class has one home for its virtual table.
#include <quillet/Team.h>

CTeam::~CTeam() = default;

CTeamedAdapter::~CTeamedAdapter() = default;

CTeamedAdapter* CTeamedAdapter::Copy() const {
    return new CTeamedAdapter(*this);
}

CTeamWizAdapter::~CTeamWizAdapter() = default;

CTeamWizTeamMode::~CTeamWizTeamMode() = default;

CTeamWizTeamMode* CTeamWizTeamMode::Copy() const {
    return new CTeamWizTeamMode(*this);
}
