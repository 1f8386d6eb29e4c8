// Interoperability: our encodings, wrapped in BVLC/NPDU/UDP 47808, must be read by an independent
// protocol analyser (tshark) as the objects, properties, values, invoke ids and limits we encoded,
// without any malformed-packet or expert complaint. Skips only when tshark is not installed.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "../test_support.h"
#include "tq_stack/bacapp.h"
#include "tq_stack/codec.h"
#include "tq_stack/iam.h"
#include "tq_stack/rp.h"
#include "tq_stack/rpm.h"
#include "tq_stack/rr.h"
#include "tq_stack/strings.h"
#include "tq_stack/timesync.h"
#include "tq_stack/whois.h"
#include "tq_stack/wp.h"

using namespace tq_test;

namespace {

struct Frame {
    std::string name;
    std::vector<uint8_t> apdu;
    bool expectingReply;
    std::vector<std::string> expect;  // lines of the analyser's detail view that must appear
};

std::string run(const std::string& cmd) {
    std::string out;
    FILE* p = popen(cmd.c_str(), "r");
    if (!p) return out;
    char buf[4096];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
    pclose(p);
    return out;
}

// BVLC original-unicast (or broadcast) with its length, NPDU version 1 and control octet.
std::vector<uint8_t> wrap(const Frame& f) {
    const size_t len = 4 + 2 + f.apdu.size();
    std::vector<uint8_t> out{0x81, uint8_t(f.expectingReply ? 0x0A : 0x0B), uint8_t(len >> 8), uint8_t(len),
                             0x01, uint8_t(f.expectingReply ? 0x04 : 0x00)};
    out.insert(out.end(), f.apdu.begin(), f.apdu.end());
    return out;
}

// The analyser's detail text of each frame, in order.
std::vector<std::string> dissect(const std::vector<Frame>& frames) {
    char dir[] = "/tmp/tq_tshark_XXXXXX";
    if (!mkdtemp(dir)) return {};
    const std::string base(dir);
    {
        std::ofstream txt(base + "/frames.txt");
        for (const auto& f : frames) txt << "000000 " << hex(wrap(f)) << "\n";
    }
    run("text2pcap -q -u 47808,47808 " + base + "/frames.txt " + base + "/frames.pcap 2>&1");
    const std::string text =
        run("tshark -n -r " + base + "/frames.pcap -V -O bacapp,bacnet,bvlc 2>/dev/null");
    run("rm -rf " + base);
    std::vector<std::string> perFrame;
    size_t pos = text.find("Frame 1:");
    while (pos != std::string::npos) {
        const size_t next = text.find("\nFrame ", pos + 1);
        perFrame.push_back(text.substr(pos, next == std::string::npos ? std::string::npos : next - pos));
        pos = next == std::string::npos ? next : next + 1;
    }
    return perFrame;
}

// A ReadProperty-ACK carrying the given application-tagged value bytes.
std::vector<uint8_t> rpAck(uint8_t invokeId, BACNET_READ_PROPERTY_DATA d, const std::vector<uint8_t>& value) {
    d.application_data = value.data();
    d.application_data_len = int(value.size());
    return encoded([&](uint8_t* p) { return rp_ack_encode_apdu(p, invokeId, &d); });
}

#define ENC(call) encoded([&](uint8_t* p) { return call; })

std::vector<Frame> frames() {
    std::vector<Frame> f;
    auto add = [&](const char* name, std::vector<uint8_t> apdu, bool reply, std::vector<std::string> expect) {
        f.push_back({name, std::move(apdu), reply, std::move(expect)});
    };
    auto rp = rpData(OBJECT_ANALOG_INPUT, 5, PROP_PRESENT_VALUE);
    add("rp", ENC(rp_encode_apdu(p, 1, &rp)), true,
        {"Invoke ID: 1", "Service Choice: readProperty (12)", "ObjectIdentifier: analog-input, 5",
         "Property Identifier: present-value (85)", "Up to 1476 octets"});
    auto rpIndex = rpData(OBJECT_DEVICE, 4194302, PROP_OBJECT_LIST);
    rpIndex.array_index = 300;
    add("rp index", ENC(rp_encode_apdu(p, 255, &rpIndex)), true,
        {"Invoke ID: 255", "ObjectIdentifier: device, 4194302", "Property Identifier: object-list (76)",
         "Array Index (Unsigned) 300"});

    add("ack real", rpAck(2, rp, ENC(encode_application_real(p, 72.5f))), false,
        {"Invoke ID: 2", "Present Value (real): 72.5"});
    add("ack unsigned",
        rpAck(3, rpData(OBJECT_MULTI_STATE_VALUE, 9, PROP_PRESENT_VALUE),
              ENC(encode_application_unsigned(p, 70000))),
        false, {"ObjectIdentifier: multi-state-value, 9", "Present Value (uint): 70000"});
    BACNET_CHARACTER_STRING name;
    characterstring_init_ansi(&name, "Boiler Room 2");
    add("ack string",
        rpAck(4, rpData(OBJECT_DEVICE, 1234, PROP_OBJECT_NAME),
              ENC(encode_application_character_string(p, &name))),
        false, {"ObjectIdentifier: device, 1234", "Object Name: Boiler Room 2"});
    BACNET_BIT_STRING flags;
    bitstring_init(&flags);
    bitstring_set_bit(&flags, 0, true);
    bitstring_set_bit(&flags, 3, false);
    add("ack bitstring",
        rpAck(5, rpData(OBJECT_BINARY_INPUT, 1, PROP_STATUS_FLAGS),
              ENC(encode_application_bitstring(p, &flags))),
        false,
        {"Property Identifier: status-flags (111)", "(Bit String) (TFFF)", "in-alarm = TRUE",
         "out-of-service = FALSE"});
    const BACNET_DATE date{2024, 2, 29, 4};
    const BACNET_TIME time{13, 5, 7, 45};
    add("ack date",
        rpAck(6, rpData(OBJECT_DEVICE, 1234, PROP_LOCAL_DATE), ENC(encode_application_date(p, &date))), false,
        {"February 29, 2024, (Day of Week = Thursday)"});
    add("ack time",
        rpAck(7, rpData(OBJECT_DEVICE, 1234, PROP_LOCAL_TIME), ENC(encode_application_time(p, &time))), false,
        {"= 13:05:07.45"});

    BACNET_WRITE_PROPERTY_DATA wp{};
    wp.object_type = OBJECT_ANALOG_VALUE;
    wp.object_instance = 9;
    wp.object_property = PROP_PRESENT_VALUE;
    wp.array_index = BACNET_ARRAY_ALL;
    wp.application_data_len = encode_application_real(wp.application_data, -12.25f);
    wp.priority = 8;
    add("wp", ENC(wp_encode_apdu(p, 77, &wp)), true,
        {"Invoke ID: 77", "Service Choice: writeProperty (15)", "ObjectIdentifier: analog-value, 9",
         "Present Value (real): -12.25", "Priority: (Unsigned) 8"});

    BACNET_PROPERTY_REFERENCE pv2 = propertyRef(PROP_PRIORITY_ARRAY, nullptr, 16);
    BACNET_PROPERTY_REFERENCE name2 = propertyRef(PROP_OBJECT_NAME, &pv2);
    BACNET_PROPERTY_REFERENCE units = propertyRef(PROP_UNITS, nullptr);
    BACNET_READ_ACCESS_DATA second{OBJECT_ANALOG_INPUT, 17, &units, nullptr};
    BACNET_READ_ACCESS_DATA first{OBJECT_ANALOG_OUTPUT, 3, &name2, &second};
    add("rpm", ENC(rpm_encode_apdu(p, MAX_APDU, 9, &first)), true,
        {"Invoke ID: 9", "Service Choice: readPropertyMultiple (14)", "ObjectIdentifier: analog-output, 3",
         "Property Identifier: object-name (77)", "Property Identifier: priority-array (87)",
         "Array Index (Unsigned) 16", "ObjectIdentifier: analog-input, 17",
         "Property Identifier: units (117)"});

    BACNET_READ_RANGE_DATA rr{};
    rr.object_type = OBJECT_TREND_LOG;
    rr.object_instance = 2;
    rr.object_property = PROP_LOG_BUFFER;
    rr.array_index = BACNET_ARRAY_ALL;
    rr.request_type = RR_BY_POSITION;
    rr.range.ref_index = 10;
    rr.count = -3;
    add("rr position", ENC(rr_encode_apdu(p, 10, &rr)), true,
        {"Invoke ID: 10", "Service Choice: readRange (26)", "ObjectIdentifier: trend-log, 2",
         "Property Identifier: log-buffer (131)", "reference Index: (Unsigned) 10",
         "reference Count: (Signed) -3"});
    rr.request_type = RR_BY_TIME;
    rr.range.ref_time = BACNET_DATE_TIME{{2023, 12, 31, 7}, {23, 59, 58, 25}};
    rr.count = 100;
    add("rr time", ENC(rr_encode_apdu(p, 11, &rr)), true,
        {"Date: December 31, 2023, (Day of Week = Sunday)", "= 23:59:58.25",
         "reference Count: (Signed) 100"});

    add("whois", ENC(whois_encode_apdu(p, 100, 4194303)), false,
        {"who-Is (8)", "Device Instance Range Low Limit: 100", "Device Instance Range High Limit: 4194303"});
    add("iam", ENC(iam_encode_apdu(p, 260001, 1476, SEGMENTATION_NONE, 947)), false,
        {"i-Am (0)", "ObjectIdentifier: device, 260001", "Maximum ADPU Length Accepted: (Unsigned) 1476",
         "no-segmentation (3)", "Vendor ID"});
    const BACNET_DATE syncDate{2025, 6, 30, 1};
    const BACNET_TIME syncTime{6, 30, 0, 50};
    add("timesync", ENC(timesync_encode_apdu(p, &syncDate, &syncTime)), false,
        {"timeSynchronization (6)", "Date: June 30, 2025, (Day of Week = Monday)", "= 06:30:00.50"});
    add("utc timesync", ENC(timesync_utc_encode_apdu(p, &syncDate, &syncTime)), false,
        {"utcTimeSynchronization (9)", "Date: June 30, 2025"});
    return f;
}

}  // namespace

TEST(TsharkInterop, AnalyserReadsWhatWeEncoded) {
    if (std::system("command -v tshark >/dev/null && command -v text2pcap >/dev/null") != 0)
        GTEST_SKIP() << "tshark/text2pcap not installed; interop not checked";
    const auto f = frames();
    for (const auto& frame : f) ASSERT_FALSE(frame.apdu.empty()) << frame.name << " did not encode";
    const auto text = dissect(f);
    ASSERT_EQ(f.size(), text.size()) << "the analyser did not report every frame";
    for (size_t i = 0; i < f.size(); ++i) {
        for (const auto& line : f[i].expect)
            EXPECT_NE(std::string::npos, text[i].find(line)) << f[i].name << ": missing \"" << line << "\"\n"
                                                             << text[i];
        for (const char* complaint : {"Malformed", "Expert Info", "Wrong", "Unknown", "bad"})
            EXPECT_EQ(std::string::npos, text[i].find(complaint))
                << f[i].name << ": \"" << complaint << "\"\n"
                << text[i];
    }
}
