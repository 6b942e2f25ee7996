#pragma once

#include "cli/table/Session.h"
#include "foundation/settings/clsIni.h"
#include "sharing/ForwardSettings.h"
#include "sharing/SidsRequest.h"

struct ForwardRequest;

/// What the commands of forwarding have in common.
namespace Forwarding {

/// What a request tells of the station, and how it forwards, by the settings as they are.
struct Setup {
    explicit Setup(const Session& session);

    clsIni ini;
    ForwardSettings settings;
    SidsStation station;
};

/// Does what is asked, or leaves it to the station that runs in the folder, and prints so; `what` tells of
/// which frames it answers the number. Answers the program's exit code.
int DoOrLeave(const Session& session, const ForwardRequest& request, const QString& what);

} // namespace Forwarding
