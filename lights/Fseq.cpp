#include "Fseq.h"

#include "Dmx.h"
#include "Recording.h"
#include "Terminal.h"
#include "unpack.h"

#include <animationmodel/play.h>

#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <stdexcept>
#include <vector>

using namespace Kiv;

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t fixedSize = 32;    // of a header
constexpr std::size_t oldFixedSize = 28; // of one of version 1
constexpr std::size_t blockSize = 8;     // of an entry in the table of blocks
constexpr std::size_t rangeSize = 6;     // of an entry in the table of ranges
constexpr std::size_t variableSize = 4;  // of a variable header without its data
constexpr std::size_t mostRanges = 255;  // which a byte counts
constexpr std::uint64_t mostInRange = (1U << 24) - 1;
constexpr std::uint64_t mostData = 2'000'000'000;

[[noreturn]] void refuse(const std::string& text) {
    throw std::runtime_error(text);
}

/// The number in `size` bytes from `at` on, the lowest one first.
std::uint64_t number_at(const Bytes& bytes, std::size_t at, std::size_t size) {
    std::uint64_t number = 0;
    for (std::size_t i = size; i-- > 0;)
        number = number << 8 | bytes[at + i];
    return number;
}

void append_number(Bytes& bytes, std::uint64_t number, std::size_t size) {
    for (; size > 0; --size, number >>= 8)
        bytes.push_back(static_cast<std::uint8_t>(number));
}

/// Channels one after another, which lie together in a step.
struct Range {
    std::uint64_t begin, end;
};

/// Steps that are packed together.
struct Block {
    std::uint64_t begin;  ///< The first step.
    std::uint64_t length; ///< In bytes, packed.
};

/// What a file says before its channel data.
struct Header {
    explicit Header(std::istream& in);

    /// The bytes of the channel data, unpacked.
    std::uint64_t size() const { return channels * steps; }

    std::uint64_t channels, steps;
    unsigned int step;
    unsigned int packing = 0;
    std::vector<Block> blocks; ///< Without those that only fill the table.
    std::vector<Range> ranges;
    std::string media;

private:
    void readBlocks(const Bytes& bytes, std::size_t at, std::size_t count);
    void readRanges(const Bytes& bytes, std::size_t at, std::size_t count);
    void readVariable(const Bytes& bytes, std::size_t at);
};

/// Appends `size` bytes of a file.
void read_bytes(std::istream& in, Bytes& bytes, std::uint64_t size) {
    const std::size_t before = bytes.size();
    bytes.resize(before + size);
    in.read(reinterpret_cast<char*>(bytes.data() + before), static_cast<std::streamsize>(size));
    if (static_cast<std::uint64_t>(in.gcount()) != size)
        refuse("the file is cut short");
}

Header::Header(std::istream& in) {
    Bytes bytes;
    read_bytes(in, bytes, 4);
    if (!std::ranges::equal(bytes, std::string_view("PSEQ")))
        refuse("a file of a rendered show begins with \"PSEQ\"");
    read_bytes(in, bytes, oldFixedSize - bytes.size());
    const unsigned int minor = bytes[6];
    const unsigned int major = bytes[7];
    if (major < 1 || major > 2 || minor > 2)
        refuse("files of version 1 and 2.0 to 2.2 can be read, not of " + std::to_string(major) +
               "." + std::to_string(minor));
    const std::size_t dataBegin = number_at(bytes, 4, 2);
    const std::size_t tablesEnd = number_at(bytes, 8, 2);
    const std::size_t fixed = major == 1 ? oldFixedSize : fixedSize;
    if (dataBegin < fixed)
        refuse("the channel data begin inside the header");
    read_bytes(in, bytes, dataBegin - bytes.size());

    channels = number_at(bytes, 10, 4);
    steps = number_at(bytes, 14, 4);
    step = bytes[18];
    if (channels == 0)
        refuse("there are no channels");
    if (step == 0)
        refuse("a step lasts 0 milliseconds");
    if (steps * step > mostFrames)
        refuse("the show lasts longer than " + std::to_string(mostFrames) + " milliseconds");
    packing = major == 1 ? 0 : bytes[20] & 15U;
    const std::size_t blockCount =
        major == 1 ? 0 : number_at(bytes, 21, 1) | (number_at(bytes, 20, 1) >> 4U << 8U);
    const std::size_t rangeCount = major == 1 ? 0 : bytes[22];
    const std::size_t rangesBegin = fixed + blockSize * blockCount;
    if (rangesBegin + rangeSize * rangeCount > tablesEnd || tablesEnd > dataBegin)
        refuse("the tables do not end before the channel data");
    if (packing > 2)
        refuse("the channel data are packed in an unknown way, " + std::to_string(packing));
    if (packing != 0)
        readBlocks(bytes, fixed, blockCount);
    readRanges(bytes, rangesBegin, rangeCount);
    readVariable(bytes, tablesEnd);
}

