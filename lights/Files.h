#pragma once

#include <functional>
#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

/// A file to read; "-" is the standard input.
struct InputFile {
    /// Throws std::runtime_error if there is no such file, or it cannot be read.
    explicit InputFile(const std::string& path);

    /// All of it, or what stands before a byte 0 and that. Throws std::runtime_error if that is
    /// more than `limits` allow.
    std::string text();

    std::string name; ///< What errors call it.
    std::unique_ptr<std::istream> stream;
};

/// Writes a file whole or not at all. It is written beside its place and then put there, so that it
/// is there as it was until all is written. A signal that ends the program leaves nothing behind.
///
/// "-" is the standard output. Pipes and devices are written to, and the descriptors of this
/// program, such as /dev/stdout, from where they stand. A link is followed, to a file that is not
/// yet there as well. A file keeps its mode and its owner. Where nothing can be written beside it,
/// it is overwritten in the end, and a line on the standard error says so.
///
/// Throws a Failure if it cannot be written, or would be larger than `limits` allow.
void write_file(const std::string& path, const std::function<void(std::ostream&)>& write);

/// The same with several files, which are put in their places when all are written; `write` is told
/// which one it writes. Together they are no larger than `limits` allow.
void write_files(const std::vector<std::string>& paths,
                 const std::function<void(std::size_t, std::ostream&)>& write);
