#pragma once

#include <Tests/Networking/ScriptedServer.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace flarebox::testing {

/// What goes wrong with one answer on its way from the service to the kit.
struct Fault {
    enum class Kind : std::uint8_t {
        Reset,       ///< the connection is broken off
        Cut,         ///< the connection ends as if all had been said
        Stall,       ///< silence
        Drip,        ///< a byte at a time
        Corrupt,     ///< some bytes are others
        Another,     ///< another status, type and body
        Circle,      ///< a redirect to the same address
        TooLong,     ///< more bytes are announced than come
        TooShort,    ///< fewer bytes are announced than come
        BadChunks,   ///< a chunk whose size is none
        TwoLengths,  ///< in chunks and of a length that is not theirs
    };
    static constexpr int kinds = 11;

    Kind kind = Kind::Reset;
    /// The byte of the answer at which it begins, modulo the answer's length.
    std::uint32_t at = 0;
    /// Whether what stalls or drips goes on once the network is well again; otherwise it is broken off then.
    bool resumes = false;
    /// Of `Another`.
    int status = 200;
    const char* type = "";
    std::uint32_t length = 0;

    std::string description() const;
};

/// Sends the answer with the fault; false when nothing more can come over the connection. Returns at the latest soon
/// after `isHealed` says so, on any thread.
bool sendWithFault(ScriptedServer::Connection& connection, const Fault& fault, const std::string& answer,
                   const std::function<bool()>& isHealed);

}  // namespace flarebox::testing
