#include "TQ/Utility/Message2.h"

namespace TQ {
namespace Utility {

Message2::Message2(const std::string& source, const std::string& text, Poco::Message::Priority priority)
    : Poco::Message(source, text, priority) {}

Message2::Message2(const std::string& source, const std::string& text, Poco::Message::Priority priority,
                   const char* file, int line)
    : Poco::Message(source, text, priority, file, line) {}

}  // namespace Utility
}  // namespace TQ
