#include "TQ/Utility/Data/SmoDbSession.h"

#include "TQ/Utility/LogHelper.h"

#include <Poco/Exception.h>
#include <Poco/Thread.h>

namespace TQ {
namespace Utility {
namespace Data {

SmoDbSession* pDB = nullptr;

SmoDbSession::Use::Use(SmoDbSession& db)
    : _db(db), _lock(db._mutex), _exceptions(std::uncaught_exceptions()) {
    if (_db._suspect && _db._depth == 0) _db.revive();
}

SmoDbSession::Use::~Use() {
    if (std::uncaught_exceptions() > _exceptions) _db._suspect = true;
}

SmoDbSession::SmoDbSession(const Poco::Data::Session& session) : _session(session) {}

void SmoDbSession::revive() {
    try {
        _session << "SELECT 1", Poco::Data::Keywords::now;
    } catch (const Poco::Exception&) {
        // The connection is gone; a failure to connect goes to the caller and leaves the
        // session suspect, to be tried again by the next one.
        if (_reconnect)
            _reconnect(_session);
        else
            _session.reconnect();
        ++_connection;
    }
    _suspect = false;
}

void SmoDbSession::release(unsigned levels) noexcept {
    while (levels-- > 0) _mutex.unlock();
}

SmoDbSession::~SmoDbSession() {
    // An unfinished bracket must not be committed by accident when the session closes.
    try {
        rollback();
    } catch (...) {
    }
}

void SmoDbSession::begin(FILE* trace, int tag) {
    // Each level holds the lock once; the bracket's end releases them all.
    Use use(*this);
    _mutex.lock();
    if (_depth == 0) {
        try {
            _session.begin();
        } catch (...) {
            _mutex.unlock();
            throw;
        }
    }
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
        release(1);
        return;
    }
    for (unsigned attempt = 0;; ++attempt) {
        try {
            _session.commit();
            _depth = 0;
            release(1);
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
                    // rollback closed the bracket and released its lock
                }
            }
            throw;
        }
    }
}

void SmoDbSession::rollback() {
    if (_depth == 0) return;
    const unsigned levels = _depth;
    _depth = 0;
    try {
        _session.rollback();
    } catch (...) {
        _suspect = true;
        release(levels);
        throw;
    }
    release(levels);
}

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
