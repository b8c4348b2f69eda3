#include <animationmodel/json.h>

#include <cstdlib>

using namespace Kiv;

/// Reads the bytes as a file. What is read has to be written and read again as the same, and what
/// is refused with a text in UTF-8: anything else is a finding.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Animation read(1);
    try {
        read = animation_from_json(std::string(data, data + size));
    } catch (const std::invalid_argument& refusal) {
        const std::string text = refusal.what();
        if (nlohmann::json(text).dump().size() <=
            2) // throws what nobody catches if it is not UTF-8
            std::abort();
        return 0;
    }
    const std::string written = animation_to_json(read);
    const auto from_text = animation_from_json(written);
    const auto from_value = nlohmann::json(read).get<Animation>();
    if (animation_to_json(from_text) != written || animation_to_json(from_value) != written)
        std::abort();
    return 0;
}
