// tq-bacnet against simulated devices on loopback, each a process of its own as on site.
#include "RunProcess.h"

#include <Poco/File.h>
#include <Poco/Process.h>
#include <Poco/TemporaryFile.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <memory>
#include <thread>

namespace {

using TQ::Test::Ran;

class NetworkToolTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        dir = new Poco::TemporaryFile();
        Poco::File(dir->path()).createDirectories();
        port = std::to_string(46100 + (getpid() % 1500) * 8);
        for (const char* instance : {"1234", "1235", "1236"}) {
            const std::string address = std::string("127.0.0.") + std::to_string(std::stoi(instance) - 1232);
            devices.push_back(Poco::Process::launch(
                TQ_SIM_DEVICE, {"--instance", instance, "--interface", address, "--port", port, "--log-records", "20"},
                nullptr, nullptr, nullptr));
        }
        // The devices are up once all three answer.
        for (int attempt = 0; attempt < 50; ++attempt) {
            const Ran ran = tool({"whois", "--wait", "1", "--alt", "json"});
            if (ran.out.find("1236") != std::string::npos && ran.out.find("1234") != std::string::npos) return;
        }
    }
    static void TearDownTestSuite() {
        for (Poco::ProcessHandle& device : devices) {
            Poco::Process::kill(device);
            device.wait();
        }
        devices.clear();
        delete dir;
        dir = nullptr;
    }
    static Ran tool(std::vector<std::string> args) {
        for (const char* option : {"--interface", "127.0.0.1", "--port"}) args.push_back(option);
        args.push_back(port);
        return TQ::Test::runProcess(TQ_BACNET_TOOL, args, {{"TQ_BACNET_DB", dir->path() + "/tq.db"}});
    }
    static void expect(const std::vector<std::string>& args, int status, const std::string& out, const std::string& err = "") {
        std::string line;
        for (const std::string& arg : args) line += arg + " ";
        SCOPED_TRACE(line);
        const Ran ran = tool(args);
        EXPECT_EQ(status, ran.status) << ran.err;
        EXPECT_EQ(out, ran.out);
        EXPECT_NE(std::string::npos, ran.err.find(err)) << ran.err;
    }
    static Poco::TemporaryFile* dir;
    static std::string port;
    static std::vector<Poco::ProcessHandle> devices;
};
Poco::TemporaryFile* NetworkToolTest::dir = nullptr;
std::string NetworkToolTest::port;
std::vector<Poco::ProcessHandle> NetworkToolTest::devices;

TEST_F(NetworkToolTest, WhoIsFindsTheDevicesInRange) {
    const Ran all = tool({"whois", "--wait", "1", "--alt", "json"});
    ASSERT_EQ(0, all.status) << all.err;
    EXPECT_NE(std::string::npos,
              all.out.find("\"1235\":{\"address\":\"127.0.0.3:" + port + "\",\"vendor-identifier\":947,"
                           "\"max-apdu-length-accepted\":1476,\"segmentation-supported\":\"segmented-both\"}"))
        << all.out;
    const Ran one = tool({"whois", "1235", "1235", "--wait", "1", "--alt", "json"});
    EXPECT_EQ(std::string::npos, one.out.find("1234"));
    EXPECT_NE(std::string::npos, one.out.find("1235"));
    expect({"whois", "7"}, 2, "", "give both limits");
}

TEST_F(NetworkToolTest, ReadsByInstanceAndByAddress) {
    expect({"read", "1234", "analog-input,1", "present-value", "--alt", "json"}, 0, "{\"$value\":21.5}\n");
    expect({"read", "127.0.0.3:" + port, "analog-input,1", "present-value", "--alt", "plain"}, 0, "21.5\n");
    expect({"read", "1236", "device,1236", "object-list", "0", "--alt", "json"}, 0, "{\"$value\":9}\n");
    expect({"readm", "1234", "analog-input,1", "present-value", "units", "--names", "binary-value,1", "present-value",
            "--alt", "json"},
           0, "{\"analog-input,1\":{\"present-value\":21.5,\"units\":\"degrees-celsius\"},"
              "\"binary-value,1\":{\"present-value\":\"inactive\"}}\n");
}

TEST_F(NetworkToolTest, WritesAndReadsBack) {
    expect({"write", "1235", "analog-output,1", "present-value", "40", "--priority", "8"}, 0,
           "written: present-value of analog-output,1 at priority 8\n");
    expect({"read", "1235", "analog-output,1", "priority-array", "8", "--alt", "json"}, 0, "{\"real\":40}\n");
    // Relinquishing is checked where the device answers it (loopback) and through the gateway.
}

TEST_F(NetworkToolTest, TrendLogAndTime) {
    const Ran log = tool({"readrange", "1234", "trend-log,1", "--count", "2", "--alt", "json"});
    EXPECT_EQ(0, log.status) << log.err;
    EXPECT_NE(std::string::npos, log.out.find("\"2\":{\"timestamp\":{")) << log.out;
    EXPECT_EQ(std::string::npos, log.out.find("\"3\":")) << log.out;
    expect({"timesync", "1234", "--utc"}, 0, "UTC time sent\n");
    expect({"timesync", "--broadcast"}, 0, "time sent\n");
}

TEST_F(NetworkToolTest, DiscoverListsAndStoresTheObjects) {
    const std::string air = "\"analog-input,1\":{\"object-type\":\"analog-input\",\"object-name\":"
                            "\"outside air temperature\",\"present-value\":21.5}";
    for (const std::string& device : {std::string("1236"), "127.0.0.4:" + port}) {
        const Ran ran = tool({"discover", device, "--store", "--alt", "json"});
        EXPECT_EQ(0, ran.status) << ran.err;
        EXPECT_NE(std::string::npos, ran.out.find(air)) << ran.out;
        // The second discovery finds the stored device again instead of adding another.
        EXPECT_NE(std::string::npos, ran.err.find("stored device 1236 with 9 objects")) << ran.err;
        EXPECT_NE(std::string::npos, ran.err.find("(device key 1)")) << ran.err;
    }
}

TEST_F(NetworkToolTest, DeviceErrorsAndSilence) {
    expect({"read", "1234", "analog-input,99", "present-value"}, 1, "", "unknown-object");
    expect({"write", "1234", "analog-input,1", "present-value", "warm"}, 1, "", "is no value of");
    expect({"read", "4000", "analog-input,1", "present-value", "--timeout", "1"}, 3, "", "did not answer Who-Is");
    expect({"read", "127.0.0.9:" + port, "analog-input,1", "present-value", "--timeout", "1", "--retries", "0"}, 3, "",
           "no answer in time");
}

}  // namespace
