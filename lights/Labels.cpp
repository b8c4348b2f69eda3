#include "Labels.h"

#include "Files.h"
#include "Recording.h"
#include "Text.h"
#include "parse.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace {

/// Takes seconds and the tab after them off the front of `line`; in milliseconds.
unsigned int take_seconds(std::string_view& line) {
    const std::size_t tab = line.find('\t');
    const auto seconds = parse<double>(line.substr(0, tab));
    const double time = std::round(seconds.value_or(NAN) * 1000);
    if (tab == std::string_view::npos || !(time >= 0 && time <= mostFrames))
        throw std::runtime_error(
            "a label is start and end in seconds and a name, with tabs between");
    line.remove_prefix(tab + 1);
    return static_cast<unsigned int>(time);
}

} // namespace

void Labels::read(const std::string& path) {
    InputFile file(path);
    std::istringstream lines(file.text());
    std::size_t number = 0;
    for (std::string text; std::getline(lines, text);) {
        std::string_view line = text;
        line.remove_suffix(line.ends_with('\r') ? 1 : 0);
        ++number;
        if (line.empty() || line.starts_with('\\')) // frequencies of the label before
            continue;
        try {
            const unsigned int start = take_seconds(line);
            const unsigned int end = take_seconds(line);
            labels.push_back({start, end, std::string(line)});
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(file.name + ":" + std::to_string(number) + ": " +
                                     error.what());
        }
    }
    if (number == 0)
        throw std::runtime_error(file.name + ": is empty");
}

std::optional<unsigned int> Labels::find(const std::string& word) const {
    if (labels.empty())
        return std::nullopt;
    constexpr std::string_view suffix = ":end";
    const auto called = [this](std::string_view name) {
        return std::ranges::count(labels, name, &Label::name);
    };
    std::string_view name = word;
    const bool end = called(name) == 0 && name.ends_with(suffix);
    name.remove_suffix(end ? suffix.size() : 0);
    if (called(name) == 1) {
        const Label& label = *std::ranges::find(labels, name, &Label::name);
        return end ? label.end : label.start;
    }
    std::string names;
    for (const Label& label : labels)
        names += (names.empty() ? "" : ", ") + label.name;
    throw std::runtime_error((called(name) == 0 ? "no label is" : "several labels are") +
                             (" called " + in_quotes(name) + "; there are " + names));
}
