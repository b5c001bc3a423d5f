// The last page of a "new VLAN" wizard: what happens when the user presses Finish.
#pragma once

#include <quillet/client.h>

#include <string>

class VlanWizard {
  public:
    struct Outcome {
        bool done = false;
        bool restartNeeded = false;
        std::wstring message; ///< for the user; empty when all went well
    };

    explicit VlanWizard(quillet::Session& session) : m_session(session) {}

    /// Checks the VLAN and puts it on an adapter, in a client set of its own.
    Outcome Finish(const quillet::AdapterId& adapter, const quillet::NewVlan& vlan);

  private:
    quillet::Session& m_session;
};
