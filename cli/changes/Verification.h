// Whether a change took: what was asked for, held against what the machine tells afterwards.
#pragma once

#include "ending/Failure.h"
#include "texts/Field.h"

#include <quillet/client/Secret.h>

#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

/// A provider may accept a change and leave it, or a part of it, undone: most of its verdicts are only
/// traced. So it is asked again after the client set is closed, for until then it may keep changes back.
class Verification {
  public:
    /// Runs `compare`, which reads back and compares. Where a read fails, the change may have taken all the
    /// same; End() tells that failure.
    template <class Compare>
    static Verification By(Compare compare) {
        Verification verification;
        try {
            compare(verification);
        } catch (const Refusal& unread) {
            verification.m_told = false;
            verification.m_unread = unread;
        }
        return verification;
    }

    /// Compares each value that is not null, and no secret, with the one of its key in the other list.
    void Compare(const std::vector<Field>& wanted, const std::vector<Field>& found);
    /// Compares two secrets, of which nothing is kept but that they differ.
    /// @param key of the secret among the fields
    void CompareSecret(const std::vector<Field>& fields, const char* key, const quillet::Secret& wanted,
                       const quillet::Secret& found);
    /// Adds something that did not take, and a sentence of it for people.
    void Add(const std::string& what, Json wanted, Json found, std::string sentence);
    /// Nothing that can be read tells whether the change took.
    void LeaveOpen() noexcept { m_told = false; }

    /// Whether all of it took; nothing where nobody can tell.
    std::optional<bool> Took() const noexcept;
    /// Adds "took" (true, false, or null where nobody can tell) and "differences" to an answer.
    void AddTo(Json& answer) const;
    Json Differences() const;
    /// What was done where it took, else what did not, or that nobody can tell.
    std::string Text(const std::string& done) const;
    /// After the answer: throws NotTaken or, where reading back failed, its Refusal.
    /// @param asked completes "could not …"
    void End(const std::string& asked) const;

  private:
    struct Difference {
        std::string what;
        Json wanted;
        Json found;
        std::string sentence;
    };

    std::vector<Difference> m_differences;
    bool m_told = true;
    std::optional<Refusal> m_unread;
};

} // namespace quilletctl
