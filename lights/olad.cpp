#include "olad.h"

#include "CommandLine.h"
#include "Dmx.h"
#include "Terminal.h"

#include <chrono>
#include <ola/DmxBuffer.h>
#include <ola/Logging.h>
#include <ola/client/StreamingClient.h>
#include <thread>

namespace {

/// Sends what the channels show on one frame; those without a value, or all, are dark.
void send(ola::client::StreamingClient& daemon, const Universes& universes, bool dark = false) {
    for (const auto& [number, values] : universes) {
        ola::DmxBuffer buffer;
        buffer.Blackout();
        if (!dark)
            buffer.SetRange(0, values.data(), static_cast<unsigned int>(values.size()));
        if (!daemon.SendDmx(number, buffer))
            throw Failure("olad went away");
    }
}

} // namespace

void play_by_olad(const Kiv::Animation& show, unsigned int rate) {
    ola::InitLogging(ola::OLA_LOG_NONE, ola::OLA_LOG_STDERR);
    std::signal(SIGPIPE, SIG_IGN); // `send` notices when the daemon is gone
    catch_interrupts();
    ola::client::StreamingClient daemon(/*auto_start=*/false);
    if (!daemon.Setup())
        throw Failure("no olad answers on this machine; is it running?");

    DmxPlayer player(show.layers);
    const unsigned int end = show.durationInFrames(); // milliseconds
    const auto start = std::chrono::steady_clock::now();
    Progress progress("playing");
    unsigned int frame = 0;
    for (std::uint64_t count = 1; interrupted == 0 && frame < end; ++count) {
        send(daemon, player.seek(frame));
        progress(frame, end);
        frame = static_cast<unsigned int>(std::min<std::uint64_t>(count * 1000 / rate, end));
        std::this_thread::sleep_until(start + std::chrono::milliseconds(frame));
    }
    send(daemon, player.seek(end), /*dark=*/true);
    // Were the connection closed at once, this last frame could be lost with it.
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
}