void Header::readBlocks(const Bytes& bytes, std::size_t at, std::size_t count) {
    for (; count > 0; --count, at += blockSize) {
        const Block block{number_at(bytes, at, 4), number_at(bytes, at + 4, 4)};
        if (block.length == 0)
            continue;
        if (blocks.empty() ? block.begin != 0 : block.begin <= blocks.back().begin)
            refuse("the blocks are out of order");
        if (block.begin >= steps)
            refuse("a block begins after the last step");
        blocks.push_back(block);
    }
    if (blocks.empty() && steps > 0)
        refuse("there are no blocks");
}

void Header::readRanges(const Bytes& bytes, std::size_t at, std::size_t count) {
    std::uint64_t sum = 0;
    for (; count > 0; --count, at += rangeSize) {
        const std::uint64_t begin = number_at(bytes, at, 3);
        ranges.push_back({begin, begin + number_at(bytes, at + 3, 3)});
        sum += ranges.back().end - begin;
    }
    if (ranges.empty())
        ranges.push_back({0, sum = channels});
    if (sum != channels)
        refuse("the ranges have " + std::to_string(sum) + " channels, and a step has " +
               std::to_string(channels));
    std::vector<Range> sorted = ranges;
    std::erase_if(sorted, [](const Range& range) { return range.begin == range.end; });
    std::ranges::sort(sorted, {}, &Range::begin);
    for (std::size_t i = 1; i < sorted.size(); ++i)
        if (sorted[i].begin < sorted[i - 1].end)
            refuse("the ranges overlap");
}

/// Zeros may fill the rest.
void Header::readVariable(const Bytes& bytes, std::size_t at) {
    while (bytes.size() - at >= variableSize) {
        const std::size_t size = number_at(bytes, at, 2);
        if (size < variableSize || size > bytes.size() - at)
            return;
        if (bytes[at + 2] == 'm' && bytes[at + 3] == 'f') {
            const auto text = Piece(bytes).subspan(at + variableSize, size - variableSize);
            media.assign(text.begin(), std::ranges::find(text, 0));
        }
        at += size;
    }
}

/// The bytes that follow, if the file can tell.
std::optional<std::uint64_t> rest_of(std::istream& in) {
    const std::streamoff here = in.tellg();
    if (here < 0) // it is a pipe
        return std::nullopt;
    const std::streamoff end = in.seekg(0, std::ios::end).tellg();
    in.seekg(here);
    return static_cast<std::uint64_t>(std::max(end - here, std::streamoff{0}));
}

/// Refuses a file that would take more memory than it is worth: `rest` is the length of its channel
/// data in the file.
void check_size(const Header& header, std::optional<std::uint64_t> rest, bool limited) {
    std::uint64_t needed = header.packing == 0 ? header.size() : 0;
    for (const Block& block : header.blocks)
        needed += block.length;
    if (rest && *rest < needed)
        refuse("the file is cut short: " + std::to_string(needed - *rest) + " bytes are missing");
    if (limited && header.size() > mostData)
        refuse(std::to_string(header.size()) +
               " bytes of channel data are more than 2 GB, which --no-limit allows");
    // A layer takes some 200 bytes, and up to 21 for each byte; few steps leave too few for it.
    constexpr std::uint64_t most = std::uint64_t{32} << 20;
    if (limited && header.channels * 200 > most + 19 * header.size())
        refuse(std::to_string(header.channels) + " channels of " + std::to_string(header.steps) +
               " steps take much memory, which --no-limit allows");
}

/// The channel data, unpacked: one step after another. That is half of what `progress` is told of.
Bytes read_data(std::istream& in, const Header& header, Progress& progress) {
    Bytes data;
    constexpr std::uint64_t pieceSize = std::uint64_t{1} << 16;
    const double all = 2 * static_cast<double>(header.size());
    while (header.packing == 0 && data.size() < header.size()) {
        read_bytes(in, data, std::min(pieceSize, header.size() - data.size()));
        progress(static_cast<double>(data.size()), all);
    }
    Bytes packed;
    for (std::size_t i = 0; i < header.blocks.size(); ++i) {
        std::uint64_t left = header.blocks[i].length;
        const std::uint64_t end =
            i + 1 < header.blocks.size() ? header.blocks[i + 1].begin : header.steps;
        const auto source = [&] {
            packed.clear();
            read_bytes(in, packed, std::min(pieceSize, left));
            left -= packed.size();
            return Piece(packed);
        };
        const auto sink = [&](Piece piece) {
            if (piece.size() > end * header.channels - data.size())
                refuse("it holds more than its steps");
            data.insert(data.end(), piece.begin(), piece.end());
            progress(static_cast<double>(data.size()), all);
        };
        try {
            if (header.packing == 1)
                unpack_zstd(source, sink, 8 * header.size());
            else
                unpack_zlib(source, sink);
            if (data.size() < end * header.channels)
                refuse("it holds less than its steps");
        } catch (const std::runtime_error& error) {
            refuse("block " + std::to_string(i) + ": " + error.what());
        }
    }
    return data;
}

