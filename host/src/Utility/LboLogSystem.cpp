#include "TQ/Utility/LboLogSystem.h"

#include "TQ/Utility/Message2.h"

#include <Poco/ConsoleChannel.h>
#include <Poco/Logger.h>

namespace TQ {
namespace Utility {

const std::string& LboLogSystem::loggerName() {
    static const std::string name("TQ");
    return name;
}

Poco::Logger& LboLogSystem::logger() {
    return Poco::Logger::get(loggerName());
}

void LboLogSystem::log(const Poco::Message& message) {
    Poco::Logger& target = logger();
    if (target.getLevel() >= message.getPriority()) target.log(message);
}

void LboLogSystem::error(const std::string& source, const std::string& text) {
    log(Message2(source, text, Poco::Message::PRIO_ERROR));
}

void LboLogSystem::warning(const std::string& source, const std::string& text) {
    log(Message2(source, text, Poco::Message::PRIO_WARNING));
}

void LboLogSystem::information(const std::string& source, const std::string& text) {
    log(Message2(source, text, Poco::Message::PRIO_INFORMATION));
}

void LboLogSystem::debug(const std::string& source, const std::string& text) {
    log(Message2(source, text, Poco::Message::PRIO_DEBUG));
}

void LboLogSystem::setLevel(int level) {
    logger().setLevel(level);
}

int LboLogSystem::getLevel() {
    return logger().getLevel();
}

void LboLogSystem::setChannel(const Poco::AutoPtr<Poco::Channel>& channel) {
    logger().setChannel(channel);
}

}  // namespace Utility
}  // namespace TQ
