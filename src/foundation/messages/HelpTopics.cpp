#include "foundation/messages/HelpTopics.h"

#include <array>
#include <utility>

namespace HelpTopics {
namespace {

constexpr std::array<std::pair<qint32, const char16_t*>, 8> anchors = {{
    {messages, u"messages"},
    {formulas, u"formula"},
    {packetEngine, u"frmAgwpeSetup"},
    {station, u"frmLocation"},
    {callsigns, u"frmCalls"},
    {terminal, u"frmTerm"},
    {elements, u"frmDownload"},
    {programFolder, u"files"},
}};

} // namespace

QString Anchor(qint32 contextId) {
    for (const auto& [id, anchor] : anchors)
        if (id == contextId)
            return QString::fromUtf16(anchor);
    return {};
}

} // namespace HelpTopics
