#pragma once

#include <Poco/AutoPtr.h>
#include <Poco/Channel.h>
#include <Poco/Message.h>

#include <string>

namespace Poco {
class Logger;
}

namespace TQ {
namespace Utility {

/// The process's logging facade over Poco's logging. Every message goes to one logger
/// (`loggerName`) and keeps its own source, so one channel and one level govern the whole
/// process while each line still tells who reported it. Until the host sets a channel, a
/// console channel is used. Thread-safe as Poco's loggers are.
class LboLogSystem {
public:
    static const std::string& loggerName();
    static Poco::Logger& logger();

    /// Passes the message on when its priority is within the level.
    static void log(const Poco::Message& message);
    static void error(const std::string& source, const std::string& text);
    static void warning(const std::string& source, const std::string& text);
    static void information(const std::string& source, const std::string& text);
    static void debug(const std::string& source, const std::string& text);

    /// Poco priorities: 1 fatal ... 8 trace; messages above the level are dropped.
    static void setLevel(int level);
    static int getLevel();
    static void setChannel(const Poco::AutoPtr<Poco::Channel>& channel);
};

}  // namespace Utility
}  // namespace TQ
