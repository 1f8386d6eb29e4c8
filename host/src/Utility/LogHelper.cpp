#include "TQ/Utility/LogHelper.h"

#include <Poco/DateTimeFormatter.h>
#include <Poco/LocalDateTime.h>

namespace TQ {
namespace Utility {

std::string LogHelper::timeStamp(bool withDate) {
    return Poco::DateTimeFormatter::format(Poco::LocalDateTime(),
                                           withDate ? "%Y-%m-%d %H:%M:%S.%i" : "%H:%M:%S.%i");
}

}  // namespace Utility
}  // namespace TQ
