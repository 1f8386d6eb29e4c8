// ObjectJSON from an ABSTRACT-SYNTAX.&Type value: the JSON writer's rendering of it, read back.
#include "TQ_BACnet/WS/ObjectJSON.h"

#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/WS/MarkupFactoryJSON.h"
#include "WsSupport.h"

#include <Poco/JSON/Parser.h>

#include <sstream>

namespace TQ {
namespace BACnet {
namespace WS {

void ObjectJSON::setValue(const DataType::ANY& any) {
    clear();
    _descriptor = any.getDescriptor();
    std::ostringstream text;
    {
        MarkupFactoryJSON writer(text, false, false, -1);
        // Every value quoted: the getters read strings only.
        writer.setQuoteValues(true);
        any.markup(writer, "", false, true, 0);
        writer.closeAllOpenMarkups();
        writer.flush();
    }
    std::string json = text.str();
    if (json.empty()) return;
    // A single primitive may come out as a bare member; it is one value all the same.
    if (json[0] != '{') json = "{" + json + "}";
    const Poco::Dynamic::Var parsed = Poco::JSON::Parser().parse(json);
    if (const Poco::JSON::Object* object = WsSupport::objectOf(parsed)) {
        for (const auto& member : *object) set(member.first, member.second);
    }
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
