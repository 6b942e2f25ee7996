#include "cli/commands/Forwarding.h"
#include "sharing/ForwardRequest.h"

namespace Commands {

int ForwardDiscard(const Session& session);

int ForwardDiscard(const Session& session) {
    return Forwarding::DoOrLeave(session, {ForwardRequest::Kind::Discard},
                                 QStringLiteral("frames discarded"));
}

} // namespace Commands
