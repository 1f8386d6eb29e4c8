// The built tq-gateway as a process over three simulated devices (processes as well), all on
// loopback addresses, spoken to through Poco's HTTP client as any web client would.
#include "TQ_BACnet/Gateway/Config.h"

#include <Poco/Data/SQLite/Connector.h>
#include <Poco/Data/Session.h>
#include <Poco/File.h>
#include <Poco/FileStream.h>
#include <Poco/InflatingStream.h>
#include <Poco/Net/HTTPClientSession.h>
#include <Poco/Net/HTTPRequest.h>
#include <Poco/Net/HTTPResponse.h>
#include <Poco/Net/StreamSocket.h>
#include <Poco/Path.h>
#include <Poco/Pipe.h>
#include <Poco/PipeStream.h>
#include <Poco/Process.h>
#include <Poco/StreamCopier.h>
#include <Poco/TemporaryFile.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <chrono>
#include <future>
#include <memory>
#include <sstream>
#include <thread>

using TQ::BACnet::Gateway::Config;

namespace {

const std::string kWriter = "writer-token", kReader = "reader-token";
const std::string kAv1 = "/bacnetws/.bacnet/.local/102/analog-value,1";

struct Reply {
    int status = 0;
    std::string body, contentType, encoding;
};

class Gateway : public ::testing::Test {
protected:
    static uint16_t udpPort() { return uint16_t(40000 + (getpid() % 1000) * 4); }
    static uint16_t httpPort() { return uint16_t(udpPort() + 1); }

