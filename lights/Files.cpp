#include "Files.h"

#include "CommandLine.h"
#include "ShowLimits.h"
#include "Terminal.h"
#include "parse.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace fs = std::filesystem;

namespace {

std::string reason(int error, const char* missing) {
    switch (error) {
    case ENOENT: return missing;
    case EISDIR: return "is a folder";
    default: return std::strerror(error);
    }
}

/// Where a path leads: to a descriptor of this program, or to a file that may not be there yet.
struct Target {
    explicit Target(const std::string& given) : path(given) {
        std::error_code none;
        const fs::path own = fs::canonical("/proc/self/fd", none);
        constexpr int mostLinks = 40;
        for (int links = 0; links < mostLinks; ++links) {
            const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
            const auto number = parse<int>(path.filename().native());
            if (number && !own.empty() && fs::canonical(folder, none) == own)
                descriptor = *number;
            if (descriptor >= 0 || !fs::is_symlink(fs::symlink_status(path, none)))
                return;
            path = folder / fs::read_symlink(path, none);
        }
    }

    fs::path path;
    int descriptor = -1;
};

/// Writes to a descriptor, and throws a Failure where that fails or passes the limit.
class Sink : public std::streambuf {
public:
    Sink(int& descriptor, const std::string& name, std::uint64_t& written)
        : descriptor(descriptor), name(name), written(written) {
        setp(buffer.data(), buffer.data() + buffer.size());
    }

    [[noreturn]] void fail(int error) const {
        throw Failure("cannot write " + name + ": " + reason(error, "no such folder"));
    }

    /// Writes what is in the buffer.
    void drain() {
        const auto count = static_cast<std::size_t>(pptr() - pbase());
        written += count;
        if (written > limits.bytes)
            throw Failure("cannot write " + name + ": it takes " + too_many_bytes("writes"));
        setp(buffer.data(), buffer.data() + buffer.size());
        put(buffer.data(), count);
    }

    void put(const char* bytes, std::size_t count) const {
        while (count > 0) {
            const ssize_t done = ::write(descriptor, bytes, count);
            if (done < 0 && errno != EINTR)
                fail(errno);
            bytes += std::max<ssize_t>(done, 0);
            count -= static_cast<std::size_t>(std::max<ssize_t>(done, 0));
        }
    }

protected:
    int_type overflow(int_type next) override {
        drain();
        return traits_type::eq_int_type(next, traits_type::eof())
                   ? traits_type::not_eof(next)
                   : sputc(traits_type::to_char_type(next));
    }
    int sync() override {
        drain();
        return 0;
    }

private:
    std::array<char, 65536> buffer{};
    int& descriptor;
    const std::string& name;
    std::uint64_t& written;
};

/// The drafts that are there, for a signal to remove: it has to wait while they change.
struct Listed {
    const char* path;
    Listed* next;
};
Listed* drafts = nullptr;

constexpr std::array endingSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

void remove_drafts(int signal) {
    for (const Listed* draft = drafts; draft != nullptr; draft = draft->next)
        unlink(draft->path);
    std::signal(signal, SIG_DFL);
    raise(signal);
}

/// Signals that would end the program wait as long as this lives.
class SignalsWait {
public:
    SignalsWait() {
        sigset_t all;
        sigemptyset(&all);
        for (const int signal : endingSignals)
            sigaddset(&all, signal);
        sigprocmask(SIG_BLOCK, &all, &before);
    }
    SignalsWait(const SignalsWait&) = delete;
    SignalsWait& operator=(const SignalsWait&) = delete;
    ~SignalsWait() { sigprocmask(SIG_SETMASK, &before, nullptr); }

private:
    sigset_t before{};
};

/// As long as this lives, signals that end the program remove the drafts first. A file that would
/// be too large for the system is a failure instead.
class SignalsRemoveDrafts {
public:
    SignalsRemoveDrafts() : tooLarge(std::signal(SIGXFSZ, SIG_IGN)) {
        struct sigaction remove {};
        remove.sa_handler = remove_drafts;
        for (std::size_t i = 0; i < endingSignals.size(); ++i) {
            sigaction(endingSignals[i], nullptr, &before[i]);
            if (before[i].sa_handler != SIG_IGN)
                sigaction(endingSignals[i], &remove, nullptr);
        }
    }
    SignalsRemoveDrafts(const SignalsRemoveDrafts&) = delete;
    SignalsRemoveDrafts& operator=(const SignalsRemoveDrafts&) = delete;
    ~SignalsRemoveDrafts() {
        for (std::size_t i = 0; i < endingSignals.size(); ++i)
            sigaction(endingSignals[i], &before[i], nullptr);
        std::signal(SIGXFSZ, tooLarge);
    }

private:
    std::array<struct sigaction, endingSignals.size()> before{};
    void (*tooLarge)(int);
};

/// What is written to a file, up to when it is put in its place.
class Draft {
public:
    Draft(const std::string& path, std::uint64_t& written)
        : name(path == "-" ? "the standard output" : path),
          target(path == "-" ? "/dev/stdout" : path), sink(descriptor, name, written) {
        stream.exceptions(std::ios::badbit); // those of the sink
        if (path == "-")
            target.descriptor = STDOUT_FILENO;
        struct stat there {};
        const bool exists = stat(target.path.c_str(), &there) == 0;
        if (target.descriptor >= 0) {
            std::cout.flush(); // which may be the same
            descriptor = fcntl(target.descriptor, F_DUPFD_CLOEXEC, 0);
        } else if (!exists && errno != ENOENT) {
            sink.fail(errno);
        } else if (exists && S_ISDIR(there.st_mode)) {
            sink.fail(EISDIR);
        } else if (exists && !S_ISREG(there.st_mode)) {
            descriptor = open(target.path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        } else {
            if (exists && access(target.path.c_str(), W_OK) != 0)
                sink.fail(errno);
            openDraft(exists ? &there : nullptr);
        }
        if (descriptor < 0)
            sink.fail(errno);
    }
    Draft(const Draft&) = delete; // it is listed
    Draft& operator=(const Draft&) = delete;
    ~Draft() {
        static_cast<void>(closed());
        remove();
    }

    /// Nothing more will be written.
    void finish() {
        sink.drain();
        if (!closed())
            sink.fail(errno);
    }

    /// Puts the draft in its place.
    void commit() {
        if (spare != nullptr)
            copy();
        const SignalsWait wait;
        if (!path.empty() && std::rename(path.c_str(), target.path.c_str()) != 0)
            sink.fail(errno);
        unlist();
    }

    std::ostream& out() { return stream; }

private:
    /// Opens a file beside the target, or another one that is copied there in the end.
    void openDraft(const struct stat* there) {
        {
            const SignalsWait wait;
            const fs::path folder = target.path.parent_path();
            for (unsigned int number = 0; descriptor < 0; ++number) {
                path =
                    folder / (".draft-" + std::to_string(getpid()) + "-" + std::to_string(number));
                const int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
                descriptor = open(path.c_str(), flags, there != nullptr ? 0600 : 0666);
                if (descriptor < 0 && errno != EEXIST)
                    break;
            }
            if (descriptor < 0)
                path.clear();
            else
                list();
        }
        if (descriptor >= 0 && (there == nullptr || isLike(*there)))
            return;
        const int error = descriptor < 0 ? errno : EPERM;
        const bool copies =
            error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG;
        if (!copies || (there == nullptr && error != ENAMETOOLONG))
            sink.fail(error);
        static_cast<void>(closed());
        remove();
        spare.reset(std::tmpfile());
        if (spare == nullptr)
            sink.fail(errno);
        descriptor = fcntl(fileno(spare.get()), F_DUPFD_CLOEXEC, 0);
    }

    /// Gives the draft the owner and the mode of the file whose place it takes.
    bool isLike(const struct stat& there) const {
        struct stat made {};
        fstat(descriptor, &made);
        const bool same = made.st_uid == there.st_uid && made.st_gid == there.st_gid;
        return (same || fchown(descriptor, there.st_uid, there.st_gid) == 0) &&
               fchmod(descriptor, there.st_mode & 07777) == 0;
    }

    void copy() {
        complain(name + ": written in place, since no draft could replace it");
        descriptor = open(target.path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        if (descriptor < 0)
            sink.fail(errno);
        std::array<char, 65536> bytes{};
        std::rewind(spare.get());
        while (const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), spare.get()))
            sink.put(bytes.data(), count);
        if (std::ferror(spare.get()) != 0 || !closed())
            sink.fail(errno);
    }

