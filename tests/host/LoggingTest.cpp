#include "TQ/Utility/LboLogSystem.h"
#include "TQ/Utility/LogHelper.h"
#include "TQ/Utility/Message2.h"

#include <Poco/AutoPtr.h>
#include <Poco/Channel.h>
#include <Poco/Logger.h>
#include <Poco/RegularExpression.h>
#include <gtest/gtest.h>

#include <vector>

namespace {

class CapturingChannel : public Poco::Channel {
public:
    void log(const Poco::Message& message) override { messages.push_back(message); }
    std::vector<Poco::Message> messages;
};

}  // namespace

TEST(Logging, MessagesKeepTheirSourceAndRespectTheLevel) {
    using TQ::Utility::LboLogSystem;
    Poco::AutoPtr<CapturingChannel> channel(new CapturingChannel);
    Poco::AutoPtr<Poco::Channel> previous = LboLogSystem::logger().getChannel();
    int previousLevel = LboLogSystem::getLevel();
    LboLogSystem::setChannel(channel);
    LboLogSystem::setLevel(Poco::Message::PRIO_WARNING);
    LboLogSystem::log(TQ::Utility::Message2("src/WS/MarkupFactory", "no such table: bn_adm_definition"));
    LboLogSystem::warning("src/Entity/BnDataType", "slow");
    LboLogSystem::information("src/Entity/BnDataType", "dropped by the level");
    LboLogSystem::debug("x", "dropped too");
    LboLogSystem::setChannel(previous);
    LboLogSystem::setLevel(previousLevel);

    ASSERT_EQ(channel->messages.size(), 2u);
    const auto& first = channel->messages[0];
    const auto& second = channel->messages[1];
    EXPECT_EQ(
        std::make_tuple(first.getSource(), first.getText(), first.getPriority(), second.getSource(),
                        second.getPriority()),
        std::make_tuple("src/WS/MarkupFactory", "no such table: bn_adm_definition", Poco::Message::PRIO_ERROR,
                        "src/Entity/BnDataType", Poco::Message::PRIO_WARNING));
    TQ::Utility::Message2 located("s", "t", Poco::Message::PRIO_NOTICE, "file.cpp", 42);
    EXPECT_TRUE(located.getSourceLine() == 42 && std::string(located.getSourceFile()) == "file.cpp");
}

TEST(Logging, TimeStampHasDateAndMilliseconds) {
    Poco::RegularExpression withDate("^\\d{4}-\\d{2}-\\d{2} \\d{2}:\\d{2}:\\d{2}\\.\\d{3}$");
    Poco::RegularExpression timeOnly("^\\d{2}:\\d{2}:\\d{2}\\.\\d{3}$");
    EXPECT_TRUE(withDate.match(TQ::Utility::LogHelper::timeStamp())) << TQ::Utility::LogHelper::timeStamp();
    EXPECT_TRUE(timeOnly.match(TQ::Utility::LogHelper::timeStamp(false)));
}
