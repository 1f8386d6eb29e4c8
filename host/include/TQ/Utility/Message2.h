#pragma once

#include <Poco/Message.h>

#include <string>

namespace TQ {
namespace Utility {

/// A Poco::Message built in one step from the source that reports it, its text and priority.
/// The source names the reporting unit, e.g. "src/WS/MarkupFactory".
class Message2 : public Poco::Message {
public:
    Message2(const std::string& source, const std::string& text,
             Poco::Message::Priority priority = Poco::Message::PRIO_ERROR);
    Message2(const std::string& source, const std::string& text, Poco::Message::Priority priority,
             const char* file, int line);
};

}  // namespace Utility
}  // namespace TQ
