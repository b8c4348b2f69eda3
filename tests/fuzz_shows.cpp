#include "Fit.h"
#include "Fseq.h"
#include "Recording.h"

#include <cstdlib>
#include <sstream>
#include <stdexcept>

using namespace Kiv;

namespace {

/// What a rendered show has, without its identifier.
std::string rendered(const Animation& show, unsigned int step) {
    std::ostringstream out;
    write_fseq(out, show, step, "song.mp3");
    return out.str().erase(24, 8);
}

} // namespace

/// Reads the bytes as a rendered show or a recording. What is read has to come back after writing
/// and after fitting, and what is not read has to be refused: anything else is a finding.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Sequence sequence;
    Animation& show = sequence.show;
    std::string before;
    try {
        std::istringstream in(std::string(data, data + size));
        if (size > 0 && data[0] == 'P')
            sequence = read_fseq(in, "input", true);
        else
            show = read_recording(in, "input");
        if (show.layers.size() * show.durationInFrames() / sequence.step > 100'000)
            return 0;
        before = rendered(show, sequence.step);
    } catch (const std::runtime_error&) {
        return 0;
    }
    fit(show, sequence.step);
    if (rendered(show, sequence.step) != before)
        std::abort();
    std::ostringstream out;
    write_fseq(out, show, sequence.step, "");
    std::istringstream in(out.str());
    if (rendered(read_fseq(in, "output", true).show, sequence.step) != before)
        std::abort();
    return 0;
}
