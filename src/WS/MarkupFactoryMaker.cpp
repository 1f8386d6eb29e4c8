#include "TQ_BACnet/WS/MarkupFactoryMaker.h"

#include "TQ_BACnet/WS/MarkupFactoryJSON.h"
#include "TQ_BACnet/WS/MarkupFactoryPLAIN.h"
#include "TQ_BACnet/WS/MarkupFactoryXML.h"

namespace TQ {
namespace BACnet {
namespace WS {

MarkupFactory* MarkupFactoryMaker::getMarkupFactoryPointer(const MarkupOptions& options, std::ostream& out,
                                                           bool useNames) {
    MarkupFactory* factory;
    if (options.alt == MarkupOptions::ALT_JSON) {
        factory = new MarkupFactoryJSON(out, false, useNames, options.compression);
    } else if (options.alt == MarkupOptions::ALT_PLAIN) {
        factory = new MarkupFactoryPLAIN(out, false, useNames, options.compression);
    } else {
        factory = new MarkupFactoryXML(out, false, useNames, options.compression);
        factory->header();
    }
    factory->setMetaData(options.metadata);
    factory->setQuoteValues(options.random);
    return factory;
}

void MarkupFactoryMaker::flushAndDeleteMarkupFactoryPointer(MarkupFactory* factory) {
    if (factory == nullptr) return;
    factory->flush();
    delete factory;
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
