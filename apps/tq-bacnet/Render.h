// Values shown as BACnet/WS shows them: the options that choose the format, and the writing.
#pragma once

#include "Cli.h"

#include "tq_stack/enums.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace TQ {
namespace BACnet {
class ValueContainer;
namespace WS {
class MarkupFactory;
}
}  // namespace BACnet
namespace Apps {

/// --alt, --names and --metadata.
const std::vector<OptionInfo>& renderOptions();

/// Makes the writer the options ask for, lets `write` fill it, ends the document and a line.
/// Plain text is refused unless `plainFits` (it can show single primitives only). `write`
/// returns false when it could show its value only in part; that is reported on standard error.
void writeDocument(const Args& args, std::ostream& out, bool plainFits,
                   const std::function<bool(BACnet::WS::MarkupFactory&)>& write);

/// Writes the value of a property (of its element at `arrayIndex`, -1 for the whole) as the
/// whole document in the format the options ask for, and a line end.
void renderValue(const Args& args, const BACnet::ValueContainer& value, BACNET_OBJECT_TYPE objectType,
                 BACNET_PROPERTY_ID property, int arrayIndex, std::ostream& out);

}  // namespace Apps
}  // namespace TQ
