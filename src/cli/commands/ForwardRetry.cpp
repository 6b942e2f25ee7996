#include "cli/commands/Forwarding.h"
#include "sharing/ForwardRequest.h"

namespace Commands {

int ForwardRetry(const Session& session);

int ForwardRetry(const Session& session) {
    return Forwarding::DoOrLeave(session, {ForwardRequest::Kind::Retry},
                                 QStringLiteral("frames that wait again"));
}

} // namespace Commands
