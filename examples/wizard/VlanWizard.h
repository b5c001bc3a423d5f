// The last page of a "new VLAN" wizard: what happens when the user presses Finish.
#pragma once

#include <quillet/Quillet.h>

#include <string>

class VlanWizard {
  public:
    struct Outcome {
        bool done = false;
        bool restartNeeded = false;
        std::wstring message; ///< for the user; empty when all went well
    };

    explicit VlanWizard(CQuillet& quillet) : m_quillet(quillet) {}

    /// Checks the VLAN and puts it on an adapter, in a client set of its own.
    Outcome Finish(const std::wstring& adapterId, LONG number, const std::wstring& name);

  private:
    CQuillet& m_quillet;
};