/// A layer for each channel, in the order in which they lie in a step.
std::vector<KeyVector*> add_layers(LayerMap& layers, const Header& header) {
    std::vector<KeyVector*> added;
    added.reserve(header.channels);
    for (const Range& range : header.ranges)
        for (std::uint64_t channel = range.begin; channel < range.end; ++channel) {
            const auto universe = static_cast<unsigned int>(channel / 512 + 1);
            const auto number = static_cast<unsigned int>(channel % 512 + 1);
            added.push_back(
                &layers.try_emplace(layers.end(), channel_name(universe, number))->second);
        }
    return added;
}

/// Makes a Hold of each row of equal bytes. Each layer is allocated once, at its size. That is the
/// other half.
void add_keys(const std::vector<KeyVector*>& layers, const Bytes& data, const Header& header,
              Progress& progress) {
    if (data.empty())
        return;
    const std::size_t width = layers.size();
    std::vector<std::uint32_t> marks(width, 1); // the keys of each channel
    const std::uint8_t* const end = data.data() + data.size();
    for (const std::uint8_t* row = data.data() + width; row != end; row += width)
        for (std::size_t i = 0; i < width; ++i)
            marks[i] += row[i] != (row - width)[i] ? 1 : 0;
    for (std::size_t i = 0; i < width; ++i)
        layers[i]->reserve(std::exchange(marks[i], 0)); // from here on where its key begins
    std::uint32_t at = 1;
    for (const std::uint8_t* row = data.data() + width;; row += width, ++at) {
        const std::uint8_t* const before = row - width;
        for (std::size_t i = 0; i < width; ++i)
            if (row == end || row[i] != before[i])
                layers[i]->emplace_back(AnimationKeyCommand(Hold, {static_cast<float>(before[i])}),
                                        (at - std::exchange(marks[i], at)) * header.step);
        if (row == end)
            return;
        progress(static_cast<double>(header.steps + at), 2 * static_cast<double>(header.steps));
    }
}

/// The channel of the file that a layer is called after.
std::uint64_t channel_at(const std::string& name) {
    const auto [universe, channel] = channel_of(name);
    if (universe == 0)
        refuse("universe 0 has no place in the file of a rendered show");
    return std::uint64_t{universe - 1} * 512 + channel - 1;
}

/// The channels of layers, in at most `mostRanges` ranges: where these are too many, the narrowest
/// gaps between them are filled.
std::vector<Range> ranges_of(const LayerMap& layers) {
    std::vector<std::uint64_t> channels;
    channels.reserve(layers.size());
    for (const auto& [name, keys] : layers)
        channels.push_back(channel_at(name));
    std::ranges::sort(channels);
    std::vector<Range> ranges;
    for (std::uint64_t gap = 0; gap == 0 || ranges.size() > mostRanges; gap = 2 * gap + 1) {
        ranges.clear();
        for (const std::uint64_t channel : channels) {
            if (ranges.empty() || channel > ranges.back().end + gap)
                ranges.push_back({channel, channel});
            ranges.back().end = channel + 1;
        }
    }
    return ranges;
}

/// Names the keys: the same for the same ones.
std::uint64_t identifier_of(const LayerMap& layers) {
    std::uint64_t identifier = 0xcbf29ce484222325;
    const auto add = [&](std::uint64_t part) { identifier = (identifier ^ part) * 0x100000001b3; };
    for (const auto& [name, keys] : layers) {
        add(keys.size());
        for (const AnimationKey& key : keys) {
            add(key.duration);
            add(static_cast<std::uint32_t>(key.command.effect));
            for (const float value : key.command.args)
                add(std::bit_cast<std::uint32_t>(value));
        }
    }
    return identifier;
}

