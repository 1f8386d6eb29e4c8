#include "TQ_BACnet/WS/MarkupFactory.h"

namespace TQ {
namespace BACnet {
namespace WS {

namespace {

// Compared unsigned so that every value other than zlib and gzip (the options' -1 included)
// means "no compression".
bool compresses(int type) {
    const unsigned int t = static_cast<unsigned int>(type);
    return t == static_cast<unsigned int>(Poco::DeflatingStreamBuf::STREAM_ZLIB) ||
           t == static_cast<unsigned int>(Poco::DeflatingStreamBuf::STREAM_GZIP);
}

}  // namespace

MarkupFactory::MarkupFactory(std::ostream& out, bool pretty, bool useNames, int compression)
    : _compressing(compresses(compression)),
      _deflater(_compressing ? std::make_unique<Poco::DeflatingOutputStream>(
                                   out, static_cast<Poco::DeflatingStreamBuf::StreamType>(compression))
                             : nullptr),
      _out(_compressing ? static_cast<std::ostream&>(*_deflater) : out),
      _pretty(pretty),
      _useNames(useNames) {}

MarkupFactory::~MarkupFactory() = default;

void MarkupFactory::embeddStart() {}

void MarkupFactory::embeddEnd() {}

void MarkupFactory::descHeader() {}

void MarkupFactory::header() {
    formatBefore(true);
    descHeader();
    formatAfter();
}

void MarkupFactory::stringEncode(std::string& text) {
    descStringEncode(text);
}

void MarkupFactory::flush() {
    if (_ended) return;
    _out.flush();
    // Closing the deflater writes the compressed stream's trailer; without it the client cannot
    // inflate the response. Later writes, through the writers or the stream, go nowhere.
    if (_deflater) {
        _deflater->close();
        _deflater->setstate(std::ios::badbit);
        _ended = true;
    }
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
