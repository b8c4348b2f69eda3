#pragma once

#include <optional>
#include <string>
#include <vector>

/// Names for times, as Audacity exports a label track: a line for each label.
///
///     12.5    30.25    verse        start and end in seconds and the name, with tabs between
class Labels {
public:
    /// Adds the labels of a file. Throws std::runtime_error, naming file and line, if it is none.
    void read(const std::string& path);

    /// The millisecond on which the label called `word` starts or, if `word` is "NAME:end", ends;
    /// nothing where no label was read. Throws std::runtime_error that names the labels if there is
    /// none of that name, or more than one.
    std::optional<unsigned int> find(const std::string& word) const;

private:
    struct Label {
        unsigned int start, end;
        std::string name;
    };
    std::vector<Label> labels;
};