Bytes header_of(const std::vector<Range>& ranges, std::uint64_t channels, std::uint64_t steps,
                unsigned int step, const std::string& media, std::uint64_t identifier) {
    const std::size_t tabled = ranges.size() == 1 && ranges[0].begin == 0 ? 0 : ranges.size();
    const std::size_t tablesEnd = fixedSize + rangeSize * tabled;
    const std::size_t mediaSize = media.empty() ? 0 : variableSize + media.size() + 1;
    const std::size_t dataBegin = (tablesEnd + mediaSize + 3) / 4 * 4;
    if (channels == 0 || dataBegin > 65535 || channels > 0xffffffff)
        refuse("the file of a rendered show has 1 to 4294967295 channels, and a short name of the "
               "file that plays to it");
    Bytes bytes{'P', 'S', 'E', 'Q'};
    append_number(bytes, dataBegin, 2);
    append_number(bytes, 0x200, 2); // the version
    append_number(bytes, tablesEnd, 2);
    append_number(bytes, channels, 4);
    append_number(bytes, steps, 4);
    append_number(bytes, step, 4); // and flags; no packing, no blocks
    append_number(bytes, tabled, 2);
    append_number(bytes, identifier, 8);
    for (std::size_t i = 0; i < tabled; ++i) {
        if (ranges[i].end > mostInRange)
            refuse("the file of a rendered show has no channel 512 of universe 32768, and none "
                   "after it, where any before is left out");
        append_number(bytes, ranges[i].begin, 3);
        append_number(bytes, ranges[i].end - ranges[i].begin, 3);
    }
    if (mediaSize > 0) {
        append_number(bytes, mediaSize, 2);
        bytes.insert(bytes.end(), {'m', 'f'});
        bytes.insert(bytes.end(), media.begin(), media.end());
    }
    bytes.resize(dataBegin);
    return bytes;
}

/// A channel that is written, and where it lies in a step.
struct Output {
    Track track;
    std::size_t place;
};

std::vector<Output> outputs_of(const LayerMap& layers, const std::vector<Range>& ranges) {
    std::vector<Output> outputs;
    outputs.reserve(layers.size());
    for (const auto& [name, keys] : layers) {
        const std::uint64_t channel = channel_at(name);
        std::size_t place = 0;
        auto range = ranges.begin();
        for (; channel >= range->end; ++range)
            place += range->end - range->begin;
        outputs.push_back({Track(name, keys), place + channel - range->begin});
    }
    return outputs;
}

/// Writes what a channel sends at so many steps from `first` on into `rows`, which are `width`
/// bytes apart.
void render(Output& output, unsigned int first, unsigned int count, unsigned int step,
            std::size_t width, Bytes& rows) {
    for (unsigned int i = 0; i < count;) {
        output.track.seek((first + i) * step);
        const auto value = output.track.value();
        const std::uint8_t sent = value ? dmx_value(*value) : 0;
        const unsigned int next = output.track.nextChange();
        for (; i < count && (first + i) * step < next; ++i)
            rows[i * width + output.place] = sent;
    }
}

} // namespace

Sequence read_fseq(std::istream& in, const std::string& name, bool limited) {
    try {
        const Header header(in);
        check_size(header, rest_of(in), limited);
        Progress progress("reading " + name);
        const Bytes data = read_data(in, header, progress);
        Sequence sequence{Animation(1000), header.step, header.media};
        add_keys(add_layers(sequence.show.layers, header), data, header, progress);
        return sequence;
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(name + ": " + error.what());
    }
}

void write_fseq(std::ostream& out, const Animation& show, unsigned int step,
                const std::string& media) {
    const unsigned int end = show.durationInFrames();
    const std::vector<Range> ranges = ranges_of(show.layers);
    std::uint64_t channels = 0;
    for (const Range& range : ranges)
        channels += range.end - range.begin;
    const unsigned int steps = end / step + (end % step > 0 ? 1 : 0);
    const Bytes header =
        header_of(ranges, channels, steps, step, media, identifier_of(show.layers));
    const auto write = [&out](const Bytes& bytes) {
        out.write(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
    };
    write(header);
    Progress progress("writing");
    std::vector<Output> outputs = outputs_of(show.layers, ranges);
    // Many steps of a channel before those of the next one, whose keys are elsewhere in memory.
    constexpr std::uint64_t blockBytes = std::uint64_t{1} << 22;
    const auto most = static_cast<unsigned int>(std::max<std::uint64_t>(1, blockBytes / channels));
    Bytes rows;
    for (unsigned int first = 0; first < steps && out;) {
        const unsigned int count = std::min(most, steps - first);
        rows.assign(count * channels, 0);
        for (Output& output : outputs)
            render(output, first, count, step, channels, rows);
        write(rows);
        progress(first += count, steps);
    }
}