    bool closed() { return descriptor < 0 || close(std::exchange(descriptor, -1)) == 0; }

    void list() {
        listed = {path.c_str(), drafts};
        drafts = &listed;
    }
    void unlist() {
        Listed** place = &drafts;
        while (*place != nullptr && *place != &listed)
            place = &(*place)->next;
        if (*place != nullptr)
            *place = listed.next;
        path.clear();
    }
    void remove() {
        const SignalsWait wait;
        if (!path.empty())
            unlink(path.c_str());
        unlist();
    }

    struct Close {
        void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
    };

    std::string name;
    Target target;
    int descriptor = -1;
    Sink sink;
    std::ostream stream{&sink};
    fs::path path; ///< Of the draft, where it stands beside its target.
    Listed listed{};
    std::unique_ptr<std::FILE, Close> spare; ///< Where it does not: it is copied from here.
};

} // namespace

InputFile::InputFile(const std::string& path) : name(path == "-" ? "standard input" : path) {
    if (path == "-") {
        stream = std::make_unique<std::istream>(std::cin.rdbuf());
        return;
    }
    struct stat there {};
    int error = stat(path.c_str(), &there) == 0 ? 0 : errno;
    if (error == 0 && S_ISDIR(there.st_mode))
        error = EISDIR;
    if (error == 0) {
        stream = std::make_unique<std::ifstream>(path, std::ios::binary);
        error = *stream ? 0 : errno;
    }
    if (error != 0)
        throw std::runtime_error(name + ": " + reason(error, "no such file"));
}

std::string InputFile::text() {
    const double size = size_of(name);
    Progress progress("reading " + name);
    std::string all;
    std::array<char, 65536> part{};
    while (*stream &&
           all.find('\0', all.size() - std::min(all.size(), part.size())) == std::string::npos) {
        stream->read(part.data(), part.size());
        all.append(part.data(), static_cast<std::size_t>(stream->gcount()));
        progress(static_cast<double>(all.size()), size);
        if (all.size() > limits.bytes)
            throw std::runtime_error(name + ": has " + too_many_bytes("reads"));
    }
    if (stream->bad())
        throw std::runtime_error(name + ": cannot be read");
    return all;
}

void write_files(const std::vector<std::string>& paths,
                 const std::function<void(std::size_t, std::ostream&)>& write) {
    const SignalsRemoveDrafts handlers;
    std::uint64_t written = 0;
    std::vector<std::unique_ptr<Draft>> files;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        files.push_back(std::make_unique<Draft>(paths[i], written));
        write(i, files[i]->out());
        files[i]->finish();
    }
    for (const auto& file : files)
        file->commit();
}

void write_file(const std::string& path, const std::function<void(std::ostream&)>& write) {
    write_files({path}, [&](std::size_t /*index*/, std::ostream& out) { write(out); });
}
