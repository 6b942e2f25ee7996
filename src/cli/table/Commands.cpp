#include "cli/table/Commands.h"

#include "cli/table/Options.h"

#include <array>

namespace Commands {

// Each stands in src/cli/commands in a file of its own, named after it.
int ConfigGet(const Session& session);
int ConfigList(const Session& session);
int ConfigSet(const Session& session);
int Events(const Session& session);
int ForwardDiscard(const Session& session);
int ForwardQueue(const Session& session);
int ForwardRetry(const Session& session);
int ForwardStatus(const Session& session);
int Generate(const Session& session);
int History(const Session& session);
int Import(const Session& session);
int Decode(const Session& session);
int KepsFetch(const Session& session);
int KepsList(const Session& session);
int Listen(const Session& session);
int Passes(const Session& session);
int Where(const Session& session);

std::span<const Command> All() {
    using namespace Options;
    static const std::vector<Command> commands{
        {.name = u"listen",
         .summary = u"The station without a window, until it is asked to end.",
         .description =
             u"Connects to the packet engine, and again after a loss; prints frames, the satellite's "
             u"telemetry in converted values and what becomes of the link; writes the traffic log where "
             u"TERMINAL/LOGGING is on. One station runs in a program folder at a time.",
         .arguments = {},
         .options = {&listenFormat, &quiet, &fetchKeps},
         .run = Listen},
        {.name = u"decode",
         .summary = u"Telemetry lines out of files or standard input, in converted values.",
         .description =
             u"Understands lines of a callsign and its nine fields, TNC2 monitor lines, and this program's "
             u"traffic logs. Lines that are none of these are counted, and said at the end.",
         .arguments = {{.name = u"FILE", .isOptional = true, .isRepeated = true}},
         .options = {&check, &format, &local},
         .run = Decode},
        {.name = u"passes",
         .summary = u"When satellites pass over the station.",
         .description =
             u"Lists the passes that begin from now on, or from the time given on. One that is under way has "
             u"begun already.",
         .arguments = {},
         .options = {&satellite, &days, &count, &from, &at, &minElevation, &passFormat, &local},
         .run = Passes},
        {.name = u"where",
         .summary = u"Where satellites are now.",
         .description =
             u"Prints the point under a satellite and, where the station's position is known, how the "
             u"satellite stands in its sky and when it is due.",
         .arguments = {},
         .options = {&satellite, &at, &frequency, &every, &format, &local},
         .run = Where},
        {.name = u"keps fetch",
         .summary = u"Fetches orbital elements from the addresses in the settings.",
         .description =
             u"Puts the files of KEPS/FILE_1 and KEPS/FILE_2 into the Keps folder when they hold elements. "
             u"A server is not asked again within two hours of a success. A station that runs in the "
             u"program folder notices and reads them.",
         .arguments = {},
         .options = {&force},
         .run = KepsFetch},
        {.name = u"keps list",
         .summary = u"The orbital elements in the Keps folder.",
         .description = u"Prints every good set of elements, file by file, and how old it is. What is wrong "
                        u"with others is "
                        u"said.",
         .arguments = {},
         .options = {&format, &local},
         .run = KepsList},
        {.name = u"history",
         .summary = u"The readings that were kept, in converted values.",
         .description =
             u"Prints the satellite's telemetry out of tlm.txt in the order of its times, converted by the "
             u"formulae as they are now.",
         .arguments = {},
         .options = {&since, &until, &side, &channel, &format, &local},
         .run = History},
        {.name = u"events",
         .summary = u"When values crossed their limits.",
         .description =
             u"Prints the newest events out of events.txt, in the order in which they came. Limits "
             u"stand in channels.txt.",
         .arguments = {},
         .options = {&since, &until, &side, &channel, &format, &local},
         .run = Events},
        {.name = u"import",
         .summary = u"Brings logs and recordings into the history.",
         .description =
             u"Understands this program's traffic logs, TNC2 monitor lines with a time, KISS recordings and "
             u"other stations' tlm.txt. Counts what comes in, then takes it in as a whole or not at all; the "
             u"history from before stays as tlm.before-import.txt. No station may be running in the program "
             u"folder.",
         .arguments = {{.name = u"FILE", .isOptional = true, .isRepeated = true}},
         .options = {&zone, &dryRun, &undo},
         .run = Import},
        {.name = u"forward status",
         .summary = u"What became of the frames that are sent on to a server.",
         .description = u"Prints how many frames wait, were refused, with the server's words, and were sent. "
                        u"What keeps frames from being sent is said. Forwarding is set up by the settings of "
                        u"FORWARD.",
         .arguments = {},
         .options = {&format},
         .run = ForwardStatus},
        {.name = u"forward retry",
         .summary = u"Sends the frames that the server refused once more.",
         .description = u"They wait again, in their old order. A station that runs in the program folder "
                        u"does it within two seconds.",
         .arguments = {},
         .options = {},
         .run = ForwardRetry},
        {.name = u"forward discard",
         .summary = u"Forgets the frames that the server refused.",
         .description = u"A station that runs in the program folder does it within two seconds.",
         .arguments = {},
         .options = {},
         .run = ForwardDiscard},
        {.name = u"forward queue",
         .summary = u"Queues the satellite's frames of KISS recordings.",
         .description =
             u"Takes frames that the recording holds byte by byte with their time; those that are queued "
             u"already or were sent lately are not queued again. A station that runs in the program folder "
             u"does it within two seconds; without one they wait for the next.",
         .arguments = {{.name = u"FILE", .isRepeated = true}},
         .options = {},
         .run = ForwardQueue},
        {.name = u"config list",
         .summary = u"All settings.",
         .description =
             u"Prints every setting with its value and its default, and the satellite's callsigns with "
             u"their sides. A password and a token are shown as asterisks.",
         .arguments = {},
         .options = {&format},
         .run = ConfigList},
        {.name = u"config get",
         .summary = u"The value of one setting.",
         .description =
             u"Prints the value, or the default where nothing else is set. A password and a token are shown "
             u"as asterisks.",
         .arguments = {{.name = u"SECTION/KEY"}},
         .options = {&format},
         .run = ConfigGet},
        {.name = u"config set",
         .summary = u"Changes one setting.",
         .description =
             u"Stores the value when the setting can take it, and says what it can take otherwise. "
             u"AGWPE/PASSWORD and FORWARD/TOKEN are read from standard input, not from the command line, "
             u"which other users see. CALLSIGNS/CALLSIGN takes the side A or B, or nothing to remove the "
             u"callsign. No station may be running in the program folder.",
         .arguments = {{.name = u"SECTION/KEY"}, {.name = u"VALUE", .isOptional = true}},
         .options = {},
         .run = ConfigSet},
        {.name = u"generate",
         .summary = u"Prints the manual page or the completion for bash.",
         .description = u"Used when the program is built.",
         .arguments = {{.name = u"manual|completion"}},
         .options = {},
         .run = Generate,
         .isHidden = true},
    };
    return commands;
}

std::span<const Option* const> GlobalOptions() {
    static constexpr std::array options{&Options::folder, &Options::help, &Options::version};
    return options;
}

} // namespace Commands
