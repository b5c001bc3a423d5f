// The options --up and --down.
#include "app/LinkFilter.h"

#include "ending/Failure.h"

namespace quilletctl {

void LinkFilter::Declare(Syntax& syntax, const std::string& things) {
    syntax.Flag("--up", m_isUp, "Only " + things + " with a link");
    syntax.Flag("--down", m_isDown, "Only " + things + " without a link");
}

void LinkFilter::Check() const {
    if (m_isUp && m_isDown) {
        throw UsageError("--up, --down: nothing is both");
    }
}

} // namespace quilletctl
