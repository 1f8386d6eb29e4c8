#pragma once

// One line per stored row of a gateway's subtree, in the tree's own order, so that two
// processes can compare what they see.

#include "TQ_BACnet/Entity/BnDevice.h"
#include "TQ_BACnet/Entity/BnDeviceObject.h"
#include "TQ_BACnet/Entity/BnDeviceObjectProperty.h"
#include "TQ_BACnet/Entity/BnGw.h"

#include <sstream>
#include <string>

namespace TQTest {

inline std::string varText(const Poco::Dynamic::Var& value) {
    return value.isEmpty() ? "NULL" : value.convert<std::string>();
}

inline std::string dumpTree(TQ::BACnet::Entity::BnGw& gw) {
    using namespace TQ::BACnet::Entity;
    std::ostringstream out;
    out << "gw " << gw.getPK() << " " << varText(gw.getVar(BnGw::_COL_NAME)) << "\n";
    if (!gw.getDevices()) return out.str();
    for (auto& device : *gw.getDevices()) {
        out << " device " << device.first << " enabled " << device.second.isEnabled() << "\n";
        if (!device.second.getBnDeviceObjects()) continue;
        for (auto& object : *device.second.getBnDeviceObjects()) {
            Poco::Nullable<bool> enabled = object.second.getEnabled();
            out << "  object " << object.second.getIdBnObjectType() << "," << object.second.getInstanceNr()
                << " enabled "
                << (enabled.isNull()  ? "NULL"
                    : enabled.value() ? "1"
                                      : "0")
                << "\n";
            if (!object.second.getBnDeviceObjectProperties()) continue;
            for (auto& property : *object.second.getBnDeviceObjectProperties())
                out << "   property " << property.first << " = "
                    << varText(property.second.getVar(BnDeviceObjectProperty::_COL_VALUE)) << " poll "
                    << (property.second.getPollRateSec().isNull()
                            ? std::string("NULL")
                            : std::to_string(property.second.getPollRateSec().value()))
                    << "\n";
        }
    }
    return out.str();
}

}  // namespace TQTest
