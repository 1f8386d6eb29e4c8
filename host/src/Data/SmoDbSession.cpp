#include "TQ/Utility/Data/SmoDbSession.h"

#include "TQ/Utility/LogHelper.h"

#include <Poco/Exception.h>
#include <Poco/Thread.h>

namespace TQ {
namespace Utility {
namespace Data {

SmoDbSession* pDB = nullptr;

SmoDbSession::SmoDbSession(const Poco::Data::Session& session) : _session(session) {}

SmoDbSession::~SmoDbSession() {
    // An unfinished bracket must not be committed by accident when the session closes.
    try {
        rollback();
    } catch (...) {
    }
}

void SmoDbSession::begin(FILE* trace, int tag) {
    if (_depth == 0) _session.begin();
    ++_depth;
    if (trace) {
        std::fprintf(trace, "%s begin %d depth %u\n", LogHelper::timeStamp().c_str(), tag, _depth);
        std::fflush(trace);
    }
}

void SmoDbSession::commit(unsigned retries, int retryDelayMs, bool rollbackOnFailure) {
    if (_depth == 0) throw Poco::IllegalStateException("SmoDbSession::commit() without begin()");
    if (_depth > 1) {
        --_depth;
        return;
    }
    for (unsigned attempt = 0;; ++attempt) {
        try {
            _session.commit();
            _depth = 0;
            return;
        } catch (Poco::Exception&) {
            if (attempt < retries) {
                if (retryDelayMs > 0) Poco::Thread::sleep(retryDelayMs);
                continue;
            }
            if (rollbackOnFailure) {
                try {
                    rollback();
                } catch (...) {
                    _depth = 0;
                }
            }
            throw;
        }
    }
}

void SmoDbSession::rollback() {
    if (_depth == 0) return;
    _depth = 0;
    _session.rollback();
}

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
