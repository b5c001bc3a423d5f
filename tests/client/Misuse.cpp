// What must not compile: MISUSE says which line is tried. With 0, everything else does.
#include <quillet/client.h>

#include <iostream>

namespace {

using namespace quillet;

[[maybe_unused]] void Use(Session& session, const AdapterId& adapter, const TeamId& team,
                          const Secret& secret) {
#if MISUSE == 0
    static_cast<void>(session.Members(team));
    static_cast<void>(session.ReadState(adapter));
    static_cast<void>(session.Vlans(adapter));
    static_cast<void>(session.Vlans(team));
    Transaction transaction(session);
    static_cast<void>(transaction.Apply());
    std::wcout << secret.Reveal().size() << Text(TeamMode::FaultTolerance);
#elif MISUSE == 1  // a team's identifier for an adapter's
    static_cast<void>(session.ReadState(team));
#elif MISUSE == 2  // a text for an identifier
    static_cast<void>(session.Members(L"Zorel_TeamOfAdapters.Name=\"{T}\""));
#elif MISUSE == 3  // a VLAN's identifier for what carries one
    static_cast<void>(session.Vlans(VlanId(L"Zorel_VLAN.Name=\"{V}\"")));
#elif MISUSE == 4  // what a transaction still needs, dropped
    Transaction transaction(session);
    transaction.Apply();
#elif MISUSE == 5  // a transaction that ends where it begins
    Transaction{session};
#elif MISUSE == 6  // a secret into a stream
    std::cout << secret;
#elif MISUSE == 7  // a secret into a wide stream
    std::wcout << secret;
#elif MISUSE == 8  // a secret for a text
    const std::wstring text = secret;
#elif MISUSE == 9  // a secret for a wide view
    const std::wstring_view text = secret;
#elif MISUSE == 10 // a provider's verdict on an image, dropped
    session.VerifyImages(BootAgentId(), {}, {});
#elif MISUSE == 11 // a second session of one
    Session copy(session);
#elif MISUSE == 12 // the problems of a VLAN for those of a team
    const Flags<TeamProblem> problems = session.CheckVlan(team, {});
#elif MISUSE == 13 // an adapter compared with a team
    static_cast<void>(adapter == team);
#endif
    static_cast<void>(session);
    static_cast<void>(adapter);
    static_cast<void>(team);
    static_cast<void>(secret);
}

} // namespace
