#pragma once

#include "TQ_BACnet/WS/MarkupFactory.h"
#include "TQ_BACnet/WS/MarkupOptions.h"

#include <ostream>

namespace TQ {
namespace BACnet {
namespace WS {

/// Makes the writer a request's options ask for, and ends it.
class MarkupFactoryMaker {
public:
    /// JSON for "json", plain text for "plain", XML (with its declaration already written) for
    /// anything else; never indented. Metadata categories and value quoting ("random") come from
    /// the options. Free the result with `flushAndDeleteMarkupFactoryPointer`.
    static MarkupFactory* getMarkupFactoryPointer(const MarkupOptions& options, std::ostream& out,
                                                  bool useNames);
    /// Flushes (completing a compressed stream) and frees the writer; a null pointer is ignored.
    /// Close the open markups first.
    static void flushAndDeleteMarkupFactoryPointer(MarkupFactory* factory);
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