    static void SetUpTestSuite() {
        dir = Poco::TemporaryFile::tempName();
        Poco::File(dir).createDirectories();
        const std::string port = std::to_string(udpPort());
        for (const char* d : {"101:127.0.0.2", "102:127.0.0.3", "103:127.0.0.4"}) {
            const std::string entry(d);
            devices.push_back(launch(TQ_SIM_DEVICE_EXE, {"--instance", entry.substr(0, 3), "--interface",
                                                         entry.substr(4), "--port", port}));
        }
        Poco::FileOutputStream(config()) << R"({"listen":{"port":)" << httpPort()
                                         << R"(,"maxBody":1024,"maxPath":300,"maxHeaders":12,"clientTimeoutMs":500},
            "bacnet":{"interface":"127.0.0.1","port":)"
                                         << port << R"(,"apduTimeoutMs":300,"retries":1,"discoverMs":600},
            "database":{"sqlite":")" << Poco::Path(dir, "gw.db").toString()
                                         << R"(","maxAgeMs":60000},
            "polling":[{"device":101,"object":"analog-value,1","property":"present-value","intervalMs":200}],
            "tokens":[{"sha256":")" << Config::hashToken(kWriter)
                                         << R"(","rights":"read-write"},{"sha256":")" << Config::hashToken(kReader)
                                         << R"(","rights":"read"}]})";
        gateway.reset(new Poco::ProcessHandle(launch(TQ_GATEWAY_EXE, {"--config", config()})));
        for (int i = 0; i < 100 && request("GET", "/bacnetws/.bacnet/.local?depth=1&alt=json").body.find("103") ==
                                        std::string::npos;
             ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    static void TearDownTestSuite() {
        if (gateway) stop(*gateway);
        gateway.reset();
        for (auto& d : devices) stop(d);
        devices.clear();
        Poco::File(dir).remove(true);
    }

    static std::string config() { return Poco::Path(dir, "gw.json").toString(); }
    static Poco::ProcessHandle launch(const std::string& exe, const std::vector<std::string>& args) {
        return Poco::Process::launch(exe, args, nullptr, nullptr, nullptr);
    }
    static void stop(Poco::ProcessHandle& p) {
        if (!Poco::Process::isRunning(p)) return;
        Poco::Process::kill(p);
        p.wait();
    }

    static Reply request(const std::string& method, const std::string& path, const std::string& token = kWriter,
                         const std::string& body = "", std::size_t extraHeaders = 0) {
        Poco::Net::HTTPClientSession session("127.0.0.1", httpPort());
        session.setTimeout(Poco::Timespan(10, 0));
        Poco::Net::HTTPRequest request(method, path, Poco::Net::HTTPMessage::HTTP_1_1);
        if (!token.empty()) request.set("Authorization", "Bearer " + token);
        for (std::size_t i = 0; i < extraHeaders; ++i) request.set("X-Extra-" + std::to_string(i), "x");
        if (!body.empty()) request.setContentLength(std::streamsize(body.size()));
        Reply reply;
        try {
            session.sendRequest(request) << body;
            Poco::Net::HTTPResponse response;
            std::istream& in = session.receiveResponse(response);
            Poco::StreamCopier::copyToString(in, reply.body);
            reply.status = response.getStatus();
            reply.contentType = response.getContentType();
            reply.encoding = response.get("Content-Encoding", "");
        } catch (const Poco::Exception&) {
            // not (yet) listening: status 0
        }
        return reply;
    }

    static std::string dir;
    static std::vector<Poco::ProcessHandle> devices;
    static std::unique_ptr<Poco::ProcessHandle> gateway;
};

std::string Gateway::dir;
std::vector<Poco::ProcessHandle> Gateway::devices;
std::unique_ptr<Poco::ProcessHandle> Gateway::gateway;

bool contains(const std::string& text, const std::string& piece) { return text.find(piece) != std::string::npos; }

TEST_F(Gateway, ReadsInEveryFormatAndTheirErrors) {
    // path, token, status, content type (if checked), a piece of the body
    const struct { std::string path, token; int status; const char* contentType; const char* body; } cases[] = {
        {kAv1 + "/present-value?alt=json", kReader, 200, "application/json", R"({"$value":21.5})"},
        {kAv1 + "/present-value", kReader, 200, "application/xml; charset=utf-8",
         R"(<Real name="present-value" value="21.5" xmlns=)"},
        {kAv1 + "/present-value?alt=plain", kReader, 200, "text/plain", "21.5"},
        {kAv1 + "/present-value?alt=json&metadata=cat-all", kReader, 200, "application/json", R"("$base":"Real")"},
        {kAv1 + "?alt=json", kReader, 200, "application/json", R"("object-name":"room setpoint")"},
        {"/bacnetws/.blt/102/device,102/object-list/4?alt=json", kReader, 400, "", "WS_ERR_PATH_SYNTAX"},
        {"/bacnetws/.bacnet/.local/102/device,102/object-list/4?alt=json", kReader, 200, "", R"("analog-value,1")"},
        {"/bacnetws/.bacnet/.local/102?alt=json&depth=1", kReader, 200, "", R"("trend-log,1":{})"},
        {"/bacnetws/.bacnet/.local/102?alt=json&depth=2", kReader, 200, "", R"("units":"degrees-celsius")"},
        {"/bacnetws/.bacnet?alt=json&depth=2", kReader, 200, "", R"({"101":{},"102":{},"103":{}})"},
        {"/bacnetws/.bacnet/.local?alt=json&depth=1&discover=true", kReader, 200, "", R"({"101":{},"102":{},"103":{}})"},
        // what the path parser refuses: one row per web-service error (the messages are checked in process)
        {"/bacnetws/.bacnet/.local/102/analog-valu,1/present-value", kReader, 404, "", "WS_ERR_PATH_NOT_FOUND"},
        {"/bacnetws/.bacnet/.local/4194304", kReader, 400, "", "WS_ERR_RANGE"},
        {"/bacnetws/.bacnet/.local/102?depth=abc", kReader, 400, "", "WS_ERR_PARAM_VALUE_FORMAT"},
        {kAv1 + "?alt=plain", kReader, 406, "", "WS_ERR_NOT_REPRESENTABLE"},
        {"/bacnetws/.bacnet/7/102", kReader, 404, "", "network 7 is not served"},
        {"/elsewhere", kReader, 404, "", "WS_ERR_DATA_NOT_FOUND"},
        // what the devices answer
        {"/bacnetws/.bacnet/.local/4711/analog-value,1/present-value", kReader, 404, "", "device 4711 is not known"},
        {"/bacnetws/.bacnet/.local/102/analog-value,9/present-value", kReader, 404, "", "unknown-object"},
        {"/bacnetws/.bacnet/.local/102/analog-value,1/weekly-schedule", kReader, 404, "", "unknown-property"},
        // who gets in
        {kAv1 + "/present-value", "", 401, "text/plain; charset=utf-8", "WS_ERR_NOT_AUTHENTICATED"},
        {kAv1 + "/present-value", "guess", 403, "text/plain; charset=utf-8", "WS_ERR_NOT_AUTHORIZED"},
    };
    for (const auto& c : cases) {
        const Reply r = request("GET", c.path, c.token);
        EXPECT_EQ(r.status, c.status) << c.path << "\n" << r.body;
        EXPECT_TRUE(contains(r.body, c.body)) << c.path << "\n" << r.body;
        if (*c.contentType) {
            EXPECT_EQ(r.contentType, c.contentType) << c.path;
        }
    }
    EXPECT_EQ(request("DELETE", kAv1 + "/present-value").status, 405);
}

// Each format through each compression: the writers compress what they render.
TEST_F(Gateway, CompressedAnswersInflateToThePlainOnes) {
    const struct { const char* alt, *option, *encoding; Poco::InflatingStreamBuf::StreamType type; } cases[] = {{"json", "gzip", "gzip", Poco::InflatingStreamBuf::STREAM_GZIP},
                 {"xml", "zlib", "deflate", Poco::InflatingStreamBuf::STREAM_ZLIB},
                 {"plain", "gzip", "gzip", Poco::InflatingStreamBuf::STREAM_GZIP}};
    for (const auto& c : cases) {
        const std::string path = kAv1 + "/present-value?alt=" + c.alt;
        const Reply r = request("GET", path + "&compress=" + c.option);
        EXPECT_EQ(r.encoding, c.encoding);
        std::istringstream packed(r.body);
        Poco::InflatingInputStream inflate(packed, c.type);
        std::string body;
        Poco::StreamCopier::copyToString(inflate, body);
        EXPECT_EQ(body, request("GET", path).body) << c.alt << " " << c.option;
    }
}

TEST_F(Gateway, HistoryIsReadInStepsAndMerged) {
    const Reply r = request("GET", "/bacnetws/.bacnet/.local/101/trend-log,1/log-buffer/.history?alt=json");
    ASSERT_EQ(r.status, 200) << r.body;
    // 100 records, more than one step: the first and the last are there, and nothing after.
    EXPECT_TRUE(contains(r.body, R"({"1":{"timestamp")"));
    EXPECT_TRUE(contains(r.body, R"("100":{"timestamp")"));
    EXPECT_FALSE(contains(r.body, R"("101":)"));
}

TEST_F(Gateway, WritesReachTheDeviceOnlyWhenAllowed) {
    const std::string ao = "/bacnetws/.bacnet/.local/101/analog-output,1";
    const struct { std::string path, token, body; int status; const char* answer; } cases[] = {
        {ao + "/present-value?alt=json&priority=8", kReader, R"({"$value":99})", 403, "WS_ERR_NOT_AUTHORIZED"},
        {ao + "/present-value?alt=json&priority=8", "", R"({"$value":99})", 401, "WS_ERR_NOT_AUTHENTICATED"},
        {ao + "/present-value?alt=json&priority=8", kWriter, R"({"$value":55.5})", 200, R"({"$value":55.5})"},
        {ao + "/present-value?alt=json&priority=8", kWriter, R"({"$value":null})", 200, R"({"$value":21.5})"},
        {ao + "/present-value?alt=json&priority=17", kWriter, R"({"$value":1})", 400, "WS_ERR_PARAM_OUT_OF_RANGE"},
        {ao + "/present-value?alt=json", kWriter, R"({"$value":)", 400, "WS_ERR_BAD_PAYLOAD"},
        {ao + "/present-value?alt=json", kWriter, R"({"$value":"warm"})", 400, "WS_ERR_VALUE_FORMAT"},
        {ao + "/present-value?alt=json", kWriter, std::string(2000, ' '), 413, "above 1024 bytes"},
        {"/bacnetws/.bacnet/.local/101/analog-input,1/present-value", kWriter, R"({"$value":1})", 403,
         "WS_ERR_NOT_WRITABLE"},
        {"/bacnetws/.bacnet/.local/101/analog-input,1", kWriter, R"({"$value":1})", 404, "not supported"},
    };
    for (const auto& c : cases) {
        const Reply r = request("PUT", c.path, c.token, c.body);
        EXPECT_EQ(r.status, c.status) << c.path << " " << c.body << "\n" << r.body;
        EXPECT_TRUE(contains(r.body, c.answer)) << r.body;
    }
    EXPECT_EQ(request("GET", ao + "/present-value?alt=plain").body, "21.5") << "refused writes changed nothing";

    const std::string av = "/bacnetws/.bacnet/.local/101/analog-value,1/present-value";
    const Reply quiet = request("PUT", av + "?readback=false", kWriter, R"({"$value":44})");
    EXPECT_EQ(quiet.status, 204);
    EXPECT_EQ(quiet.body, "");
    EXPECT_EQ(request("GET", av + "?alt=plain").body, "44");
    // The written value reached the stored tree too (the property is on the polling list).
    Poco::Data::SQLite::Connector::registerConnector();
    Poco::Data::Session db("SQLite", Poco::Path(dir, "gw.db").toString());
    std::vector<std::string> values;
    db << "SELECT p.value FROM bn_device_object_property p JOIN bn_device_object o "
          "ON o.id_bn_device_object=p.id_bn_device_object WHERE o.id_bn_object_type=2 AND p.id_bn_property_type=85",
        Poco::Data::Keywords::into(values), Poco::Data::Keywords::now;
    EXPECT_NE(std::find(values.begin(), values.end(), "44"), values.end());
}

TEST_F(Gateway, LimitsOnPathAndHeaders) {
    EXPECT_EQ(request("GET", kAv1 + "/present-value?select=" + std::string(300, 'x')).status, 414);
    EXPECT_EQ(request("GET", kAv1 + "/present-value", kReader, "", 20).status, 431);
    EXPECT_EQ(request("GET", kAv1 + "/present-value", kReader, "", 5).status, 200);
}

TEST_F(Gateway, ADeviceThatDiesCostsOnlyItsOwnRequests) {
    // A property the gateway does not store: always read live.
    const std::string dying = "/bacnetws/.bacnet/.local/103/analog-value,1/description?alt=json";
    ASSERT_EQ(request("GET", dying).status, 200);
    stop(devices[2]);
    auto slow = std::async(std::launch::async, [&] { return request("GET", dying); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(request("GET", kAv1 + "/present-value?alt=json").status, 200);
    EXPECT_NE(slow.wait_for(std::chrono::seconds(0)), std::future_status::ready)
        << "the read of another device came back only after the dead one's timeout";
    const Reply r = slow.get();
    EXPECT_EQ(r.status, 504);
    EXPECT_TRUE(contains(r.body, "WS_ERR_DEVICE_NOT_REACHABLE")) << r.body;
}

TEST_F(Gateway, ASlowClientLosesItsConnection) {
    Poco::Net::StreamSocket socket(Poco::Net::SocketAddress("127.0.0.1", httpPort()));
    const std::string partial = "GET /bacnetws/.bacnet HTTP/1.1\r\nHost: 127.0.0.1\r\n";
    socket.sendBytes(partial.data(), int(partial.size()));
    // Far longer than the configured 500 ms: a server that waits forever makes this throw.
    socket.setReceiveTimeout(Poco::Timespan(10, 0));
    char buffer[512];
    int n = 0;
    EXPECT_NO_THROW(while ((n = socket.receiveBytes(buffer, sizeof buffer)) > 0) {});
    EXPECT_EQ(request("GET", kAv1 + "/present-value?alt=plain").body, "21.5") << "and the gateway still serves";
}

TEST_F(Gateway, ThePageIsServedWithoutAToken) {
    const Reply r = request("GET", "/", "");
    EXPECT_EQ(r.status, 200);
    EXPECT_EQ(r.contentType, "text/html; charset=utf-8");
    EXPECT_TRUE(contains(r.body, "/bacnetws/.bacnet/.local"));
}

}  // namespace
